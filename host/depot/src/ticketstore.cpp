#include <depot/ticketstore.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hbrc::depot {

namespace {

// One line per ticket: depot, user, workspace and ticket, separated by tabs.
struct Line
{
    std::string depot;
    std::string user;
    StoredTicket stored;
};

std::vector<Line> readLines(const std::string& file)
{
    std::vector<Line> lines;
    std::ifstream in(file);
    std::string text;
    while (std::getline(in, text)) {
        std::istringstream fields(text);
        Line line;
        if (std::getline(fields, line.depot, '\t') && std::getline(fields, line.user, '\t') &&
            std::getline(fields, line.stored.workspace, '\t') && std::getline(fields, line.stored.ticket))
            lines.push_back(std::move(line));
    }
    return lines;
}

[[noreturn]] void cannotWrite(const std::string& file)
{
    throw std::runtime_error("Cannot write the ticket file '" + file + "': " + std::strerror(errno));
}

// Replaces the file with one that only its owner can read or write.
void writeLines(const std::string& file, const std::vector<Line>& lines)
{
    std::string content;
    for (const Line& line : lines)
        content += line.depot + '\t' + line.user + '\t' + line.stored.workspace + '\t' + line.stored.ticket + '\n';
    const std::string temporary = file + ".new";
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0)
        cannotWrite(file);
    const bool written = ::fchmod(fd, 0600) == 0 &&
                         ::write(fd, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    if (::close(fd) != 0 || !written || std::rename(temporary.c_str(), file.c_str()) != 0) {
        std::remove(temporary.c_str());
        cannotWrite(file);
    }
}

void eraseEntry(std::vector<Line>& lines, const std::string& depot, const std::string& user)
{
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [&](const Line& line) { return line.depot == depot && line.user == user; }),
                lines.end());
}

bool fitsOnALine(const std::string& text)
{
    return text.find_first_of("\t\n\r") == std::string::npos;
}

}  // namespace

TicketStore::TicketStore(std::string file) : m_file(std::move(file)) {}

std::string TicketStore::defaultFile()
{
    if (const char* chosen = std::getenv("HBDEPOT_TICKETS"); chosen && *chosen)
        return chosen;
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : ".") + "/.hbdepot_tickets";
}

std::string TicketStore::depotKey(const std::string& depotPath)
{
    std::error_code ignored;
    return std::filesystem::weakly_canonical(std::filesystem::absolute(depotPath, ignored), ignored).string();
}

std::optional<StoredTicket> TicketStore::find(const std::string& depot, const std::string& user) const
{
    for (const Line& line : readLines(m_file)) {
        if (line.depot == depot && line.user == user)
            return line.stored;
    }
    return std::nullopt;
}

void TicketStore::save(const std::string& depot, const std::string& user, const StoredTicket& ticket)
{
    if (!fitsOnALine(depot) || !fitsOnALine(user) || !fitsOnALine(ticket.workspace))
        throw std::runtime_error("Cannot keep a ticket for a depot path with tabs or line breaks");
    std::vector<Line> lines = readLines(m_file);
    eraseEntry(lines, depot, user);
    lines.push_back({depot, user, ticket});
    writeLines(m_file, lines);
}

bool TicketStore::forget(const std::string& depot, const std::string& user)
{
    std::vector<Line> lines = readLines(m_file);
    const std::size_t before = lines.size();
    eraseEntry(lines, depot, user);
    if (lines.size() == before)
        return false;
    writeLines(m_file, lines);
    return true;
}

}  // namespace hbrc::depot
