#include "svnhistory.h"

#include "svnrepositorypaths.h"

#include <svn_dirent_uri.h>
#include <svn_hash.h>
#include <svn_props.h>
#include <svn_time.h>

#include <algorithm>

namespace hbrc::host {

namespace {

std::int64_t Seconds(apr_time_t time)
{
    return static_cast<std::int64_t>(time / APR_USEC_PER_SEC);
}

svn_opt_revision_t RevisionAt(long revision)
{
    svn_opt_revision_t at{};
    if (revision > 0) {
        at.kind = svn_opt_revision_number;
        at.value.number = revision;
    } else {
        at.kind = svn_opt_revision_head;
    }
    return at;
}

svn_opt_revision_t RevisionOnDate(std::int64_t seconds, svn_opt_revision_kind otherwise)
{
    svn_opt_revision_t at{};
    at.kind = otherwise;
    if (seconds > 0) {
        at.kind = svn_opt_revision_date;
        at.value.date = static_cast<apr_time_t>(seconds) * APR_USEC_PER_SEC;
    }
    return at;
}

revision::FileAction ActionOf(char action)
{
    switch (action) {
    case 'A':
    case 'R':  // replaced: deleted and added again in one revision
        return revision::FileAction::Add;
    case 'D':
        return revision::FileAction::Delete;
    default:
        return revision::FileAction::Edit;
    }
}

std::string RevisionProperty(apr_hash_t* properties, const char* name)
{
    const auto* value = properties ? static_cast<const svn_string_t*>(svn_hash_gets(properties, name)) : nullptr;
    return value ? std::string(value->data, value->len) : std::string();
}

struct LogReading
{
    svn_client_ctx_t* context;
    std::vector<SvnLogEntry>* log;
};

svn_error_t* ReceiveLogEntry(void* baton, svn_log_entry_t* entry, apr_pool_t* pool)
{
    const auto* reading = static_cast<const LogReading*>(baton);
    if (!SVN_IS_VALID_REVNUM(entry->revision))
        return SVN_NO_ERROR;
    // Ten thousand revisions take a while: a cancel is heard between them.
    if (reading->context->cancel_func)
        SVN_ERR(reading->context->cancel_func(reading->context->cancel_baton));
    SvnLogEntry read;
    read.revision = entry->revision;
    read.author = RevisionProperty(entry->revprops, SVN_PROP_REVISION_AUTHOR);
    read.message = RevisionProperty(entry->revprops, SVN_PROP_REVISION_LOG);
    const std::string date = RevisionProperty(entry->revprops, SVN_PROP_REVISION_DATE);
    apr_time_t time = 0;
    if (!date.empty() && !svn_time_from_cstring(&time, date.c_str(), pool))
        read.time = Seconds(time);
    if (entry->changed_paths2) {
        for (apr_hash_index_t* changed = apr_hash_first(pool, entry->changed_paths2); changed;
             changed = apr_hash_next(changed)) {
            const auto* path = static_cast<const char*>(apr_hash_this_key(changed));
            const auto* how = static_cast<const svn_log_changed_path2_t*>(apr_hash_this_val(changed));
            if (how->node_kind == svn_node_dir)
                continue;
            read.changed.emplace(path[0] == '/' ? path + 1 : path, ActionOf(how->action));
        }
    }
    reading->log->push_back(std::move(read));
    return SVN_NO_ERROR;
}

struct ListReading
{
    svn_client_ctx_t* context;
    std::vector<SvnListedFile>* files;
};

svn_error_t* ReceiveListedNode(void* baton, const char* path, const svn_dirent_t* dirent, const svn_lock_t* /*lock*/,
                               const char* listedPath, const char* /*externalParentUrl*/,
                               const char* /*externalTarget*/, apr_pool_t* pool)
{
    const auto* reading = static_cast<const ListReading*>(baton);
    if (reading->context->cancel_func)
        SVN_ERR(reading->context->cancel_func(reading->context->cancel_baton));
    if (dirent->kind != svn_node_file)
        return SVN_NO_ERROR;
    const char* listed = listedPath[0] == '/' ? listedPath + 1 : listedPath;
    reading->files->push_back({svn_relpath_join(listed, path, pool), dirent->created_rev,
                               dirent->last_author ? dirent->last_author : "", Seconds(dirent->time)});
    return SVN_NO_ERROR;
}

}  // namespace

svn_error_t* SvnReadLog(svn_client_ctx_t* context, const SvnLogQuery& query, std::vector<SvnLogEntry>& log,
                        apr_pool_t* pool)
{
    const svn_opt_revision_t head = RevisionAt(0);
    auto* range = static_cast<svn_opt_revision_range_t*>(apr_pcalloc(pool, sizeof(svn_opt_revision_range_t)));
    range->start = query.revision ? RevisionAt(query.revision) : RevisionOnDate(query.until, svn_opt_revision_head);
    // Revision 0 when unbounded.
    range->end = query.revision ? RevisionAt(query.revision) : RevisionOnDate(query.since, svn_opt_revision_number);
    apr_array_header_t* ranges = apr_array_make(pool, 1, sizeof(svn_opt_revision_range_t*));
    APR_ARRAY_PUSH(ranges, svn_opt_revision_range_t*) = range;

    apr_array_header_t* revisionProperties = apr_array_make(pool, 3, sizeof(const char*));
    APR_ARRAY_PUSH(revisionProperties, const char*) = SVN_PROP_REVISION_AUTHOR;
    if (!query.authorsOnly) {
        APR_ARRAY_PUSH(revisionProperties, const char*) = SVN_PROP_REVISION_DATE;
        APR_ARRAY_PUSH(revisionProperties, const char*) = SVN_PROP_REVISION_LOG;
    }
    log.clear();
    LogReading reading{context, &log};
    std::vector<std::string> targets{query.url};
    targets.insert(targets.end(), query.paths.begin(), query.paths.end());
    return svn_client_log5(SvnClient::pathArray(targets, pool), &head, ranges, query.limit, query.changedPaths,
                           TRUE /*strict_node_history*/, FALSE /*include_merged_revisions*/, revisionProperties,
                           ReceiveLogEntry, &reading, context, pool);
}

svn_error_t* SvnReadFile(svn_client_ctx_t* context, const std::string& url, long revision, std::string& content,
                         apr_pool_t* pool)
{
    const svn_opt_revision_t at = RevisionAt(revision);
    svn_stringbuf_t* read = svn_stringbuf_create_empty(pool);
    SVN_ERR(svn_client_cat3(nullptr, svn_stream_from_stringbuf(read, pool), url.c_str(), &at, &at,
                            FALSE /*expand_keywords*/, context, pool, pool));
    content.assign(read->data, read->len);
    return SVN_NO_ERROR;
}

svn_error_t* SvnListFiles(svn_client_ctx_t* context, const std::string& url, long revision,
                          std::vector<SvnListedFile>& files, apr_pool_t* pool)
{
    const svn_opt_revision_t at = RevisionAt(revision);
    files.clear();
    ListReading reading{context, &files};
    SVN_ERR(svn_client_list4(url.c_str(), &at, &at, nullptr, svn_depth_infinity,
                             SVN_DIRENT_KIND | SVN_DIRENT_CREATED_REV | SVN_DIRENT_TIME | SVN_DIRENT_LAST_AUTHOR,
                             FALSE /*fetch_locks*/, FALSE /*include_externals*/, ReceiveListedNode, &reading, context,
                             pool));
    std::sort(files.begin(), files.end(),
              [](const SvnListedFile& a, const SvnListedFile& b) { return a.repositoryPath < b.repositoryPath; });
    return SVN_NO_ERROR;
}

bool SvnIsNotFound(const svn_error_t* err)
{
    for (const svn_error_t* e = err; e; e = e->child)
        if (e->apr_err == SVN_ERR_FS_NOT_FOUND || e->apr_err == SVN_ERR_CLIENT_UNRELATED_RESOURCES ||
            e->apr_err == SVN_ERR_RA_ILLEGAL_URL)
            return true;
    return false;
}

std::vector<std::vector<revision::FileRevision>> SvnFileHistories(const std::vector<SvnLogEntry>& log,
                                                                  const std::vector<std::optional<std::string>>& files,
                                                                  std::size_t limit)
{
    std::vector<std::vector<revision::FileRevision>> histories(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!files[i])
            continue;
        for (const SvnLogEntry& entry : log) {
            if (limit != 0 && histories[i].size() == limit)
                break;
            const auto changed = entry.changed.find(*files[i]);
            if (changed == entry.changed.end())
                continue;
            histories[i].push_back({SvnRepositoryPaths::DepotName(*files[i]), entry.revision,
                                    std::to_string(entry.revision), changed->second, entry.author, {}, entry.time,
                                    entry.message});
        }
    }
    return histories;
}

std::vector<revision::Changelist> SvnSubmittedChanges(const std::vector<SvnLogEntry>& log,
                                                      const revision::ChangeFilter& filter,
                                                      const std::vector<std::string>& folders)
{
    const auto touchesFolders = [&](const SvnLogEntry& entry) {
        return folders.empty() || std::any_of(entry.changed.begin(), entry.changed.end(), [&](const auto& changed) {
                   return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
                       return SvnIsAtOrBelow(changed.first, folder);
                   });
               });
    };
    std::vector<revision::Changelist> changes;
    for (const SvnLogEntry& entry : log) {
        if (filter.limit != 0 && changes.size() == filter.limit)
            break;
        if (entry.revision == 0 || (!filter.user.empty() && entry.author != filter.user) ||
            (filter.since != 0 && entry.time < filter.since) || (filter.until != 0 && entry.time > filter.until) ||
            !touchesFolders(entry))
            continue;
        changes.push_back({std::to_string(entry.revision), entry.message, entry.author, {},
                           revision::ChangelistState::Submitted, {}, entry.time});
    }
    return changes;
}

}  // namespace hbrc::host
