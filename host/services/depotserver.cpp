#include "depotserver.h"

#include <depot/ticketstore.h>

#include <stdexcept>

namespace hbrc::host {

depot::Result DepotServer::login(const std::string& user, const std::string& password, const std::string& workspace,
                                 std::string& ticket)
{
    return m_depot.login(user, password, workspace, ticket);
}

depot::Result DepotServer::expireSession(const std::string& ticket)
{
    return m_depot.expireSession(ticket);
}

depot::Result DepotServer::resumeKept(const std::string& user, const std::string& workspace, std::string& ticket)
{
    const std::optional<depot::StoredTicket> kept =
        depot::TicketStore().find(depot::TicketStore::depotKey(path()), user);
    if (kept && kept->workspace == workspace) {
        std::string owner;
        std::string ownersWorkspace;
        const depot::Result alive = m_depot.session(kept->ticket, owner, ownersWorkspace);
        if (alive.ok() && owner == user && ownersWorkspace == workspace) {
            ticket = kept->ticket;
            return alive;
        }
    }
    return {depot::code::Failed, "No live log-in of " + user + " in workspace " + workspace + " is kept."};
}

depot::Result DepotServer::keep(const std::string& ticket)
{
    std::string user;
    std::string workspace;
    const depot::Result alive = m_depot.session(ticket, user, workspace);
    if (!alive.ok())
        return alive;
    try {
        depot::TicketStore().save(depot::TicketStore::depotKey(path()), user, {workspace, ticket});
    } catch (const std::runtime_error& error) {
        return {depot::code::Failed, error.what()};
    }
    return alive;
}

depot::Result DepotServer::logout(const std::string& user, const std::string& ticket)
{
    std::string notForgotten;
    try {
        depot::TicketStore().forget(depot::TicketStore::depotKey(path()), user);
    } catch (const std::runtime_error& error) {
        notForgotten = error.what();
    }
    const depot::Result ended = m_depot.logout(ticket);
    if (!notForgotten.empty())
        return {depot::code::Failed, notForgotten};
    // A session that had ended already needs no ending.
    return ended.code == depot::code::SessionUnusable ? depot::Result{} : ended;
}

depot::Result DepotServer::sync(const std::string& ticket, const Files& files, const depot::CancelCheck& cancel)
{
    return m_depot.sync(ticket, files, depot::SyncMode::Safe, cancel);
}

depot::Result DepotServer::status(const std::string& ticket, const Files& files,
                                  std::vector<depot::FileStatus>& statuses, const depot::CancelCheck& cancel)
{
    return m_depot.status(ticket, files, statuses, cancel);
}

depot::Result DepotServer::holders(const std::string& ticket, const Files& files,
                                   std::vector<std::vector<std::string>>& users, const depot::CancelCheck& cancel)
{
    return m_depot.holders(ticket, files, users, cancel);
}

depot::Result DepotServer::edit(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                                const depot::CancelCheck& cancel)
{
    return m_depot.edit(ticket, files, changelist, cancel);
}

depot::Result DepotServer::add(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                               const depot::CancelCheck& cancel)
{
    return m_depot.add(ticket, files, changelist, cancel);
}

depot::Result DepotServer::remove(const std::string& ticket, const Files& files,
                                  const depot::ChangelistId& changelist, const depot::CancelCheck& cancel)
{
    return m_depot.remove(ticket, files, changelist, cancel);
}

depot::Result DepotServer::revert(const std::string& ticket, const Files& files, const depot::CancelCheck& cancel)
{
    return m_depot.revert(ticket, files, cancel);
}

depot::Result DepotServer::submit(const std::string& ticket, const depot::ChangelistId& changelist,
                                  const std::string& description, depot::ChangelistId& submitted,
                                  const depot::CancelCheck& cancel)
{
    return m_depot.submit(ticket, changelist, description, submitted, cancel);
}

depot::Result DepotServer::changelists(const std::string& ticket, depot::ChangelistState state,
                                       std::vector<depot::Changelist>& changelists)
{
    return m_depot.changelists(ticket, state, changelists);
}

depot::Result DepotServer::describe(const std::string& ticket, const depot::ChangelistId& changelist,
                                    depot::Changelist& description)
{
    return m_depot.describe(ticket, changelist, description);
}

depot::Result DepotServer::createChangelist(const std::string& ticket, const std::string& description,
                                            depot::ChangelistId& created)
{
    return m_depot.createChangelist(ticket, description, created);
}

depot::Result DepotServer::changelistExists(const std::string& ticket, const depot::ChangelistId& changelist,
                                            bool& exists)
{
    return m_depot.changelistExists(ticket, changelist, exists);
}

depot::Result DepotServer::pendingChangelists(const std::string& ticket, std::vector<depot::PendingChangelist>& pending)
{
    return m_depot.pending(ticket, pending);
}

depot::Result DepotServer::setDescription(const std::string& ticket, const depot::ChangelistId& changelist,
                                          const std::string& description)
{
    return m_depot.setDescription(ticket, changelist, description);
}

depot::Result DepotServer::deleteChangelist(const std::string& ticket, const depot::ChangelistId& changelist)
{
    return m_depot.deleteChangelist(ticket, changelist);
}

depot::Result DepotServer::reopen(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                                  const depot::CancelCheck& cancel)
{
    return m_depot.reopen(ticket, files, changelist, cancel);
}

depot::Result DepotServer::revertUnchanged(const std::string& ticket, const Files& files,
                                           std::vector<std::string>& reverted, const depot::CancelCheck& cancel)
{
    return m_depot.revertUnchanged(ticket, files, reverted, cancel);
}

}  // namespace hbrc::host
