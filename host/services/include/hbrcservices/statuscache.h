#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/revisiontypes.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace hbrc::host {

// The last known server status of files, so that per-object questions (needs action, can check
// out) need no round trip of their own. Filled by every status question; a change made through
// the services forgets the files it touched, a change of session forgets everything; entries
// older than the lifetime count as unknown, so that changes by other users are seen again.
class HBRC_SERVICES_EXPORT StatusCache
{
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    explicit StatusCache(std::chrono::milliseconds lifetime = std::chrono::seconds(10), Clock clock = {});

    void Store(const std::vector<std::string>& files, const std::vector<revision::FileStatus>& statuses);
    // The statuses of all files, in their order; nothing when one of them is unknown or stale.
    std::optional<std::vector<revision::FileStatus>> Lookup(const std::vector<std::string>& files) const;
    // True when the file's status is known and not stale.
    bool Knows(const std::string& file) const;
    void Forget(const std::vector<std::string>& files);
    void Invalidate() { m_entries.clear(); }
    std::size_t Size() const { return m_entries.size(); }

private:
    struct Entry
    {
        revision::FileStatus status;
        std::chrono::steady_clock::time_point storedAt;
    };

    std::chrono::steady_clock::time_point Now() const;

    std::chrono::milliseconds m_lifetime;
    Clock m_clock;
    std::unordered_map<std::string, Entry> m_entries;
};

}  // namespace hbrc::host
