#include "commands.h"

#include <depot/depot.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iomanip>
#include <limits>
#include <ostream>
#include <stdexcept>

#include "admincommands.h"
#include "changecommands.h"
#include "diffcommands.h"
#include "commandcontext.h"
#include "commandline.h"
#include "listings.h"
#include "passwordinput.h"
#include "sessioncommands.h"
#include "statuswords.h"
#include "workspacecommands.h"

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
    // For "help COMMAND": each option explained, then an example.
    const char* details;
    std::function<Result(Context&)> run;
};

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

const std::vector<Command>& commands()
{
    static const std::vector<Command> table = {
        {{"init"}, Needs::Depot, {{"--session-lifetime"}, {}, 0, 0}, "init [--session-lifetime SECONDS]",
         "create a new depot file",
         "  --session-lifetime SECONDS  how long a log-in lasts (default 43200, 12 hours)\n"
         "Example: hbdepot -d /srv/depot.db init --session-lifetime 3600",
         createDepot},
        {{"user", "add"}, Needs::Depot, {{}, {}, 1, 2}, "user add NAME",
         "add a user (asks for the password twice; empty: none)",
         "The password comes from --password-stdin, HBDEPOT_PASSWORD or -P, else it is asked for twice\n"
         "on a terminal; without any of them the user needs none.\n"
         "Example: printf '%s\\n' \"$PW\" | hbdepot --password-stdin user add alice",
         addUser},
        {{"user", "delete"}, Needs::Depot, {{}, {}, 1, 1}, "user delete NAME",
         "delete a user who owns no workspace; the changes they submitted stay",
         "Delete the user's workspaces first ('workspace delete'); the user's sessions end.\n"
         "Example: hbdepot user delete carol",
         deleteUser},
        {{"passwd"}, Needs::Account, {{}, {}, 0, 1}, "passwd [NAME]",
         "set a new password for a user (default: the current one); asks twice",
         "On a terminal the new password is asked for twice, without echo; --password-stdin takes it\n"
         "from the first line of standard input. An empty password lets the user log in with none.\n"
         "Sessions already open stay open.\n"
         "Example: hbdepot passwd alice",
         changePassword},
        {{"workspace", "add"}, Needs::Depot, {{}, {"--create"}, 3, 3}, "workspace add [--create] NAME OWNER ROOT",
         "add a workspace rooted in an existing folder (--create: make it)",
         "  --create   make the root folder, with a .hbdepot file naming the depot, owner and workspace,\n"
         "             so that commands inside it need no -d, -u or -w; nothing stays when it fails\n"
         "Example: hbdepot workspace add --create alice-ws alice ~/work/alice",
         addWorkspace},
        {{"workspace", "delete"}, Needs::Depot, {{}, {}, 1, 1}, "workspace delete NAME",
         "delete a workspace without open files; its files on disk stay",
         "Refused while files are open in the workspace: submit or revert them first. Its empty pending\n"
         "changelists, its sessions and a .hbdepot file in its root that names it go; its submitted\n"
         "changes stay in the history.\n"
         "Example: hbdepot workspace delete old-ws",
         deleteWorkspace},
        {{"login"}, Needs::Account, {{}, {"-p"}, 0, 0}, "login [-p]",
         "open a session and keep its ticket for later commands (-p: print it instead)",
         "  -p   print the ticket instead of keeping it, for -t or HBDEPOT_TICKET\n"
         "With -t, checks that the given ticket is a live session.\n"
         "Example: echo \"$PW\" | hbdepot --password-stdin -u alice -w alice-ws login",
         login},
        {{"logout"}, Needs::Account, {{}, {}, 0, 0}, "logout", "end the session and forget its kept ticket",
         "Example: hbdepot logout", logout},
        {{"info"}, Needs::Account, {{}, {}, 0, 0}, "info",
         "show the depot, user, workspace and configuration file in use",
         "With --json, one JSON object.\nExample: hbdepot info", printInfo},
        {{"sync"}, Needs::Session, {{}, {"-f", "--force"}, 0, kAny}, "sync [-f] [FILE[#REV]...]",
         "get the head revisions of the files, of all when none named (FILE#REV: that revision)",
         "  -f, --force   overwrite writable files that hold local changes (otherwise they are kept and\n"
         "                named: \"Can't clobber writable file ...\", exit status 1)\n"
         "  FILE#REV      bring the file to revision REV instead of the head (a deleting revision\n"
         "                removes it); refused for files open in this workspace\n"
         "Prints each file written, then \"updated N, deleted M\" (what was written, not more).\n"
         "Example: hbdepot sync art/ship.kel   or   hbdepot sync art/ship.kel#2",
         syncFiles},
        {{"edit"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "edit [-c CHANGE] FILE...", "open files for edit",
         "  -c CHANGE   open them in this pending changelist (default: the default one)\n"
         "Makes the files writable. All files are opened, or none.\nExample: hbdepot edit -c 4 ship.kel",
         editFiles},
        {{"add"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "add [-c CHANGE] FILE...", "open new files for add",
         "  -c CHANGE   open them in this pending changelist (default: the default one)\n"
         "Example: hbdepot add ship.kel sail.kel",
         addFiles},
        {{"delete"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "delete [-c CHANGE] FILE...",
         "open files for delete (removes the local copies)",
         "  -c CHANGE   open them in this pending changelist (default: the default one)\n"
         "Example: hbdepot delete old.kel",
         deleteFiles},
        {{"revert"}, Needs::Session, {{}, {"-a"}, 0, kAny}, "revert [-a] FILE...",
         "discard opened files' changes (-a: only unchanged edits; every file when none named)",
         "  -a   revert only files opened for edit whose content is unchanged; every such file when\n"
         "       none is named\n"
         "Edits and deletes get the workspace's revision back, read-only; an add stays as it is.\n"
         "Example: hbdepot revert -a",
         revertFiles},
        {{"reopen"}, Needs::Session, {{"-c"}, {}, 1, kAny}, "reopen [-c CHANGE] FILE...",
         "move opened files to another pending changelist (default: the default one)",
         "  -c CHANGE   the pending changelist to move them to (default: the default one)\n"
         "Example: hbdepot reopen -c 5 ship.kel",
         reopenFiles},
        {{"lock"}, Needs::Session, {{}, {}, 1, kAny}, "lock FILE...", "lock opened files against other users",
         "Example: hbdepot lock ship.kel", lockFiles},
        {{"unlock"}, Needs::Session, {{}, {}, 1, kAny}, "unlock FILE...", "release the locks of opened files",
         "Example: hbdepot unlock ship.kel", unlockFiles},
        {{"opened"}, Needs::Session, {{}, {"-a"}, 0, 0}, "opened [-a]",
         "list this workspace's opened files (-a: every workspace's)",
         "  -a   list the opened files of every workspace\nExample: hbdepot opened -a", printOpened},
        {{"change"}, Needs::Session, {{"-c", "-d"}, {}, 0, 1}, "change [-c CHANGE] DESCRIPTION | -d CHANGE",
         "create a pending changelist and print its number (-c: describe one anew; -d: delete an empty one)",
         "  -c CHANGE   give this pending changelist the new description instead\n"
         "  -d CHANGE   delete this pending changelist, which must be empty\n"
         "The new number is printed even with -q.\nExample: hull=$(hbdepot change \"a longer hull\")",
         changeChangelist},
        {{"changes"}, Needs::Session, {{"-s", "-m", "-u"}, {}, 0, kAny},
         "changes [-s pending|submitted] [-m N] [-u USER] [PATH...]",
         "list changelists, newest first (default: pending; -m: the newest N; -u: of one user)",
         "  -s pending|submitted   which changelists (default: this workspace's pending ones)\n"
         "  -m N                   only the newest N\n"
         "  -u USER                only those of USER\n"
         "  PATH...                submitted changes only: those that changed files at or below a PATH\n"
         "Example: hbdepot changes -s submitted -m 10 -u alice art",
         printChanges},
        {{"describe"}, Needs::Session, {{}, {}, 1, 1}, "describe CHANGE",
         "show a changelist, its date and its files ('default' too)", "Example: hbdepot describe 12",
         printDescription},
        {{"submit"}, Needs::Session, {{"-c", "-d"}, {}, 0, 0}, "submit [-c CHANGE] [-d DESCRIPTION]",
         "submit a changelist (default: the default one)",
         "  -c CHANGE        submit this pending changelist (default: the default one)\n"
         "  -d DESCRIPTION   the description (needed for the default changelist)\n"
         "Example: hbdepot submit -d \"first ship\"",
         submitChange},
        {{"status"}, Needs::Session, {{}, {}, 0, kAny}, "status [FILE...]",
         "print each file's status in words, its changelist and who holds it (no FILE: the whole workspace)",
         "Without FILE, lists every file of the workspace that is not up to date: open here, not at head,\n"
         "held by others, or changed without being opened (\"edited, not opened\", \"new, not opened\",\n"
         "\"deleted, not opened\"; 'hbdepot reconcile' opens those), named from the current folder.\n"
         "'hbdepot help' lists the status words; --json adds the hexadecimal word, and without FILE an\n"
         "\"unopened\" key (edit, add, delete, or empty).\n"
         "Example: hbdepot status ship.kel sail.kel",
         printStatus},
        {{"filelog"}, Needs::Session, {{"-m"}, {}, 1, kAny}, "filelog [-m N] FILE...",
         "list each file's revisions, newest first, with change, action, date, user and description",
         "  -m N   only the newest N revisions of each file\n"
         "A file the depot does not know is named (\"FILE - no such file in the depot\", exit status 1).\n"
         "Example: hbdepot filelog -m 5 ship.kel",
         printFileLog},
        {{"print"}, Needs::Session, {{"-r"}, {}, 1, 1}, "print [-r REV] FILE",
         "write a revision of a file (default: the head) to standard output, bytes as submitted",
         "  -r REV   the revision to print (a number, '#' before it allowed)\n"
         "A revision that deletes the file has no content and is refused (exit status 1).\n"
         "Example: hbdepot print -r 2 ship.kel > ship-2.kel",
         printContent},
        {{"diff"}, Needs::Session, {{}, {}, 0, kAny}, "diff [FILE...]",
         "show opened files' changes against the workspace's revision (all opened files when none named)",
         "Unified differences (--- the workspace's revision, +++ the file on disk); an add is shown\n"
         "against /dev/null, a delete as every line removed. A named file that is not open is named\n"
         "(exit status 1).\n"
         "Example: hbdepot diff ship.kel",
         printOpenedDifferences},
        {{"diff2"}, Needs::Session, {{}, {}, 3, 3}, "diff2 FILE REV1 REV2",
         "show the unified difference between two revisions of a file",
         "Prints nothing when the two revisions hold the same content.\n"
         "Example: hbdepot diff2 ship.kel 1 3",
         printRevisionDifference},
        {{"files"}, Needs::Session, {{"-c"}, {}, 0, kAny}, "files [-c CHANGE] [PATH...]",
         "list the depot's files at or below the paths (all when none named) with their revisions",
         "  -c CHANGE   as they were right after this submitted change (default: the head)\n"
         "Files deleted by then are left out.\n"
         "Example: hbdepot files -c 12 art",
         printFiles},
        {{"users"}, Needs::Session, {{}, {}, 0, 0}, "users", "list the depot's users",
         "Example: hbdepot users", printUsers},
        {{"workspaces"}, Needs::Session, {{}, {}, 0, 0}, "workspaces", "list the depot's workspaces with owner and root",
         "Example: hbdepot workspaces", printWorkspaces},
        {{"reconcile"}, Needs::Session, {{"-c"}, {"-n", "--keep-mine"}, 0, kAny},
         "reconcile [-n] [--keep-mine] [-c CHANGE] [PATH...]",
         "open the files changed without being opened, below PATH or in the whole workspace",
         "  -n            only say what would be opened\n"
         "  --keep-mine   open files edited over an older revision than the head, keeping your content\n"
         "  -c CHANGE     open them in this pending changelist (default: the default one)\n"
         "Compares the files with the workspace's revisions by content, not by the write bit: a file\n"
         "edited after making it writable, or changed by another tool, opens for edit; a new file for\n"
         "add; a file removed from the disk for delete. All are opened, or none: when an action is\n"
         "refused (someone else holds a file), the files opened before it are reverted without losing\n"
         "any change, and the refusal names the holders.\n"
         "A file edited while someone submitted a newer revision cannot be opened until it has that\n"
         "revision. --keep-mine copies your content to FILE.hbdepot-kept (flushed to the disk first),\n"
         "syncs the file to the head revision, writes your content back over it and opens it, saying\n"
         "so per file; when the reconcile is refused the file goes back to its revision, with your\n"
         "content. If it is interrupted, the copy stays, and the next reconcile puts it back first.\n"
         "Example: hbdepot reconcile -n art && hbdepot reconcile -c 4 art",
         reconcileFiles},
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

void printCommandHelp(std::ostream& out, const Command& command)
{
    printCommandUsage(out, command);
    out << command.details << "\n(hbdepot help lists the OPTIONS every command takes.)\n";
}

// A group of commands ("user", "workspace") given without a sub-command it has: which ones it has.
std::string subCommandsOf(const std::string& group)
{
    std::string names;
    for (const Command& command : commands()) {
        if (command.name.size() > 1 && command.name.front() == group)
            names += (names.empty() ? "" : ", ") + command.name[1];
    }
    return names;
}

}  // namespace

void printUsage(std::ostream& out)
{
    out << "Usage: hbdepot [OPTIONS] COMMAND [ARGUMENTS]\n"
           "Sets up, inspects and changes an embedded depot from the command line.\n\n"
           "Options (before or after the command; the environment variable, then the configuration\n"
           "file's key used when the option is absent):\n"
           "  -d, --depot PATH        the depot file (HBDEPOT, depot)\n"
           "  -u, --user NAME         log in as this user (HBDEPOT_USER, user)\n"
           "  -w, --workspace NAME    in this workspace (HBDEPOT_WORKSPACE, workspace)\n"
           "  -t, --ticket TICKET     use the session 'login -p' printed (HBDEPOT_TICKET)\n"
           "      --password-stdin    read the password from the first line of standard input\n"
           "  -P, --password TEXT     the password (HBDEPOT_PASSWORD); visible to other users, avoid it\n"
           "  -q, --quiet             do not say what was done; listings and errors still print\n"
           "      --json, -z json     listings (status, opened, changes, describe, info, filelog, files,\n"
           "                          users, workspaces) as JSON with a \"format\" version; schemas\n"
           "                          in share/hbrevisioncontrol/hbdepot/schemas\n"
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
    printUsageLine(out, "help [COMMAND]", "show this text, or one command's options and an example");
    out
        << "\nPaths: commands name files as you gave them; opened, describe, sync, revert -a, filelog,\n"
           "files and diff name depot paths (//depot/...).\n"
           "Status words (JSON keeps the hexadecimal word beside them):";
    const std::vector<std::string> legend = statusLegend();
    for (std::size_t i = 0; i < legend.size(); ++i)
        out << (i % 4 == 0 ? "\n  " : ", ") << legend[i];
    out << ", 0x0 up to date\n"
           "Changed without being opened (status without FILE; reconcile opens them): edited, not opened;\n"
           "  new, not opened; deleted, not opened\n"
           "\nExit status: 0 done, 1 refused or failed (the reason is printed), 2 bad usage.\n";
}

int runCommand(CommandLine line, std::ostream& out, std::ostream& err)
{
    const bool helpCommand = !line.words().empty() && line.words().front() == "help";
    const std::vector<std::string> words(line.words().begin() + (helpCommand ? 1 : 0), line.words().end());
    const Command* command = findCommand(words);
    if (!command) {
        if (words.empty()) {
            printUsage(helpCommand ? out : err);
            return helpCommand ? 0 : 2;
        }
        const std::string subCommands = subCommandsOf(words.front());
        if (helpCommand && !subCommands.empty() && words.size() == 1) {
            for (const Command& each : commands()) {
                if (each.name.front() == words.front())
                    printUsageLine(out, each.usage, each.summary);
            }
            return 0;
        }
        if (subCommands.empty())
            err << "hbdepot: unknown command '" << words.front() << "'";
        else if (words.size() == 1 || words[1].empty() || words[1][0] == '-')
            err << "hbdepot: missing sub-command of '" << words.front() << "' (" << subCommands << ")";
        else
            err << "hbdepot: unknown sub-command '" << words[1] << "' of '" << words.front() << "' (" << subCommands
                << ")";
        err << "; see hbdepot help\n";
        return 2;
    }
    std::vector<std::string> given(words.begin() + static_cast<std::ptrdiff_t>(command->name.size()), words.end());
    if (helpCommand || asksForHelp(given)) {
        printCommandHelp(out, *command);
        return 0;
    }
    try {
        given = line.takeOptionsAmong(given, command->syntax.options, command->syntax.flags);
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
