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

#include "changecommands.h"
#include "commandcontext.h"
#include "commandline.h"
#include "listings.h"
#include "passwordinput.h"
#include "sessioncommands.h"
#include "statuswords.h"

namespace hbrc::hbdepot {

using depot::Depot;
using depot::Result;

namespace {

// What a command needs before it runs: nothing but the depot file, the account (user and
// workspace, found from the current folder when not given), or an open session of it.
enum class Needs { Depot, Account, Session };

struct Command
{
    std::vector<std::string> name;
    Needs needs;
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

Result reportDone(Context& c, const Result& result, const std::string& what)
{
    if (result.ok())
        c.report() << what << "\n";
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
        return reportDone(c, c.depot.addUser(name, c.word(1)), "User " + name + " added.");
    }
    return reportDone(c, c.depot.addUser(name, passwordFor(c.line, "Password for " + name + " (empty: none): ", c.err)),
                      "User " + name + " added.");
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
    return reportDone(c, c.depot.addWorkspace(c.word(0), c.word(1), root.string()),
                      "Workspace " + c.word(0) + " of " + c.word(1) + " added, rooted in " + root.string() + ".");
}

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {{"init"}, Needs::Depot, {{"--session-lifetime"}, {}, 0, 0}, "init [--session-lifetime SECONDS]",
         "create a new depot file",
         [](Context& c) {
             return reportDone(c, Depot::create(c.depot.path(), sessionLifetime(c.args)),
                               "Depot " + c.depot.path() + " created.");
         }},
        {{"user", "add"}, Needs::Depot, {{}, {}, 1, 2}, "user add NAME",
         "add a user (asks for the password; empty: none)", addUser},
        {{"workspace", "add"}, Needs::Depot, {{}, {"--create"}, 3, 3}, "workspace add [--create] NAME OWNER ROOT",
         "add a workspace rooted in an existing folder (--create: make it)", addWorkspace},
        {{"login"}, Needs::Account, {{}, {"-p"}, 0, 0}, "login [-p]",
         "open a session and keep its ticket for later commands (-p: print it instead)", login},
        {{"logout"}, Needs::Account, {{}, {}, 0, 0}, "logout", "end the session and forget its kept ticket", logout},
        {{"info"}, Needs::Account, {{}, {}, 0, 0}, "info",
         "show the depot, user, workspace and configuration file in use", printInfo},
        {{"sync"}, Needs::Session, {{}, {"-f", "--force"}, 0, kAny}, "sync [-f] [FILE...]",
         "get the head revisions of the files, of all when none named (-f: overwrite writable files)", syncFiles},
        {{"edit"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "edit [-c CHANGE] FILE...", "open files for edit",
         editFiles},
        {{"add"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "add [-c CHANGE] FILE...", "open new files for add",
         addFiles},
        {{"delete"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "delete [-c CHANGE] FILE...",
         "open files for delete (removes the local copies)", deleteFiles},
        {{"revert"}, Needs::Session, {{}, {"-a"}, 0, kAny}, "revert [-a] FILE...",
         "discard opened files' changes (-a: only unchanged edits; every file when none named)", revertFiles},
        {{"reopen"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "reopen [-c CHANGE] FILE...",
         "move opened files to another pending changelist (default: the default one)", reopenFiles},
        {{"lock"}, Needs::Session, {{}, {}, 1, kAny}, "lock FILE...", "lock opened files against other users",
         lockFiles},
        {{"unlock"}, Needs::Session, {{}, {}, 1, kAny}, "unlock FILE...", "release the locks of opened files",
         unlockFiles},
        {{"opened"}, Needs::Session, {{}, {"-a"}, 0, 0}, "opened [-a]",
         "list this workspace's opened files (-a: every workspace's)", printOpened},
        {{"change"}, Needs::Session, {{"-c", "-d"}, {}, 0, 1}, "change [-c CHANGE] DESCRIPTION | -d CHANGE",
         "create a pending changelist and print its number (-c: describe one anew; -d: delete an empty one)",
         changeChangelist},
        {{"changes"}, Needs::Session, {{"-s", "-m", "-u"}, {}, 0, 0}, "changes [-s pending|submitted] [-m N] [-u USER]",
         "list changelists, newest first (default: pending; -m: the newest N; -u: of one user)", printChanges},
        {{"describe"}, Needs::Session, {{}, {}, 1, 1}, "describe CHANGE",
         "show a changelist, its date and its files ('default' too)", printDescription},
        {{"submit"}, Needs::Session, {{"-c", "-d"}, {}, 0, 0}, "submit [-c CHANGE] [-d DESCRIPTION]",
         "submit a changelist (default: the default one)", submitChange},
        {{"status"}, Needs::Session, {{}, {}, 1, kAny}, "status FILE...",
         "print each file's status in words, its changelist and who holds it", printStatus},
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

// A command's usage and summary in two columns; a usage too long for its column puts the
// summary on the next line.
void printUsageLine(std::ostream& out, const std::string& usage, const std::string& summary)
{
    constexpr std::size_t kColumn = 40;
    out << "  " << std::left << std::setw(kColumn) << usage;
    if (usage.size() >= kColumn)
        out << "\n  " << std::string(kColumn, ' ');
    out << summary << "\n";
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
           "Options (each before the command; the environment variable, then the configuration file's\n"
           "key used when the option is absent):\n"
           "  -d, --depot PATH        the depot file (HBDEPOT, depot)\n"
           "  -u, --user NAME         log in as this user (HBDEPOT_USER, user)\n"
           "  -w, --workspace NAME    in this workspace (HBDEPOT_WORKSPACE, workspace)\n"
           "  -t, --ticket TICKET     use the session 'login -p' printed (HBDEPOT_TICKET)\n"
           "      --password-stdin    read the password from the first line of standard input\n"
           "  -P, --password TEXT     the password (HBDEPOT_PASSWORD); visible to other users, avoid it\n"
           "  -q, --quiet             do not say what was done; listings and errors still print\n"
           "      --json, -z json     listings (status, opened, changes, describe, info) as JSON\n"
           "  -h, --help              show this text; after a command, that command's usage\n"
           "      --version           print the version\n\n"
           "The configuration file is the nearest " << ConfigFile::kName << " in the current folder or above it,\n"
           "with lines 'depot = PATH' (relative to its folder), 'user = NAME', 'workspace = NAME'.\n"
           "Without a user or workspace, the workspace whose root holds the current folder is used.\n\n"
           "Without a password option hbdepot asks for it, without echo, when standard input is a\n"
           "terminal. 'login' keeps the session's ticket in ~/.hbdepot_tickets (HBDEPOT_TICKETS), readable\n"
           "only by you, and later commands of that user and workspace use it.\n\n"
           "Commands (FILE: a local path, absolute or relative to the current folder; CHANGE: a changelist\n"
           "number or 'default'):\n";
    for (const Command& command : commands())
        printUsageLine(out, command.usage, command.summary);
    printUsageLine(out, "help [COMMAND]", "show this text, or one command's usage");
    out
        << "\nPaths: commands name files as you gave them; opened, describe, sync and revert -a name\n"
           "depot paths (//depot/...).\n"
           "Status words (JSON keeps the hexadecimal word beside them):";
    const std::vector<std::string> legend = statusLegend();
    for (std::size_t i = 0; i < legend.size(); ++i)
        out << (i % 4 == 0 ? "\n  " : ", ") << legend[i];
    out << ", 0x0 up to date\n"
           "\nExit status: 0 done, 1 the depot refused (the reason is printed), 2 bad usage.\n";
}

int runCommand(CommandLine line, std::ostream& out, std::ostream& err)
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
            << "; see hbdepot help\n";
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
            throw std::invalid_argument(std::string("no depot given (-d, HBDEPOT or a ") + ConfigFile::kName +
                                        " file)");
        if (line.passwordOnCommandLine())
            warnAboutVisiblePassword(err, "a password given with -P");
        Depot depot(std::filesystem::absolute(line.depot()).string());
        if (command->needs != Needs::Depot)
            inferAccount(depot, line);
        depot::TicketStore tickets;
        Context context{depot, line, args, out, err, tickets, {}};
        Result result;
        if (command->needs == Needs::Session)
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
