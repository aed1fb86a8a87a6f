#pragma once

// Compares a workspace's files on disk with what the depot records of that workspace, to find the
// files that changed without being opened (Depot::workspaceChanges).

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <depot/types.h>

#include "contentstore.h"

namespace hbrc::depot {

class WorkspaceView;

// What the depot records of one workspace, by depot key.
struct WorkspaceRecords
{
    struct Revision
    {
        std::int64_t number = 0;
        ContentFingerprint content;
    };
    std::map<std::string, Revision> have;  // the revisions the workspace has
    std::set<std::string> openHere;        // the files open in the workspace
    std::set<std::string> atHead;          // the files the depot has at the head (not deleted)
    std::set<std::string> ownFiles;        // the depot's own files that lie below the root
};

// The files at or below the scopes (keys; "" is the whole workspace) that changed without being
// opened, in path order: a file whose size, then digest, differs from the workspace's revision
// (Edit), a file of which the workspace has no revision (Add), a file the workspace has a revision
// of that is gone from the disk (Delete). Open files, the depot's own files and the temporaries of
// file steps under way are left out. `checkpoint` runs before each file; a folder that cannot be
// read throws DepotError(IoError).
std::vector<WorkspaceChange> scanWorkspace(const WorkspaceView& workspace, const WorkspaceRecords& records,
                                           const std::vector<std::string>& scopes,
                                           const std::function<void()>& checkpoint);

}  // namespace hbrc::depot
