#pragma once

#include <hbrcservices/export.h>

#include <kel4/iuserparameters.h>

#include <string>

namespace hbrc::host {

// An account on a depot and, after a log-in, the ticket of its session. The password is never
// kept. The ticket is what the services hand to the depot; it stays here even after the depot
// has expired it, so that the depot can say so.
class HBRC_SERVICES_EXPORT UserParameters final : public kel4::RefCounted<kel4::IUserParameters>
{
public:
    UserParameters(std::string userName, std::string workspace, std::string server, std::string ticket = {})
        : m_userName(std::move(userName)), m_workspace(std::move(workspace)), m_server(std::move(server)),
          m_ticket(std::move(ticket))
    {
    }

    std::string GetUserName() const override { return m_userName; }
    std::string GetWorkspace() const override { return m_workspace; }
    std::string GetServer() const override { return m_server; }
    bool HasSession() const override { return !m_ticket.empty(); }

    const std::string& Ticket() const { return m_ticket; }

    // The ticket of a session made by these services; "" for no session or a foreign object.
    static std::string TicketOf(const kel4::IUserParameters* parameters)
    {
        const auto* ours = dynamic_cast<const UserParameters*>(parameters);
        return ours ? ours->m_ticket : std::string();
    }

private:
    std::string m_userName;
    std::string m_workspace;
    std::string m_server;
    std::string m_ticket;
};

}  // namespace hbrc::host
