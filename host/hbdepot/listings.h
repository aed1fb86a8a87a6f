#pragma once

// The commands that list what the depot knows, as text or (with --json) as JSON documents that
// carry their format version: status, opened, changes, describe, info, filelog, files, users and
// workspaces.

#include <depot/types.h>

#include <optional>
#include <string>

namespace hbrc::hbdepot {

struct Context;

// One file of a status listing: the name it is shown by, its local path, its status, and, in a
// status of the whole workspace, what it needs when it changed without being opened.
struct StatusEntry
{
    std::string name;
    std::string path;
    depot::FileStatus status;
    std::optional<depot::FileAction> unopened;
};

// "status FILE..." lists the files named; "status" the whole workspace (workspacecommands.h).
depot::Result printStatus(Context& c);
depot::Result printOpened(Context& c);
depot::Result printChanges(Context& c);
depot::Result printDescription(Context& c);
depot::Result printInfo(Context& c);
depot::Result printFileLog(Context& c);
depot::Result printFiles(Context& c);
depot::Result printUsers(Context& c);
depot::Result printWorkspaces(Context& c);

}  // namespace hbrc::hbdepot
