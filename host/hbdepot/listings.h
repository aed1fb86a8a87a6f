#pragma once

// The commands that list what the depot knows, as text or (with --json) as JSON documents that
// carry their format version: status, opened, changes, describe, info, filelog, files, users and
// workspaces.

#include <depot/types.h>

namespace hbrc::hbdepot {

struct Context;

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
