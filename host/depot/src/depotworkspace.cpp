// The workspace as a whole: the files that changed on its disk without being opened, and the
// files a status of the whole workspace asks about.
#include <depot/depot.h>

#include <algorithm>
#include <filesystem>

#include "depoterror.h"
#include "depotimpl.h"
#include "workspacescan.h"
#include "workspaceview.h"

namespace hbrc::depot {

namespace fs = std::filesystem;

namespace {

// The configuration file hbdepot keeps in a workspace's root, naming its depot, user and workspace.
constexpr const char* kWorkspaceConfigFile = ".hbdepot";

// The keys the paths name ("" for the root itself); a path outside the root is refused.
std::vector<std::string> scopesOf(const WorkspaceView& workspace, const Depot::Files& paths)
{
    if (paths.empty())
        return {std::string()};
    std::vector<std::string> scopes;
    std::string outside;
    for (const std::string& path : paths) {
        const fs::path local = fs::path(path).is_relative() ? workspace.root() / path : fs::path(path);
        if (local.lexically_normal().lexically_relative(workspace.root()) == ".")
            scopes.emplace_back();
        else if (const std::optional<std::string> key = workspace.keyOf(path))
            scopes.push_back(*key);
        else
            outside += "\n" + path + " is not under the workspace root " + workspace.root().string();
    }
    if (!outside.empty())
        throw DepotError(code::Failed, "Cannot look for changed files:" + outside);
    return scopes;
}

// The depot file, the side files SQLite and the writer lock keep beside it, and the workspace's
// configuration file, where they lie below the root.
std::set<std::string> ownFilesOf(const WorkspaceView& workspace, const std::string& depotPath)
{
    std::set<std::string> own{kWorkspaceConfigFile};
    if (const std::optional<std::string> depot = workspace.keyOf(fs::absolute(depotPath).lexically_normal().string())) {
        for (const char* suffix : {"", "-wal", "-shm", "-journal", "-lock"})
            own.insert(*depot + suffix);
    }
    return own;
}

WorkspaceRecords readRecords(Database& db, const WorkspaceView& workspace)
{
    WorkspaceRecords records;
    Statement have(db, "SELECT h.path, h.rev, c.size, c.digest FROM have h "
                       "JOIN revisions r ON r.path = h.path AND r.rev = h.rev "
                       "JOIN contents c ON c.id = r.content_id WHERE h.workspace = ?1");
    have.bind(1, workspace.name());
    while (have.step()) {
        WorkspaceRecords::Revision revision{have.integer(1), {have.integer(2), {}}};
        const std::vector<char> digest = have.blob(3);
        // A damaged digest stays zero: no file matches it, so the file is offered as an edit.
        if (digest.size() == revision.content.digest.size())
            std::copy(digest.begin(), digest.end(), reinterpret_cast<char*>(revision.content.digest.data()));
        records.have.emplace(have.text(0), revision);
    }
    Statement opened(db, "SELECT path FROM opened WHERE workspace = ?1");
    opened.bind(1, workspace.name());
    while (opened.step())
        records.openHere.insert(opened.text(0));
    Statement atHead(db, "SELECT path FROM files WHERE head_deleted = 0");
    while (atHead.step())
        records.atHead.insert(atHead.text(0));
    return records;
}

}  // namespace

Result Depot::workspaceChanges(const std::string& ticket, const Files& paths, std::vector<WorkspaceChange>& changes,
                               const CancelCheck& cancel)
{
    std::vector<WorkspaceChange> answer;
    const Result result =
        d->runInSession(Operation::WorkspaceChanges, Transaction::Kind::Read, ticket, cancel, [&](Call& call) {
            const WorkspaceView& workspace = call.workspace();
            const std::vector<std::string> scopes = scopesOf(workspace, paths);
            WorkspaceRecords records = readRecords(call.db(), workspace);
            records.ownFiles = ownFilesOf(workspace, d->path);
            answer = scanWorkspace(workspace, records, scopes, [&call] { call.checkpoint(); });
        });
    if (result.ok())
        changes = std::move(answer);
    return result;
}

Result Depot::workspaceFiles(const std::string& ticket, Files& files)
{
    Files answer;
    const Result result = d->runInSession(Operation::Status, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        Statement select(call.db(), "SELECT path FROM have WHERE workspace = ?1 "
                                    "UNION SELECT path FROM opened WHERE workspace = ?1 "
                                    "UNION SELECT path FROM files WHERE head_deleted = 0 ORDER BY 1");
        select.bind(1, call.workspace().name());
        while (select.step())
            answer.push_back(call.workspace().localFileOf(select.text(0)));
    });
    if (result.ok())
        files = std::move(answer);
    return result;
}

}  // namespace hbrc::depot
