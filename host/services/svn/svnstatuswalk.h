#pragma once

#include "svnclient.h"

#include <string>
#include <unordered_map>

namespace hbrc::host {

// What one node of a working copy is, locally and (when asked) in the repository.
struct SvnNodeStatus
{
    bool versioned = false;
    bool directory = false;
    svn_wc_status_kind local = svn_wc_status_none;
    svn_wc_status_kind repository = svn_wc_status_none;  // a change committed since this node's revision
    bool textModified = false;                            // its text differs from the working copy's revision
    std::string localLockToken;                           // the lock this working copy holds
    std::string repositoryLockToken;                      // the lock the repository knows of
    std::string repositoryLockOwner;
    std::string repositoryLockComment;
    std::string changelist;
    std::string repositoryPath;                           // "^/" and the path in the repository
    long changedRevision = 0;                             // the last change this node has
    long headChangedRevision = 0;                         // the repository's last change (when asked)
};

// The status of every node of a working copy by absolute path, from one walk: local only, or with
// one question to the repository for what changed there and which locks it holds.
using SvnStatusMap = std::unordered_map<std::string, SvnNodeStatus>;

// Opened in this working copy: locked here (checked out) or scheduled for add or delete.
bool SvnIsOpenHere(const SvnNodeStatus& node);

svn_error_t* SvnWalkStatus(const SvnClient& client, const std::string& workingCopy, bool askRepository,
                           SvnStatusMap& statuses, apr_pool_t* pool);

}  // namespace hbrc::host
