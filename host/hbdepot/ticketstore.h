#pragma once

// The tickets "hbdepot login" keeps, one per depot and user, in a file only its owner may read
// ($HBDEPOT_TICKETS, else ~/.hbdepot_tickets), so that later commands need no password.

#include <optional>
#include <string>

namespace hbrc::hbdepot {

struct StoredTicket
{
    std::string workspace;
    std::string ticket;
};

class TicketStore
{
public:
    explicit TicketStore(std::string file = defaultFile());
    static std::string defaultFile();

    std::optional<StoredTicket> find(const std::string& depot, const std::string& user) const;
    // Throws std::runtime_error when the file cannot be written.
    void save(const std::string& depot, const std::string& user, const StoredTicket& ticket);
    // True when there was a ticket to forget.
    bool forget(const std::string& depot, const std::string& user);

    const std::string& file() const { return m_file; }

private:
    std::string m_file;
};

}  // namespace hbrc::hbdepot
