#pragma once

// The tickets kept for later log-ins, one per depot and user, in a file only its owner may read
// ($HBDEPOT_TICKETS, else ~/.hbdepot_tickets): "hbdepot login" keeps them and every host on the
// embedded depot reads and keeps them too, so that a log-in in a terminal and one in a host are one.

#include <depot/export.h>

#include <optional>
#include <string>

namespace hbrc::depot {

struct StoredTicket
{
    std::string workspace;
    std::string ticket;
};

class HBRC_DEPOT_EXPORT TicketStore
{
public:
    explicit TicketStore(std::string file = defaultFile());
    static std::string defaultFile();
    // The depot as the store names it: one name whatever path led to the depot file.
    static std::string depotKey(const std::string& depotPath);

    std::optional<StoredTicket> find(const std::string& depot, const std::string& user) const;
    // Throws std::runtime_error when the file cannot be written.
    void save(const std::string& depot, const std::string& user, const StoredTicket& ticket);
    // True when there was a ticket to forget.
    bool forget(const std::string& depot, const std::string& user);

    const std::string& file() const { return m_file; }

private:
    std::string m_file;
};

}  // namespace hbrc::depot
