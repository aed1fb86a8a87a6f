#pragma once

// reconcile --keep-mine: a file edited over an older revision than the depot's head keeps the
// user's content over the head. The content goes to a kept copy beside the file
// (FILE.hbdepot-kept), written and flushed before the file changes; the file is removed, synced to
// the head revision and gets the content back in one rename, so that the edit may be opened. A
// refused reconcile brings the file back to the revision it had, with the content. The copy goes
// once the file holds its content; an interrupted run leaves it, and the next reconcile puts it back
// before anything else.

#include <depot/types.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace hbrc::hbdepot {

struct Context;

// A file edited over an older revision than the head.
struct KeptFile
{
    std::string path;
    std::int64_t have = 0;
    std::int64_t head = 0;
};

bool isKeptCopy(const std::string& file);
// The edits among the changes whose head is newer than the workspace's revision (one status question).
depot::Result findBehind(Context& c, const std::vector<depot::WorkspaceChange>& changes, std::vector<KeptFile>& behind);
// Puts back the content of the kept copies an interrupted run left (new files among the changes):
// into a file that holds nothing of the user's (gone, or read-only as the depot wrote it); a copy
// whose file holds its content already goes; a file changed since keeps its copy, and both are
// named. With onlySay it only says so. True when something changed on the disk.
bool recoverKeptCopies(const std::vector<depot::WorkspaceChange>& changes, bool onlySay, std::ostream& say);
// Keeps each file's content, brings the file to its head revision and writes the content back.
depot::Result keepOverHead(Context& c, const std::vector<KeptFile>& files);
// After a refused reconcile: each file back at the revision it had, with its kept content.
void bringBack(Context& c, const std::vector<KeptFile>& files);
// Removes the kept copies of the files that hold their content.
void dropKeptCopies(const std::vector<KeptFile>& files);

}  // namespace hbrc::hbdepot
