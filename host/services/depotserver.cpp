#include "depotserver.h"

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
