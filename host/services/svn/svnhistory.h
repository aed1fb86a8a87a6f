#pragma once

#include "svnclient.h"

#include <hbrcservices/revisiontypes.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace hbrc::host {

// The repository's history through the client library: its log, a file's content at a revision
// and the files of a folder at a revision, each one question to the repository, and the log read
// in the contract's vocabulary. A file's revisions are the repository revisions that changed it,
// which status reports as its have and head revisions. Paths are repository paths
// (svnrepositorypaths.h).

// One revision of the log.
struct SvnLogEntry
{
    long revision = 0;
    std::string author;
    std::int64_t time = 0;  // seconds since the epoch
    std::string message;
    std::map<std::string, revision::FileAction> changed;  // when asked for: the paths it changed
};

// Which part of the log to read: the revisions that changed the node at url (which exists at the
// head revision), newest first.
struct SvnLogQuery
{
    std::string url;
    // Paths below url (relative to it) to log instead of url itself; each must exist at the head.
    std::vector<std::string> paths;
    // Dates that bound the revisions (seconds since the epoch; 0: no bound). The revision before
    // since comes with them: a date names the last revision at or before it.
    std::int64_t since = 0;
    std::int64_t until = 0;
    int limit = 0;  // the newest N; 0: all
    long revision = 0;  // only this revision, whatever the dates; 0: the revisions the dates bound
    bool changedPaths = false;
    bool authorsOnly = false;  // nothing of a revision but its author
};

svn_error_t* SvnReadLog(svn_client_ctx_t* context, const SvnLogQuery& query, std::vector<SvnLogEntry>& log,
                        apr_pool_t* pool);
// The content of the file at url as of a revision (0: the head).
svn_error_t* SvnReadFile(svn_client_ctx_t* context, const std::string& url, long revision, std::string& content,
                         apr_pool_t* pool);

// A file of a listing, with the last revision that changed it by then.
struct SvnListedFile
{
    std::string repositoryPath;
    long revision = 0;
    std::string author;
    std::int64_t time = 0;
};

// The files at or below the folder or file at url as of a revision (0: the head).
svn_error_t* SvnListFiles(svn_client_ctx_t* context, const std::string& url, long revision,
                          std::vector<SvnListedFile>& files, apr_pool_t* pool);

// True when err says that a path does not exist at the revision asked.
bool SvnIsNotFound(const svn_error_t* err);

// The history of each file out of a log (with changed paths) of a folder that holds them all: the
// revisions that name the file among their changed paths, newest first, at most limit of them per
// file (0: all). A file without a repository path (outside the working copy) has none.
std::vector<std::vector<revision::FileRevision>> SvnFileHistories(const std::vector<SvnLogEntry>& log,
                                                                  const std::vector<std::optional<std::string>>& files,
                                                                  std::size_t limit);

// The submitted changes of a log that pass filter, newest first. Its paths are given as repository
// paths (folders): a change passes when it changed something at or below one of them, which needs
// a log with changed paths. Revision 0, which made the repository, is no change.
std::vector<revision::Changelist> SvnSubmittedChanges(const std::vector<SvnLogEntry>& log,
                                                      const revision::ChangeFilter& filter,
                                                      const std::vector<std::string>& folders);

}  // namespace hbrc::host
