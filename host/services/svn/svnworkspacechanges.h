#pragma once

// The files of a working copy that changed without being opened, read from one local status walk
// (SvnServer::workspaceChanges); the repository is not asked.

#include "svnstatuswalk.h"

#include <hbrcservices/revisiontypes.h>

#include <string>
#include <vector>

namespace hbrc::host {

// The files at or below the paths (absolute; the whole working copy when empty) that are not open
// here, in path order: text modified (Edit), unversioned and not ignored (Add; the files inside an
// unversioned folder, which the walk names as a whole, are found on disk, leaving out the global
// ignores and nested administrative folders), missing (Delete). A path outside the working copy is
// refused; the cancel check is polled between files.
revision::Result SvnWorkspaceChanges(const SvnStatusMap& nodes, const std::string& workingCopy,
                                     const std::vector<std::string>& paths, const apr_array_header_t* globalIgnores,
                                     const revision::CancelCheck& cancel,
                                     std::vector<revision::WorkspaceChange>& changes, apr_pool_t* pool);

}  // namespace hbrc::host
