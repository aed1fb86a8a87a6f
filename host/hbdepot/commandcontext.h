#pragma once

// What a command works with: the depot, the command line and the command's own arguments, the
// output streams, the kept tickets, and the session's ticket once one is open.

#include <depot/depot.h>
#include <depot/ticketstore.h>

#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "commandline.h"
#include "verbarguments.h"

namespace hbrc::hbdepot {

struct Context
{
    depot::Depot& depot;
    const CommandLine& line;
    const VerbArguments& args;
    std::ostream& out;
    std::ostream& err;
    depot::TicketStore& tickets;
    std::string ticket;

    std::vector<std::string> files() const
    {
        std::vector<std::string> paths;
        const std::filesystem::path folder = std::filesystem::current_path();
        for (const std::string& word : args.words())
            paths.push_back((folder / word).lexically_normal().string());
        return paths;
    }
    // A file the command found itself, shown relative to the current folder.
    static std::string shown(const std::string& path)
    {
        const std::filesystem::path relative = std::filesystem::path(path).lexically_relative(std::filesystem::current_path());
        return relative.empty() ? path : relative.string();
    }
    std::string word(std::size_t index) const { return args.words().at(index); }
    // Where a command says what it did: the output, or nothing with -q.
    std::ostream& report() const
    {
        static std::ostream silent(nullptr);
        return line.quiet() ? silent : out;
    }
    std::string changelistOption() const { return args.option("-c").value_or(""); }
    // The depot as the ticket store names it: one name whatever path led to it.
    std::string depotKey() const { return depot::TicketStore::depotKey(depot.path()); }
};

}  // namespace hbrc::hbdepot
