#pragma once

// The workspace side of the depot: files on disk whose content and write bits follow what the
// workspace has open. Failures throw DepotError(IoError) naming the file.

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>

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
// file that is simply missing is no error), with one stat each: relative to the file's folder,
// which stays open for the files after it (up to kOpenFolders folders), so that files asked about
// in any order of their folders cost no walk along their whole path.
class TypeProbe
{
public:
    TypeProbe() = default;
    ~TypeProbe();
    TypeProbe(const TypeProbe&) = delete;
    TypeProbe& operator=(const TypeProbe&) = delete;

    bool hasIoError(const std::string& path);

private:
    static constexpr std::size_t kOpenFolders = 128;

    // The open folder, or -1 when it cannot be opened or too many are open already.
    int folderFd(std::string_view folder);

    std::unordered_map<std::string, int> m_folderFds;
    std::string m_folder;  // the folder looked up last, kept so that a lookup allocates nothing
};

}  // namespace hbrc::depot::workspacefiles
