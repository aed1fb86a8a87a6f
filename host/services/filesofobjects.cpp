#include "filesofobjects.h"

#include <functional>
#include <limits>

namespace hbrc::host {

namespace {

constexpr std::size_t kFree = std::numeric_limits<std::size_t>::max();

}  // namespace

FilesOfObjects::FilesOfObjects(std::size_t objectCount)
{
    m_files.reserve(objectCount);
    m_places.reserve(objectCount);
    m_ends.reserve(objectCount);
    std::size_t slots = 16;
    while (slots < 2 * objectCount)
        slots *= 2;
    m_slots.assign(slots, {0, kFree});
}

void FilesOfObjects::Add(kel4::Set<std::string> objectFiles)
{
    while (!objectFiles.empty())
        m_places.push_back(PlaceOf(std::move(objectFiles.extract(objectFiles.begin()).value())));
    m_ends.push_back(m_places.size());
}

std::size_t FilesOfObjects::PlaceOf(std::string file)
{
    if (2 * (m_files.size() + 1) > m_slots.size())
        Grow();
    const std::size_t hash = std::hash<std::string>{}(file);
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        auto& [slotHash, place] = m_slots[slot];
        if (place == kFree) {
            slotHash = hash;
            place = m_files.size();
            m_files.push_back(std::move(file));
            return place;
        }
        if (slotHash == hash && m_files[place] == file)
            return place;
    }
}

void FilesOfObjects::Grow()
{
    std::vector<std::pair<std::size_t, std::size_t>> old(2 * m_slots.size(), {0, kFree});
    old.swap(m_slots);
    const std::size_t mask = m_slots.size() - 1;
    for (const auto& [hash, place] : old) {
        if (place == kFree)
            continue;
        std::size_t slot = hash & mask;
        while (m_slots[slot].second != kFree)
            slot = (slot + 1) & mask;
        m_slots[slot] = {hash, place};
    }
}

std::vector<revision::FileStatus> FilesOfObjects::StatusesOf(std::size_t object,
                                                             const std::vector<revision::FileStatus>& answered) const
{
    std::vector<revision::FileStatus> statuses;
    const std::size_t begin = object == 0 ? 0 : m_ends[object - 1];
    statuses.reserve(m_ends[object] - begin);
    for (std::size_t i = begin; i < m_ends[object]; ++i)
        statuses.push_back(m_places[i] < answered.size() ? answered[m_places[i]] : revision::FileStatus{});
    return statuses;
}

}  // namespace hbrc::host
