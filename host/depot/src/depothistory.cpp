// The depot's history questions: a file's revisions, its content at one, the submitted changes, the
// files as of a change, and the users. Each is one read transaction whatever its list.
#include <depot/depot.h>

#include "contentstore.h"
#include "depoterror.h"
#include "depotimpl.h"
#include "filestate.h"
#include "pendingchange.h"

namespace hbrc::depot {

namespace {

DepotError outsideWorkspace(const Call& call, const std::string& localPath)
{
    return DepotError(code::Failed, localPath + " is not below the root of workspace " + call.workspace().name());
}

// The depot key of a local path; refused when it lies outside the session's workspace.
std::string keyOf(const Call& call, const std::string& localPath)
{
    std::optional<std::string> key = call.workspace().keyOf(localPath);
    if (!key)
        throw outsideWorkspace(call, localPath);
    return *key;
}

// Local paths as one bound JSON array of depot keys ("" for the root itself), so that one
// statement asks about all of them; nothing when there are none (no bound).
std::optional<std::string> scopeOf(const Call& call, const Depot::Files& paths)
{
    if (paths.empty())
        return std::nullopt;
    std::vector<std::string> keys;
    for (const std::string& path : paths) {
        std::optional<std::string> key = call.workspace().scopeOf(path);
        if (!key)
            throw outsideWorkspace(call, path);
        keys.push_back(*key);
    }
    return jsonArrayOf({keys.begin(), keys.end()});
}

// The SQL condition that the depot key in `column` lies at or below one of the keys bound as ?N
// (a JSON array from scopeOf); a NULL binding lets every key through.
std::string atOrBelow(const std::string& column, int parameter)
{
    const std::string bound = "?" + std::to_string(parameter);
    return "(" + bound + " IS NULL OR EXISTS (SELECT 1 FROM json_each(" + bound + ") scope WHERE scope.value = '' OR " +
           column + " = scope.value OR substr(" + column + ", 1, length(scope.value) + 1) = scope.value || '/'))";
}

// The columns of a revision row with its change: path, rev, change, action, user, workspace, time,
// description.
constexpr const char* kRevisionColumns =
    "r.path, r.rev, r.change, r.action, c.user, c.workspace, c.time, c.description";

FileRevision revisionOf(const Statement& row, bool withDescription)
{
    return {depotPathOf(row.text(0)), row.integer(1),  std::to_string(row.integer(2)),
            actionFromName(row.text(3)), row.text(4), row.text(5), row.integer(6),
            withDescription ? row.text(7) : std::string()};
}

}  // namespace

Result Depot::fileHistory(const std::string& ticket, const Files& files, std::size_t limit,
                          std::vector<std::vector<FileRevision>>& histories)
{
    std::vector<std::vector<FileRevision>> answer;
    const Result result = d->runInSession(Operation::History, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        // The revisions' primary key (path, rev) walks each file's newest first.
        Statement select(call.db(), (std::string("SELECT ") + kRevisionColumns +
                                     " FROM revisions r JOIN changes c ON c.number = r.change WHERE r.path = ?1 "
                                     "ORDER BY r.rev DESC LIMIT ?2")
                                        .c_str());
        for (const std::string& file : files) {
            std::vector<FileRevision>& history = answer.emplace_back();
            select.bind(1, keyOf(call, file)).bind(2, limit == 0 ? std::int64_t{-1} : static_cast<std::int64_t>(limit));
            while (select.step())
                history.push_back(revisionOf(select, true));
        }
    });
    if (result.ok())
        histories = std::move(answer);
    return result;
}

