#include "filestate.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "workspaceview.h"

namespace hbrc::depot {

namespace {

void addOpenRecord(FileState& state, const WorkspaceView& workspace, const Statement& row, int first)
{
    OpenRecord record{row.text(first), row.text(first + 1), actionFromName(row.text(first + 2)),
                      row.optionalInteger(first + 3), row.integer(first + 4) != 0};
    if (record.workspace == workspace.name())
        state.mine = std::move(record);
    else
        state.others.push_back(std::move(record));
}

}  // namespace

FileStateReader::FileStateReader(Database& db, const WorkspaceView& workspace)
    : m_workspace(workspace),
      m_revisions(db, "SELECT f.head_rev, f.head_deleted, h.rev FROM (SELECT ?1 AS path) q "
                      "LEFT JOIN files f ON f.path = q.path "
                      "LEFT JOIN have h ON h.path = q.path AND h.workspace = ?2"),
      m_opened(db, "SELECT workspace, user, action, change, locked FROM opened WHERE path = ?1")
{
}

FileState FileStateReader::read(const std::string& localPath)
{
    FileState state;
    state.key = m_workspace.keyOf(localPath);
    if (!state.key)
        return state;
    m_revisions.bind(1, *state.key).bind(2, m_workspace.name());
    if (m_revisions.step()) {
        state.headRevision = m_revisions.optionalInteger(0);
        state.headDeleted = m_revisions.integer(1) != 0;
        state.haveRevision = m_revisions.optionalInteger(2);
        m_revisions.reset();
    }
    m_opened.bind(1, *state.key);
    while (m_opened.step())
        addOpenRecord(state, m_workspace, m_opened, 0);
    return state;
}

std::vector<FileState> readStates(Database& db, const WorkspaceView& workspace, const std::vector<std::string>& localPaths)
{
    // The keys go in as one JSON array; a row per key and open record comes back, keyed by the
    // key's place in that array. They go in key order, so that each key is looked up next to the
    // one before it in every index: asked in any other order, a large list would look each one up
    // on pages the ones before it pushed out of the caches.
    std::vector<FileState> states(localPaths.size());
    std::vector<std::pair<std::string_view, std::size_t>> asked;  // a key and its file's place
    for (std::size_t i = 0; i < localPaths.size(); ++i) {
        states[i].key = workspace.keyOf(localPaths[i]);
        if (states[i].key)
            asked.emplace_back(*states[i].key, i);
    }
    std::sort(asked.begin(), asked.end());
    std::vector<std::string_view> keys;
    keys.reserve(asked.size());
    for (const auto& [key, place] : asked)
        keys.push_back(key);
    Statement select(db, "SELECT a.key, f.head_rev, f.head_deleted, h.rev, o.workspace, o.user, o.action, o.change, "
                         "o.locked FROM json_each(?1) a "
                         "LEFT JOIN files f ON f.path = a.value "
                         "LEFT JOIN have h ON h.workspace = ?2 AND h.path = a.value "
                         "LEFT JOIN opened o ON o.path = a.value");
    select.bind(1, jsonArrayOf(keys)).bind(2, workspace.name());
    while (select.step()) {
        FileState& state = states.at(asked.at(static_cast<std::size_t>(select.integer(0))).second);
        state.headRevision = select.optionalInteger(1);
        state.headDeleted = select.integer(2) != 0;
        state.haveRevision = select.optionalInteger(3);
        if (!select.isNull(4))
            addOpenRecord(state, workspace, select, 4);
    }
    return states;
}

std::uint32_t statusWord(const FileState& state)
{
    if (!state.key)
        return status::NotInDepot;
    std::uint32_t word = 0;
    const bool addingIt = state.mine && state.mine->action == FileAction::Add;
    if (state.mine) {
        constexpr std::uint32_t mineBits[] = {status::OpenedForEdit, status::OpenedForAdd, status::OpenedForDelete};
        word |= mineBits[static_cast<int>(state.mine->action)];
    }
    for (const OpenRecord& other : state.others) {
        constexpr std::uint32_t otherBits[] = {status::OpenedByOthers, status::AddedByOthers, status::DeletedByOthers};
        word |= otherBits[static_cast<int>(other.action)];
        if (other.locked)
            word |= status::LockedByOthers;
    }
    if (!state.live() && !addingIt)
        word |= status::NotInDepot;
    // A file this workspace never synced, or whose copy is older than the head (also a deleted head).
    if ((state.live() || state.haveRevision) && !state.haveIsHead() && !addingIt)
        word |= status::NotAtHead;
    return word;
}

std::vector<std::string> holdersOf(const FileState& state)
{
    std::vector<std::string> users;
    for (const OpenRecord& other : state.others)
        users.push_back(other.user);
    std::sort(users.begin(), users.end());
    users.erase(std::unique(users.begin(), users.end()), users.end());
    return users;
}

ChangelistId changelistIdOf(const std::optional<std::int64_t>& change)
{
    return change ? std::to_string(*change) : ChangelistId();
}

FileAction actionFromName(const std::string& name)
{
    if (name == "add")
        return FileAction::Add;
    if (name == "delete")
        return FileAction::Delete;
    return FileAction::Edit;
}

const char* actionName(FileAction action)
{
    switch (action) {
    case FileAction::Add:
        return "add";
    case FileAction::Delete:
        return "delete";
    case FileAction::Edit:
        break;
    }
    return "edit";
}

}  // namespace hbrc::depot
