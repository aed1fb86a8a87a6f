#pragma once

// The commands that list what the depot knows, as text or (with --json) as JSON: status,
// opened, changes, describe and info.

#include <depot/types.h>

namespace hbrc::hbdepot {

struct Context;

depot::Result printStatus(Context& c);
depot::Result printOpened(Context& c);
depot::Result printChanges(Context& c);
depot::Result printDescription(Context& c);
depot::Result printInfo(Context& c);

}  // namespace hbrc::hbdepot
