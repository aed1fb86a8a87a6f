// SvnServer's history questions: the repository's log, contents and listings (svnhistory.h) for
// the files of the session's working copy.
#include "svnservercall.h"

#include <svn_dirent_uri.h>

#include <charconv>
#include <set>

namespace hbrc::host {

namespace {

using revision::Result;
namespace code = revision::code;

// The repository paths of the local ones that lie in the working copy.
std::vector<std::string> RepositoryPathsOf(const SvnRepositoryPaths& where, const RevisionServer::Files& files)
{
    std::vector<std::string> paths;
    for (const std::string& file : files)
        if (std::optional<std::string> path = where.repositoryPath(file))
            paths.push_back(std::move(*path));
    return paths;
}

// A submitted change's number: the repository revision it made.
std::optional<long> RevisionNumber(const revision::ChangelistId& change)
{
    long number = 0;
    const auto [end, error] = std::from_chars(change.data(), change.data() + change.size(), number);
    if (error != std::errc() || end != change.data() + change.size() || number <= 0)
        return std::nullopt;
    return number;
}

}  // namespace

Result SvnServer::fileHistory(const std::string& ticket, const Files& files, std::size_t limit,
                              std::vector<std::vector<revision::FileRevision>>& histories)
{
    Call call(*this, {});
    SvnRepositoryPaths where;
    if (Result begun = call.begin(revision::Operation::History, ticket, where); !begun.ok())
        return begun;
    std::vector<std::optional<std::string>> paths;
    std::vector<std::string> known;
    for (const std::string& file : files) {
        paths.push_back(where.repositoryPath(file));
        if (paths.back())
            known.push_back(*paths.back());
    }
    // One log of the files, split per file. A log cannot name a path that the head revision lacks:
    // when one of them is not in the working copy from the repository (never added, or deleted),
    // the folder that holds them all is logged instead, which has the deletions too.
    std::vector<SvnLogEntry> log;
    if (!known.empty()) {
        const std::string folder = SvnCommonFolder(known);
        SvnLogQuery query;
        query.url = where.url(folder, call.pool());
        query.changedPaths = true;
        if (std::all_of(files.begin(), files.end(), [&](const std::string& file) {
                return !where.repositoryPath(file) || SvnIsFromRepository(file, call.context(), call.pool());
            })) {
            for (const std::string& path : known)
                query.paths.push_back(svn_relpath_skip_ancestor(folder.c_str(), path.c_str()));
            query.limit = known.size() == 1 ? static_cast<int>(limit) : 0;
        }
        svn_error_t* err = SvnReadLog(call.context(), query, log, call.pool());
        if (err && SvnIsNotFound(err) && !query.paths.empty()) {
            // Deleted in the repository since the working copy's last sync: a second question.
            call.askUnlessAbsent(err);
            query.paths.clear();
            query.limit = 0;
            err = SvnReadLog(call.context(), query, log, call.pool());
        }
        if (Result read = call.askUnlessAbsent(err); !read.ok())
            return read;
    }
    histories = SvnFileHistories(log, paths, limit);
    return {};
}

Result SvnServer::fileContent(const std::string& ticket, const revision::FileAtRevision& file, std::string& content)
{
    Call call(*this, {});
    SvnRepositoryPaths where;
    if (Result begun = call.begin(revision::Operation::Content, ticket, where); !begun.ok())
        return begun;
    const std::optional<std::string> path = where.repositoryPath(file.file);
    if (!path)
        return {code::Failed, file.file + " is not in the working copy " + call.session().workingCopy + "."};
    std::string read;
    bool absent = false;
    if (Result asked = call.askUnlessAbsent(
            SvnReadFile(call.context(), where.url(*path, call.pool()), static_cast<long>(file.revision), read,
                        call.pool()),
            &absent);
        !asked.ok())
        return asked;
    if (absent)
        return {code::Failed, file.file + " does not exist at revision " +
                                  (file.revision > 0 ? std::to_string(file.revision) : std::string("head")) + "."};
    content = std::move(read);
    return {};
}

Result SvnServer::submittedChanges(const std::string& ticket, const revision::ChangeFilter& filter,
                                   std::vector<revision::Changelist>& changes)
{
    Call call(*this, {});
    SvnRepositoryPaths where;
    if (Result begun = call.begin(revision::Operation::SubmittedChanges, ticket, where); !begun.ok())
        return begun;
    const std::vector<std::string> folders = RepositoryPathsOf(where, filter.paths);
    changes.clear();
    if (!filter.paths.empty() && folders.empty())
        return {};
    // The log has no author filter; the server cuts at the limit only when nothing is left out
    // afterwards (dates bound the revisions it reads).
    SvnLogQuery query;
    query.url = where.url(filter.paths.empty() ? where.rootPath() : SvnCommonFolder(folders), call.pool());
    query.since = filter.since;
    query.until = filter.until;
    query.changedPaths = !folders.empty();
    query.limit = folders.empty() && filter.user.empty() ? static_cast<int>(filter.limit) : 0;
    std::vector<SvnLogEntry> log;
    if (Result read = call.askUnlessAbsent(SvnReadLog(call.context(), query, log, call.pool())); !read.ok())
        return read;
    changes = SvnSubmittedChanges(log, filter, folders);
    return {};
}

Result SvnServer::submittedChange(const std::string& ticket, const revision::ChangelistId& change,
                                  revision::Changelist& description)
{
    Call call(*this, {});
    SvnRepositoryPaths where;
    if (Result begun = call.begin(revision::Operation::Describe, ticket, where); !begun.ok())
        return begun;
    const std::optional<long> revision = RevisionNumber(change);
    if (!revision)
        return {code::Failed, "Change " + change + " unknown."};
    SvnLogQuery query;
    query.url = where.url(where.rootPath(), call.pool());
    query.revision = *revision;
    query.changedPaths = true;
    std::vector<SvnLogEntry> log;
    if (Result read = call.askUnlessAbsent(SvnReadLog(call.context(), query, log, call.pool())); !read.ok())
        return read;
    if (log.empty())
        return {code::Failed, "Change " + change + " unknown."};
    description = {};
    description.id = change;
    description.description = log.front().message;
    description.user = log.front().author;
    description.time = log.front().time;
    description.state = revision::ChangelistState::Submitted;
    for (const auto& [path, action] : log.front().changed)
        description.files.push_back({"^/" + path, action, static_cast<int>(*revision)});
    return {};
}

Result SvnServer::filesAt(const std::string& ticket, const Files& paths, const revision::ChangelistId& change,
                          std::vector<revision::FileRevision>& files)
{
    Call call(*this, {});
    SvnRepositoryPaths where;
    if (Result begun = call.begin(revision::Operation::FilesAt, ticket, where); !begun.ok())
        return begun;
    const std::optional<long> revision = change.empty() ? std::optional<long>(0) : RevisionNumber(change);
    if (!revision)
        return {code::Failed, "Change " + change + " unknown."};
    const std::vector<std::string> folders = RepositoryPathsOf(where, paths);
    files.clear();
    if (!paths.empty() && folders.empty())
        return {};
    // A folder that did not exist at that revision holds no files then.
    std::vector<SvnListedFile> listed;
    const std::string listedFolder = paths.empty() ? where.rootPath() : SvnCommonFolder(folders);
    if (Result read = call.askUnlessAbsent(
            SvnListFiles(call.context(), where.url(listedFolder, call.pool()), *revision, listed, call.pool()));
        !read.ok())
        return read;
    for (const SvnListedFile& file : listed) {
        const bool wanted = folders.empty() || std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
                                return SvnIsAtOrBelow(file.repositoryPath, folder);
                            });
        // A listing names each file's last change, not how it changed the file.
        if (wanted)
            files.push_back({SvnRepositoryPaths::DepotName(file.repositoryPath), file.revision,
                             std::to_string(file.revision), revision::FileAction::Edit, file.author, {}, file.time, {}});
    }
    return {};
}

Result SvnServer::users(const std::string& ticket, std::vector<std::string>& users)
{
    Call call(*this, {});
    SvnRepositoryPaths where;
    if (Result begun = call.begin(revision::Operation::Users, ticket, where); !begun.ok())
        return begun;
    // The repository has no accounts to list: its users are the authors of its log.
    SvnLogQuery query;
    query.url = where.url({}, call.pool());
    query.authorsOnly = true;
    std::vector<SvnLogEntry> log;
    if (Result read = call.ask(SvnReadLog(call.context(), query, log, call.pool())); !read.ok())
        return read;
    std::set<std::string> authors;
    for (const SvnLogEntry& entry : log)
        if (!entry.author.empty())
            authors.insert(entry.author);
    users.assign(authors.begin(), authors.end());
    return {};
}

// A working copy has no record on the server: the session's own is the one workspace known.
Result SvnServer::workspaces(const std::string& ticket, std::vector<revision::WorkspaceRecord>& workspaces)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::Workspaces, &ticket); !begun.ok())
        return begun;
    const Session& session = call.session();
    workspaces = {{session.workingCopy, session.credentials.user, session.workingCopy}};
    return {};
}

}  // namespace hbrc::host
