#pragma once

#include <hbrcservices/revisiontypes.h>

#include <cstdint>
#include <string>
#include <vector>

namespace hbrc::studio {

// The history of one asset: the revisions of its .kel file and of its external files, merged
// newest first, and which revision of each file the asset had as of one of its changes. A change
// is named by its id; both servers number their changes, so that a later change has a larger id.
class AssetHistory
{
public:
    struct Entry
    {
        std::size_t file = 0;  // index into files()
        revision::FileRevision revision;
    };

    AssetHistory() = default;
    // files by local path, the .kel file first; histories as fileHistory answers them.
    AssetHistory(std::vector<std::string> files, std::vector<std::vector<revision::FileRevision>> histories);

    // Adds the histories of more files (external files an older version listed).
    void add(const std::vector<std::string>& files, std::vector<std::vector<revision::FileRevision>> histories);
    bool knows(const std::string& file) const;

    const std::vector<std::string>& files() const { return m_files; }
    // Every revision of every file, newest change first; in one change the .kel file first.
    const std::vector<Entry>& entries() const { return m_entries; }
    // The revision file had as of change: 0 when it had none yet or was deleted by then.
    std::int64_t revisionAt(const std::string& file, const revision::ChangelistId& change) const;
    // Each file that had a revision as of change, at that revision.
    std::vector<revision::FileAtRevision> filesAt(const revision::ChangelistId& change) const;
    // The asset's newest change before change; "" when it has none.
    revision::ChangelistId changeBefore(const revision::ChangelistId& change) const;
    // The change that brought the revision the workspace has of the .kel file ("" for none).
    revision::ChangelistId changeOfRevision(std::int64_t kelRevision) const;

    // What a choice of rows compares: two changes (the older one before); one change against the
    // asset's change before it; a change, else the one the workspace has, against the edits in
    // memory. No comparison (empty) for any other choice.
    struct Comparison
    {
        revision::ChangelistId before;
        revision::ChangelistId after;  // unused with the edits
        bool withEdits = false;
        bool valid = false;
    };
    Comparison choose(const std::vector<revision::ChangelistId>& changes, bool edits,
                      const revision::ChangelistId& haveChange) const;

    static std::int64_t number(const revision::ChangelistId& change);

private:
    std::vector<std::string> m_files;
    std::vector<std::vector<revision::FileRevision>> m_histories;
    std::vector<Entry> m_entries;
};

}  // namespace hbrc::studio
