#pragma once

// The commands that change workspace files and changelists, each saying what it did (one line
// per file, as the file was named) unless -q silences it.

#include <depot/types.h>

#include <string>

namespace hbrc::hbdepot {

struct Context;

// "the default changelist" or "change 4", as the commands' lines name a changelist.
std::string inChangelist(const depot::ChangelistId& id);

depot::Result editFiles(Context& c);
depot::Result addFiles(Context& c);
depot::Result deleteFiles(Context& c);
// "revert FILE..." and "revert -a [FILE...]" (only files whose content is unchanged).
depot::Result revertFiles(Context& c);
depot::Result lockFiles(Context& c);
depot::Result unlockFiles(Context& c);
depot::Result reopenFiles(Context& c);
depot::Result syncFiles(Context& c);
depot::Result submitChange(Context& c);
// "change DESCRIPTION" creates, "change -c CHANGE DESCRIPTION" describes anew, "change -d CHANGE" deletes.
depot::Result changeChangelist(Context& c);

}  // namespace hbrc::hbdepot
