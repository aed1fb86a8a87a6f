#include "commands.h"

#include <depot/depot.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <limits>
#include <ostream>
#include <stdexcept>

#include "commandcontext.h"
#include "commandline.h"
#include "passwordinput.h"
#include "sessioncommands.h"

namespace hbrc::hbdepot {

using depot::Depot;
using depot::Result;

namespace {

struct Command
{
    std::vector<std::string> name;
    bool needsSession;
    VerbSyntax syntax;
    const char* usage;
    const char* summary;
    std::function<Result(Context&)> run;
};

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

// The session lifetime of a new depot; a clear error instead of the parser's own for a bad value.
std::chrono::seconds sessionLifetime(const VerbArguments& args)
{
    const std::string text = args.option("--session-lifetime").value_or("43200");
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
    const std::string state = c.args.option("-s").value_or("pending");
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
    const Result result = c.depot.describe(c.ticket, c.word(0), change);
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
    const Result result = c.depot.opened(c.ticket, c.args.flag("-a"), files);
    for (const depot::OpenedFile& file : files)
        c.out << file.depotPath << " - " << depot::actionName(file.action) << " " << changelistName(file.changelist)
              << " by " << file.user << "@" << file.workspace << (file.locked ? " *locked*" : "") << "\n";
    return result;
}

void warnAboutVisiblePassword(std::ostream& err, const char* how)
{
    err << "hbdepot: warning: " << how
        << " is visible to every user of this machine; use the prompt, --password-stdin or HBDEPOT_PASSWORD\n";
}

Result addUser(Context& c)
{
    const std::string name = c.word(0);
    if (c.args.words().size() > 1) {
        warnAboutVisiblePassword(c.err, "a password given as an argument");
        return c.depot.addUser(name, c.word(1));
    }
    return c.depot.addUser(name, passwordFor(c.line, "Password for " + name + " (empty: none): ", c.err));
}

Result addWorkspace(Context& c)
{
    const std::filesystem::path root = std::filesystem::absolute(c.word(2)).lexically_normal();
    std::error_code error;
    if (!std::filesystem::is_directory(root, error)) {
        if (!c.args.flag("--create"))
            return {depot::code::Failed, "The root folder " + root.string() +
                                             " does not exist; create it first, or give --create"};
        std::filesystem::create_directories(root, error);
        if (error)
            return {depot::code::Failed, "Cannot create the root folder " + root.string() + ": " + error.message()};
    }
    return c.depot.addWorkspace(c.word(0), c.word(1), root.string());
}

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {{"init"}, false, {{"--session-lifetime"}, {}, 0, 0}, "init [--session-lifetime SECONDS]",
         "create a new depot file",
         [](Context& c) { return Depot::create(c.depot.path(), sessionLifetime(c.args)); }},
        {{"user", "add"}, false, {{}, {}, 1, 2}, "user add NAME", "add a user (asks for the password; empty: none)",
         addUser},
        {{"workspace", "add"}, false, {{}, {"--create"}, 3, 3}, "workspace add [--create] NAME OWNER ROOT",
         "add a workspace rooted in an existing folder (--create: make it)", addWorkspace},
        {{"login"}, false, {{}, {"-p"}, 0, 0}, "login [-p]",
         "open a session and keep its ticket for later commands (-p: print it instead)", login},
        {{"logout"}, false, {{}, {}, 0, 0}, "logout", "end the session and forget its kept ticket", logout},
        {{"sync"}, true, {{}, {"-f", "--force"}, 0, kAny}, "sync [-f] [FILE...]",
         "get the head revisions (all files when none named; -f: overwrite writable files)",
         [](Context& c) {
             const depot::SyncMode mode =
                 c.args.flag("-f") || c.args.flag("--force") ? depot::SyncMode::Force : depot::SyncMode::Safe;
             return c.depot.sync(c.ticket, c.files(), mode);
         }},
        {{"edit"}, true, {{"-c"}, {}, 1, kAny}, "edit [-c CHANGE] FILE...", "open files for edit",
         [](Context& c) { return c.depot.edit(c.ticket, c.files(), c.changelistOption()); }},
        {{"add"}, true, {{"-c"}, {}, 1, kAny}, "add [-c CHANGE] FILE...", "open new files for add",
         [](Context& c) { return c.depot.add(c.ticket, c.files(), c.changelistOption()); }},
        {{"delete"}, true, {{"-c"}, {}, 1, kAny}, "delete [-c CHANGE] FILE...",
         "open files for delete (removes the local copies)",
         [](Context& c) { return c.depot.remove(c.ticket, c.files(), c.changelistOption()); }},
        {{"revert"}, true, {{}, {}, 1, kAny}, "revert FILE...", "discard opened files' changes",
         [](Context& c) { return c.depot.revert(c.ticket, c.files()); }},
        {{"lock"}, true, {{}, {}, 1, kAny}, "lock FILE...", "lock opened files against other users",
         [](Context& c) { return c.depot.lock(c.ticket, c.files()); }},
        {{"opened"}, true, {{}, {"-a"}, 0, 0}, "opened [-a]",
         "list this workspace's opened files (-a: every workspace's)", printOpened},
        {{"change"}, true, {{}, {}, 1, 1}, "change DESCRIPTION", "create a pending changelist and print its number",
         [](Context& c) {
             depot::ChangelistId created;
             const Result result = c.depot.createChangelist(c.ticket, c.word(0), created);
             if (result.ok())
                 c.out << created << "\n";
             return result;
         }},
        {{"changes"}, true, {{"-s"}, {}, 0, 0}, "changes [-s pending|submitted]", "list changelists",
         printChangelists},
        {{"describe"}, true, {{}, {}, 1, 1}, "describe CHANGE", "show a changelist and its files ('default' too)",
         printDescription},
        {{"submit"}, true, {{"-c", "-d"}, {}, 0, 0}, "submit [-c CHANGE] [-d DESCRIPTION]",
         "submit a changelist (default: the default one)",
         [](Context& c) {
             depot::ChangelistId submitted;
             const Result result =
                 c.depot.submit(c.ticket, c.changelistOption(), c.args.option("-d").value_or(""), submitted);
             if (result.ok())
                 c.out << "Change " << submitted << " submitted.\n";
             return result;
         }},
        {{"status"}, true, {{}, {}, 1, kAny}, "status FILE...", "print each file's status word, changelist and holders",
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

bool asksForHelp(const std::vector<std::string>& words)
{
    for (const std::string& word : words) {
        if (word == "--")
            return false;
        if (word == "-h" || word == "--help")
            return true;
    }
    return false;
}

void printCommandUsage(std::ostream& out, const Command& command)
{
    out << "Usage: hbdepot [OPTIONS] " << command.usage << "\n" << command.summary << "\n";
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
           "  -t, --ticket TICKET     use the session 'login -p' printed (HBDEPOT_TICKET)\n"
           "      --password-stdin    read the password from the first line of standard input\n"
           "  -P, --password TEXT     the password (HBDEPOT_PASSWORD); visible to other users, avoid it\n"
           "  -h, --help              show this text; after a command, that command's usage\n\n"
           "Without a password option hbdepot asks for it, without echo, when standard input is a\n"
           "terminal. 'login' keeps the session's ticket in ~/.hbdepot_tickets (HBDEPOT_TICKETS), readable\n"
           "only by you, and later commands of that user and workspace use it.\n\n"
           "Commands (FILE: a path in the workspace; CHANGE: a changelist number or 'default'):\n";
    for (const Command& command : commands())
        out << "  " << std::left << std::setw(40) << command.usage << command.summary << "\n";
    out << "\nExit status: 0 done, 1 the depot refused (the reason is printed), 2 bad usage.\n";
}

int runCommand(const CommandLine& line, std::ostream& out, std::ostream& err)
{
    const bool helpCommand = !line.words().empty() && line.words().front() == "help";
    const std::vector<std::string> words(line.words().begin() + (helpCommand ? 1 : 0), line.words().end());
    const Command* command = findCommand(words);
    if (!command) {
        if (helpCommand && words.empty()) {
            printUsage(out);
            return 0;
        }
        err << "hbdepot: unknown command" << (words.empty() ? "" : " '" + words.front() + "'")
            << "; see hbdepot --help\n";
        return 2;
    }
    const std::vector<std::string> given(words.begin() + static_cast<std::ptrdiff_t>(command->name.size()), words.end());
    if (helpCommand || asksForHelp(given)) {
        printCommandUsage(out, *command);
        return 0;
    }
    try {
        const VerbArguments args(command->syntax, given);
        if (line.depot().empty())
            throw std::invalid_argument("no depot given (-d or HBDEPOT)");
        if (line.passwordOnCommandLine())
            warnAboutVisiblePassword(err, "a password given with -P");
        Depot depot(std::filesystem::absolute(line.depot()).string());
        TicketStore tickets;
        Context context{depot, line, args, out, err, tickets, {}};
        Result result;
        if (command->needsSession)
            result = openSession(context);
        if (result.ok())
            result = command->run(context);
        if (result.code != depot::code::Ok) {
            err << "hbdepot: " << result.error;
            if (result.code < 0)
                err << " (code " << result.code << ")";
            err << "\n";
            return 1;
        }
        if (!result.error.empty())
            err << "hbdepot: " << result.error << "\n";
        return 0;
    } catch (const std::invalid_argument& error) {
        err << "hbdepot: " << error.what() << "\n";
        printCommandUsage(err, *command);
        return 2;
    } catch (const std::exception& error) {
        err << "hbdepot: " << error.what() << "\n";
        return 1;
    }
}

}  // namespace hbrc::hbdepot