Result Depot::fileContent(const std::string& ticket, const FileAtRevision& file, std::ostream& out)
{
    return d->runInSession(Operation::Content, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        const std::string key = keyOf(call, file.file);
        Statement select(call.db(), "SELECT r.rev, r.action, r.content_id FROM revisions r "
                                    "WHERE r.path = ?1 AND r.rev = coalesce(nullif(?2, 0), "
                                    "(SELECT head_rev FROM files WHERE path = ?1))");
        if (!select.bind(1, key).bind(2, file.revision).step())
            throw DepotError(code::Failed, depotPathOf(key) + (file.revision ? "#" + std::to_string(file.revision) : "") +
                                               " - no such revision");
        const std::string named = depotPathOf(key) + "#" + std::to_string(select.integer(0));
        if (actionFromName(select.text(1)) == FileAction::Delete || select.isNull(2))
            throw DepotError(code::Failed, named + " deletes the file; it has no content");
        const std::int64_t content = select.integer(2);
        select.reset();
        ContentStore(call.db()).copy(content, out);
    });
}

Result Depot::submittedChanges(const std::string& ticket, const ChangeFilter& filter, std::vector<Changelist>& changes)
{
    std::vector<Changelist> answer;
    const Result result = d->runInSession(Operation::Changelists, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        // Newest first by number, as changes are named and listed everywhere else.
        Statement select(call.db(), ("SELECT c.number, c.description, c.user, c.workspace, c.time FROM changes c "
                                     "WHERE c.submitted = 1 AND (?1 = '' OR c.user = ?1) AND (?2 = 0 OR c.time >= ?2) "
                                     "AND (?3 = 0 OR c.time <= ?3) AND (?4 IS NULL OR EXISTS (SELECT 1 FROM revisions r "
                                     "WHERE r.change = c.number AND " +
                                     atOrBelow("r.path", 4) + ")) ORDER BY c.number DESC LIMIT ?5")
                                        .c_str());
        select.bind(1, filter.user).bind(2, filter.since).bind(3, filter.until).bind(4, scopeOf(call, filter.paths));
        select.bind(5, filter.limit == 0 ? std::int64_t{-1} : static_cast<std::int64_t>(filter.limit));
        while (select.step())
            answer.push_back({std::to_string(select.integer(0)), select.text(1), select.text(2), select.text(3),
                              ChangelistState::Submitted, {}, select.integer(4)});
    });
    if (result.ok())
        changes = std::move(answer);
    return result;
}

Result Depot::filesAt(const std::string& ticket, const Files& paths, const ChangelistId& change,
                      std::vector<FileRevision>& files)
{
    std::vector<FileRevision> answer;
    const Result result = d->runInSession(Operation::Files, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        const std::optional<std::int64_t> number = parseChangelistId(change);
        if (number) {
            Statement submitted(call.db(), "SELECT submitted FROM changes WHERE number = ?1");
            if (!submitted.bind(1, *number).step())
                throw DepotError(code::Failed, "Change " + change + " unknown.");
            if (submitted.integer(0) == 0)
                throw DepotError(code::Failed, "Change " + change + " is not submitted.");
            submitted.reset();
        }
        // Each file's newest revision among the changes submitted up to the one asked about, in
        // the order of submission (a numbered changelist submitted late keeps its older number);
        // SQLite takes the other columns from the row with the maximum.
        Statement select(call.db(), (std::string("SELECT ") + kRevisionColumns + ", max(r.rev) FROM revisions r " +
                                     "JOIN changes c ON c.number = r.change WHERE (?1 IS NULL OR (c.time, c.number) <= "
                                     "(SELECT time, number FROM changes WHERE number = ?1)) AND " +
                                     atOrBelow("r.path", 2) + " GROUP BY r.path ORDER BY r.path")
                                        .c_str());
        select.bind(1, number).bind(2, scopeOf(call, paths));
        while (select.step()) {
            call.checkpoint();
            if (actionFromName(select.text(3)) != FileAction::Delete)
                answer.push_back(revisionOf(select, false));
        }
    });
    if (result.ok())
        files = std::move(answer);
    return result;
}

Result Depot::users(const std::string& ticket, std::vector<std::string>& users)
{
    std::vector<std::string> answer;
    const Result result = d->runInSession(Operation::Users, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        Statement select(call.db(), "SELECT name FROM users ORDER BY name");
        while (select.step())
            answer.push_back(select.text(0));
    });
    if (result.ok())
        users = std::move(answer);
    return result;
}

}  // namespace hbrc::depot
