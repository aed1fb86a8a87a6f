#include "sessioncommands.h"

#include <filesystem>
#include <optional>
#include <ostream>
#include <stdexcept>

#include "commandcontext.h"
#include "passwordinput.h"

namespace hbrc::hbdepot {

using depot::Result;

namespace {

// A ticket given with -t (or HBDEPOT_TICKET) must be a live session of the user and workspace
// named beside it, if any: a ticket never silently stands in for another account.
Result checkGivenTicket(Context& c)
{
    std::string user;
    std::string workspace;
    Result result = c.depot.session(c.line.ticket(), user, workspace);
    if (!result.ok())
        return {result.code, "The ticket is not valid: " + result.error};
    if ((!c.line.user().empty() && c.line.user() != user) ||
        (!c.line.workspace().empty() && c.line.workspace() != workspace))
        return {depot::code::Failed, "The ticket is the session of " + user + " in workspace " + workspace +
                                         ", not of " + (c.line.user().empty() ? user : c.line.user()) +
                                         " in workspace " +
                                         (c.line.workspace().empty() ? workspace : c.line.workspace())};
    c.ticket = c.line.ticket();
    return result;
}

void requireAccount(const CommandLine& line)
{
    if (line.user().empty() || line.workspace().empty())
        throw std::invalid_argument("give a ticket (-t) or a user (-u) and a workspace (-w), or work inside a "
                                    "workspace's folder");
}

bool holds(const std::filesystem::path& root, const std::filesystem::path& folder)
{
    const std::filesystem::path relative = folder.lexically_relative(root);
    return !relative.empty() && *relative.begin() != "..";
}

Result logInWithPassword(Context& c)
{
    return c.depot.login(c.line.user(), passwordFor(c.line, "Password for " + c.line.user() + ": ", c.err),
                         c.line.workspace(), c.ticket);
}

// The depot refuses a wrong password with a text containing "Invalid password".
bool refusesPassword(const Result& result)
{
    return result.code == depot::code::Failed && result.error.find("Invalid password") != std::string::npos;
}

// A command that had no password to give cannot have given a wrong one: the user's session expired,
// was ended or never began. That is an unusable session (-34), with the way back in.
Result sessionNeeded(const Context& c, bool ticketKept)
{
    const std::string account = c.line.user() + " in workspace " + c.line.workspace();
    return {depot::code::SessionUnusable,
            ticketKept ? "The session of " + account + " has expired or ended: log in again with 'hbdepot login'."
                       : "User " + account + " is not logged in: log in with 'hbdepot login'."};
}

}  // namespace

void inferAccount(depot::Depot& depot, CommandLine& line)
{
    if (!line.ticket().empty() || (!line.user().empty() && !line.workspace().empty()))
        return;
    std::vector<depot::WorkspaceInfo> workspaces;
    if (!depot.workspaces(workspaces).ok())
        return;
    std::error_code error;
    const std::filesystem::path here = std::filesystem::weakly_canonical(std::filesystem::current_path(error), error);
    const depot::WorkspaceInfo* best = nullptr;
    for (const depot::WorkspaceInfo& workspace : workspaces) {
        const bool fits = (line.user().empty() || line.user() == workspace.owner) &&
                          (line.workspace().empty() || line.workspace() == workspace.name) &&
                          holds(std::filesystem::weakly_canonical(workspace.root, error), here);
        if (fits && (!best || workspace.root.size() > best->root.size()))
            best = &workspace;
    }
    if (best)
        line.inferAccount(best->owner, best->name);
}

Result openSession(Context& c)
{
    if (!c.line.ticket().empty())
        return checkGivenTicket(c);
    requireAccount(c.line);
    const std::optional<depot::StoredTicket> stored = c.tickets.find(c.depotKey(), c.line.user());
    const bool ticketKept = stored && stored->workspace == c.line.workspace();
    if (ticketKept) {
        std::string user;
        std::string workspace;
        if (c.depot.session(stored->ticket, user, workspace).ok()) {
            c.ticket = stored->ticket;
            return {};
        }
    }
    // A user without a password needs none, so the log-in is tried even without one.
    const bool passwordGiven = passwordOffered(c.line);
    const Result result = logInWithPassword(c);
    return !passwordGiven && refusesPassword(result) ? sessionNeeded(c, ticketKept) : result;
}

Result login(Context& c)
{
    if (!c.line.ticket().empty()) {
        const Result result = checkGivenTicket(c);
        if (result.ok())
            c.out << "The ticket is valid.\n";
        return result;
    }
    requireAccount(c.line);
    const Result result = logInWithPassword(c);
    if (!result.ok())
        return result;
    if (c.args.flag("-p")) {
        c.out << c.ticket << "\n";
        return result;
    }
    c.tickets.save(c.depotKey(), c.line.user(), {c.line.workspace(), c.ticket});
    c.out << "User " << c.line.user() << " logged in to workspace " << c.line.workspace() << ".\n";
    return result;
}

Result logout(Context& c)
{
    std::string ticket = c.line.ticket();
    if (ticket.empty()) {
        if (c.line.user().empty())
            throw std::invalid_argument("give a ticket (-t) or a user (-u)");
        const std::optional<depot::StoredTicket> stored = c.tickets.find(c.depotKey(), c.line.user());
        if (!stored)
            return {depot::code::Failed, "User " + c.line.user() + " is not logged in to this depot."};
        ticket = stored->ticket;
        c.tickets.forget(c.depotKey(), c.line.user());
    }
    const Result result = c.depot.logout(ticket);
    // A session that already ended needs no ending; its kept ticket is gone all the same.
    if (result.ok() || result.code == depot::code::SessionUnusable)
        c.out << "Logged out.\n";
    return result.code == depot::code::SessionUnusable ? Result{} : result;
}

}  // namespace hbrc::hbdepot
