#pragma once

// The workspace side of the depot: files on disk whose content and write bits follow what the
// workspace has open. Failures throw DepotError(IoError) naming the file.

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

namespace hbrc::depot::workspacefiles {

// Replaces the file with what `write` puts out (through a temporary beside it, so a failure
// leaves the old file) and makes it read-only, creating missing folders. Doing it again gives the
// same result.
void writeReadOnly(const std::filesystem::path& path, const std::function<void(std::ostream&)>& write);
// The temporary writeReadOnly uses: a short name of its own in the file's folder, so that it fits
// wherever the file's name fits, and the same for the same file (a rerun reuses a leftover).
std::filesystem::path temporaryFor(const std::filesystem::path& path);
// Throws unless writeReadOnly or remove can work on the path: its folder can be made and written
// into, and the path is no folder.
void requireReplaceable(const std::filesystem::path& path);
bool isWritable(const std::filesystem::path& path);
void setWritable(const std::filesystem::path& path, bool writable);
void remove(const std::filesystem::path& path);
bool isReadableFile(const std::filesystem::path& path);

// Tells of many files whether each cannot be examined or is something other than a regular file (a
// file that is simply missing is no error), with one stat each: relative to the previous file's
// folder when the file is in the same one, so that files asked about folder by folder cost no
// walk along their whole path.
class TypeProbe
{
public:
    TypeProbe() = default;
    ~TypeProbe();
    TypeProbe(const TypeProbe&) = delete;
    TypeProbe& operator=(const TypeProbe&) = delete;

    bool hasIoError(const std::string& path);

private:
    std::string m_folder;
    int m_folderFd = -1;
};

}  // namespace hbrc::depot::workspacefiles
