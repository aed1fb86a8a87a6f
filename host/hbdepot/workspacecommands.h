#pragma once

// The commands about the workspace as a whole: its status, including the files changed without
// being opened, and reconcile, which opens those files for what they need.

#include <depot/types.h>

#include <vector>

#include "listings.h"

namespace hbrc::hbdepot {

struct Context;

// Every file of the workspace that is not simply up to date (open here, not at the head, held by
// others, or changed without being opened), named relative to the current folder, in path order.
depot::Result collectWorkspaceStatus(Context& c, std::vector<StatusEntry>& entries);
// "reconcile [-n] [-c CHANGE] [PATH...]": opens the files changed without being opened below the
// paths (the whole workspace when none), all or none; -n only says what it would open.
depot::Result reconcileFiles(Context& c);

}  // namespace hbrc::hbdepot
