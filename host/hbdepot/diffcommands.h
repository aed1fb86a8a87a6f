#pragma once

// The commands that show contents and how they differ: print, diff and diff2.

#include <depot/types.h>

namespace hbrc::hbdepot {

struct Context;

// "print [-r REV] FILE": the bytes of a revision (default: the head), as submitted.
depot::Result printContent(Context& c);
// "diff [FILE...]": each opened file (all of this workspace's without names) against the revision
// the workspace has, as a unified difference.
depot::Result printOpenedDifferences(Context& c);
// "diff2 FILE REV1 REV2": the unified difference between two revisions of a file.
depot::Result printRevisionDifference(Context& c);

}  // namespace hbrc::hbdepot
