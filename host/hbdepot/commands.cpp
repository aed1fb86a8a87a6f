#include "commands.h"

#include <depot/depot.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <ostream>
#include <stdexcept>

#include "commandline.h"

namespace hbrc::hbdepot {

using depot::Depot;
using depot::Result;

namespace {

struct Context
{
    Depot& depot;
    CommandLine& line;
    std::size_t nameLength;
    std::ostream& out;
    std::string ticket;

    std::vector<std::string> arguments() const { return line.arguments(nameLength); }
    std::vector<std::string> files() const
    {
        std::vector<std::string> paths;
        for (const std::string& argument : arguments())
            paths.push_back(std::filesystem::absolute(argument).lexically_normal().string());
        return paths;
    }
    std::string argument(std::size_t index, const char* what) const
    {
        const std::vector<std::string> given = arguments();
        if (index >= given.size())
            throw std::invalid_argument(std::string("missing ") + what);
        return given[index];
    }
    std::string changelistOption() { return line.takeOption("-c").value_or(""); }
};

struct Command
{
    std::vector<std::string> name;
    bool needsSession;
    const char* usage;
    const char* summary;
    std::function<Result(Context&)> run;
};

// The session lifetime of a new depot; a clear error instead of the parser's own for a bad value.
std::chrono::seconds sessionLifetime(CommandLine& line)
{
    const std::string text = line.takeOption("--session-lifetime").value_or("43200");
    std::size_t used = 0;
    long long seconds = 0;
    try {
        seconds = std::stoll(text, &used);
    } catch (const std::logic_error&) {
        used = 0;
    }
    if (used == 0 || used != text.size() || seconds <= 0)
        throw std::invalid_argument("--session-lifetime takes a number of seconds above 0, not '" + text + "'");
    return std::chrono::seconds(seconds);
}

std::string changelistName(const depot::ChangelistId& id)
{
    return id.empty() ? "default" : "change " + id;
}

void printStatus(std::ostream& out, const std::string& file, const depot::FileStatus& status)
{
    out << file << " 0x" << std::hex << status.word << std::dec;
    if (status.word & (depot::status::OpenedForEdit | depot::status::OpenedForAdd | depot::status::OpenedForDelete))
        out << " " << changelistName(status.changelist);
    if (!status.holders.empty()) {
        out << " held by";
        for (const std::string& user : status.holders)
            out << " " << user;
    }
    out << "\n";
}

Result printChangelists(Context& c)
{
    const std::string state = c.line.takeOption("-s").value_or("pending");
    if (state != "pending" && state != "submitted")
        throw std::invalid_argument("-s takes pending or submitted");
    std::vector<depot::Changelist> list;
    const Result result = c.depot.changelists(
        c.ticket, state == "pending" ? depot::ChangelistState::Pending : depot::ChangelistState::Submitted, list);
    for (const depot::Changelist& change : list)
        c.out << "Change " << change.id << " by " << change.user << "@" << change.workspace << " *" << state << "* '"
              << change.description << "'\n";
    return result;
}

Result printDescription(Context& c)
{
    depot::Changelist change;
    const Result result = c.depot.describe(c.ticket, c.argument(0, "changelist"), change);
    if (!result.ok())
        return result;
    c.out << "Change " << (change.id.empty() ? "default" : change.id) << " by " << change.user << "@"
          << change.workspace << (change.state == depot::ChangelistState::Pending ? " *pending*" : " *submitted*")
          << "\n\n\t" << change.description << "\n\nFiles:\n";
    for (const depot::ChangelistFile& file : change.files) {
        c.out << "... " << file.depotPath;
        if (file.revision > 0)
            c.out << "#" << file.revision;
        c.out << " " << depot::actionName(file.action) << "\n";
    }
    return result;
}

Result printOpened(Context& c)
{
    std::vector<depot::OpenedFile> files;
    const Result result = c.depot.opened(c.ticket, c.line.takeFlag("-a"), files);
    for (const depot::OpenedFile& file : files)
        c.out << file.depotPath << " - " << depot::actionName(file.action) << " " << changelistName(file.changelist)
              << " by " << file.user << "@" << file.workspace << (file.locked ? " *locked*" : "") << "\n";
    return result;
}

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {{"init"}, false, "init [--session-lifetime SECONDS]", "create a new depot file",
         [](Context& c) { return Depot::create(c.depot.path(), sessionLifetime(c.line)); }},
        {{"user", "add"}, false, "user add NAME [PASSWORD]", "add a user (no password: none needed)",
         [](Context& c) {
             const std::vector<std::string> given = c.arguments();
             return c.depot.addUser(c.argument(0, "user name"), given.size() > 1 ? given[1] : "");
         }},
        {{"workspace", "add"}, false, "workspace add NAME OWNER ROOT", "add a workspace rooted in a folder",
         [](Context& c) {
             return c.depot.addWorkspace(c.argument(0, "workspace name"), c.argument(1, "owner"),
                                         std::filesystem::absolute(c.argument(2, "root folder")).string());
         }},
        {{"login"}, true, "login", "open a session and print its ticket",
         [](Context& c) {
             c.out << c.ticket << "\n";
             return Result{};
         }},
        {{"sync"}, true, "sync [FILE...]", "get the head revisions (all files when none named)",
         [](Context& c) { return c.depot.sync(c.ticket, c.files()); }},
        {{"edit"}, true, "edit [-c CHANGE] FILE...", "open files for edit",
         [](Context& c) {
             const std::string change = c.changelistOption();
             return c.depot.edit(c.ticket, c.files(), change);
         }},
        {{"add"}, true, "add [-c CHANGE] FILE...", "open new files for add",
         [](Context& c) {
             const std::string change = c.changelistOption();
             return c.depot.add(c.ticket, c.files(), change);
         }},
        {{"delete"}, true, "delete [-c CHANGE] FILE...", "open files for delete (removes the local copies)",
         [](Context& c) {
             const std::string change = c.changelistOption();
             return c.depot.remove(c.ticket, c.files(), change);
         }},
        {{"revert"}, true, "revert FILE...", "discard opened files' changes",
         [](Context& c) { return c.depot.revert(c.ticket, c.files()); }},
        {{"lock"}, true, "lock FILE...", "lock opened files against other users",
         [](Context& c) { return c.depot.lock(c.ticket, c.files()); }},
        {{"opened"}, true, "opened [-a]", "list this workspace's opened files (-a: every workspace's)", printOpened},
        {{"change"}, true, "change DESCRIPTION", "create a pending changelist and print its number",
         [](Context& c) {
             depot::ChangelistId created;
             const Result result = c.depot.createChangelist(c.ticket, c.argument(0, "description"), created);
             if (result.ok())
                 c.out << created << "\n";
             return result;
         }},
        {{"changes"}, true, "changes [-s pending|submitted]", "list changelists", printChangelists},
        {{"describe"}, true, "describe CHANGE", "show a changelist and its files ('default' too)", printDescription},
        {{"submit"}, true, "submit [-c CHANGE] [-d DESCRIPTION]", "submit a changelist (default: the default one)",
         [](Context& c) {
             const std::string change = c.changelistOption();
             const std::string description = c.line.takeOption("-d").value_or("");
             depot::ChangelistId submitted;
             const Result result = c.depot.submit(c.ticket, change, description, submitted);
             if (result.ok())
                 c.out << "Change " << submitted << " submitted.\n";
             return result;
         }},
        {{"status"}, true, "status FILE...", "print each file's status word, changelist and holders",
         [](Context& c) {
             const std::vector<std::string> files = c.files();
             std::vector<depot::FileStatus> statuses;
             const Result result = c.depot.status(c.ticket, files, statuses);
             for (std::size_t i = 0; i < statuses.size(); ++i)
                 printStatus(c.out, files[i], statuses[i]);
             return result;
         }},
    };
    return table;
}

