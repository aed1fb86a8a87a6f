#include "workerconnection.h"

namespace hbrc::studio {

revision::Result WorkerConnection::prepare(const Account& account, std::string& ticket)
{
    if (!m_server || m_serverSetting != account.server) {
        m_serverSetting = account.server;
        m_server = host::OpenRevisionServer(account.server, {});
        m_ownTicket.clear();
    }
    ticket = account.ticket;
    if (m_server->capabilities().has(revision::Capability::SharedSessions))
        return {};
    if (account.ticket.empty()) {
        // The services have no session (never logged in, or logged out): neither has this one.
        m_ownTicket.clear();
        return {revision::code::SessionUnusable, revision::kNotLoggedInText};
    }
    revision::Result result;
    if (m_ownTicket.empty())
        result = m_server->login(account.userName, account.password, account.workspaceName, m_ownTicket);
    ticket = m_ownTicket;
    return result;
}

void WorkerConnection::forget()
{
    m_server.reset();
    m_ownTicket.clear();
}

}  // namespace hbrc::studio
