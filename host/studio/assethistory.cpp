#include "assethistory.h"

#include <algorithm>
#include <charconv>

namespace hbrc::studio {

AssetHistory::AssetHistory(std::vector<std::string> files, std::vector<std::vector<revision::FileRevision>> histories)
{
    add(files, std::move(histories));
}

void AssetHistory::add(const std::vector<std::string>& files, std::vector<std::vector<revision::FileRevision>> histories)
{
    for (std::size_t i = 0; i < files.size() && i < histories.size(); ++i) {
        if (knows(files[i]))
            continue;
        m_files.push_back(files[i]);
        for (const revision::FileRevision& revision : histories[i])
            m_entries.push_back({m_files.size() - 1, revision});
        m_histories.push_back(std::move(histories[i]));
    }
    std::stable_sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
        const std::int64_t left = number(a.revision.changelist);
        const std::int64_t right = number(b.revision.changelist);
        return left != right ? left > right : a.file < b.file;
    });
}

bool AssetHistory::knows(const std::string& file) const
{
    return std::find(m_files.begin(), m_files.end(), file) != m_files.end();
}

std::int64_t AssetHistory::number(const revision::ChangelistId& change)
{
    std::int64_t value = 0;
    std::from_chars(change.data(), change.data() + change.size(), value);
    return value;
}

std::int64_t AssetHistory::revisionAt(const std::string& file, const revision::ChangelistId& change) const
{
    const auto found = std::find(m_files.begin(), m_files.end(), file);
    if (found == m_files.end())
        return 0;
    const std::int64_t limit = number(change);
    // Newest first: the first revision made by change or before it.
    for (const revision::FileRevision& revision : m_histories[std::size_t(found - m_files.begin())])
        if (number(revision.changelist) <= limit)
            return revision.action == revision::FileAction::Delete ? 0 : revision.revision;
    return 0;
}

std::vector<revision::FileAtRevision> AssetHistory::filesAt(const revision::ChangelistId& change) const
{
    std::vector<revision::FileAtRevision> files;
    for (const std::string& file : m_files)
        if (const std::int64_t revision = revisionAt(file, change))
            files.push_back({file, revision});
    return files;
}

revision::ChangelistId AssetHistory::changeBefore(const revision::ChangelistId& change) const
{
    const std::int64_t limit = number(change);
    for (const Entry& entry : m_entries)
        if (number(entry.revision.changelist) < limit)
            return entry.revision.changelist;
    return {};
}

revision::ChangelistId AssetHistory::changeOfRevision(std::int64_t kelRevision) const
{
    if (m_histories.empty())
        return {};
    for (const revision::FileRevision& revision : m_histories.front())
        if (revision.revision == kelRevision)
            return revision.changelist;
    return {};
}

AssetHistory::Comparison AssetHistory::choose(const std::vector<revision::ChangelistId>& changes, bool edits,
                                              const revision::ChangelistId& haveChange) const
{
    if (edits && changes.size() <= 1)
        return {changes.empty() ? haveChange : changes.front(), {}, true, true};
    if (edits || changes.empty() || changes.size() > 2)
        return {};
    if (changes.size() == 1)
        return {changeBefore(changes.front()), changes.front(), false, true};
    const bool ordered = number(changes[0]) <= number(changes[1]);
    return {changes[ordered ? 0 : 1], changes[ordered ? 1 : 0], false, true};
}

}  // namespace hbrc::studio
