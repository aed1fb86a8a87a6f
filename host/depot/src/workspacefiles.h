#pragma once

// The workspace side of the depot: files on disk whose content and write bits follow what the
// workspace has open. Failures throw DepotError(IoError) naming the file.

#include <filesystem>
#include <vector>

namespace hbrc::depot::workspacefiles {

std::vector<char> read(const std::filesystem::path& path);
// Replaces the file (through a temporary beside it, so a failure leaves the old file) and makes it
// read-only, creating missing folders.
void writeReadOnly(const std::filesystem::path& path, const std::vector<char>& content);
void setWritable(const std::filesystem::path& path, bool writable);
void remove(const std::filesystem::path& path);
bool isReadableFile(const std::filesystem::path& path);
// True when the path cannot be examined or names something other than a regular file; a file that
// is simply missing is no error.
bool hasIoError(const std::filesystem::path& path);

}  // namespace hbrc::depot::workspacefiles