const Command* findCommand(const std::vector<std::string>& words)
{
    for (const Command& command : commands()) {
        if (words.size() >= command.name.size() && std::equal(command.name.begin(), command.name.end(), words.begin()))
            return &command;
    }
    return nullptr;
}

Result openSession(Depot& depot, const CommandLine& line, std::string& ticket)
{
    if (!line.ticket().empty()) {
        ticket = line.ticket();
        return {};
    }
    if (line.user().empty() || line.workspace().empty())
        throw std::invalid_argument("give a ticket (-t) or a user (-u) and a workspace (-w)");
    return depot.login(line.user(), line.password(), line.workspace(), ticket);
}

}  // namespace

void printUsage(std::ostream& out)
{
    out << "Usage: hbdepot [OPTIONS] COMMAND [ARGUMENTS]\n"
           "Sets up, inspects and changes an embedded depot from the command line.\n\n"
           "Options (the environment variable used when the option is absent):\n"
           "  -d, --depot PATH        the depot file (HBDEPOT)\n"
           "  -u, --user NAME         log in as this user (HBDEPOT_USER)\n"
           "  -w, --workspace NAME    in this workspace (HBDEPOT_WORKSPACE)\n"
           "  -P, --password TEXT     with this password (HBDEPOT_PASSWORD)\n"
           "  -t, --ticket TICKET     use the session 'login' printed instead (HBDEPOT_TICKET)\n"
           "  -h, --help              show this text\n\n"
           "Commands (FILE: a path in the workspace; CHANGE: a changelist number or 'default'):\n";
    for (const Command& command : commands())
        out << "  " << std::left << std::setw(38) << command.usage << command.summary << "\n";
    out << "\nExit status: 0 done, 1 the depot refused (the reason is printed), 2 bad usage.\n";
}

int runCommand(CommandLine& line, std::ostream& out, std::ostream& err)
{
    const Command* command = findCommand(line.words());
    if (!command) {
        err << "hbdepot: unknown command" << (line.words().empty() ? "" : " '" + line.words().front() + "'")
            << "; see hbdepot --help\n";
        return 2;
    }
    try {
        if (line.depot().empty())
            throw std::invalid_argument("no depot given (-d or HBDEPOT)");
        Depot depot(std::filesystem::absolute(line.depot()).string());
        Context context{depot, line, command->name.size(), out, {}};
        Result result;
        if (command->needsSession)
            result = openSession(depot, line, context.ticket);
        if (result.ok())
            result = command->run(context);
        if (!result.ok()) {
            err << "hbdepot: " << result.error << " (code " << result.code << ")\n";
            return 1;
        }
        if (!result.error.empty())
            err << "hbdepot: " << result.error << "\n";
        return 0;
    } catch (const std::exception& error) {
        err << "hbdepot: " << error.what() << "; see hbdepot --help\n";
        return 2;
    }
}

}  // namespace hbrc::hbdepot
