#include <hbrcservices/statuscache.h>

namespace hbrc::host {

StatusCache::StatusCache(std::chrono::milliseconds lifetime, Clock clock)
    : m_lifetime(lifetime), m_clock(std::move(clock))
{
}

std::chrono::steady_clock::time_point StatusCache::Now() const
{
    return m_clock ? m_clock() : std::chrono::steady_clock::now();
}

void StatusCache::Store(const std::vector<std::string>& files, const std::vector<revision::FileStatus>& statuses)
{
    const auto now = Now();
    // Room for all of them at once: a large first answer would otherwise rehash the entries
    // again and again as it goes in.
    m_entries.reserve(files.size());
    for (std::size_t i = 0; i < files.size() && i < statuses.size(); ++i)
        m_entries[files[i]] = Entry{statuses[i], now};
}

std::optional<std::vector<revision::FileStatus>> StatusCache::Lookup(const std::vector<std::string>& files) const
{
    const auto oldest = Now() - m_lifetime;
    std::vector<revision::FileStatus> statuses;
    statuses.reserve(files.size());
    for (const std::string& file : files) {
        const auto found = m_entries.find(file);
        if (found == m_entries.end() || found->second.storedAt < oldest)
            return std::nullopt;
        statuses.push_back(found->second.status);
    }
    return statuses;
}

bool StatusCache::Knows(const std::string& file) const
{
    const auto found = m_entries.find(file);
    return found != m_entries.end() && found->second.storedAt >= Now() - m_lifetime;
}

void StatusCache::Forget(const std::vector<std::string>& files)
{
    for (const std::string& file : files)
        m_entries.erase(file);
}

}  // namespace hbrc::host
