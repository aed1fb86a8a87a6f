#pragma once

// The commands that list what the depot knows, as text or (with --json) as JSON: status,
// opened, changes, describe and info.

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

}  // namespace hbrc::hbdepot
