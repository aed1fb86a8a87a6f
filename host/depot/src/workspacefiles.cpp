#include "workspacefiles.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string_view>
#include <system_error>

#include "depoterror.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hbrc::depot::workspacefiles {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void failOn(const fs::path& path, const std::string& what, const std::error_code& error = {})
{
    std::string message = "Cannot " + what + " '" + path.string() + "'";
    if (error)
        message += ": " + error.message();
    throw DepotError(code::IoError, message);
}

constexpr fs::perms kWriteBits = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

// FNV-1a: stable across runs and builds, so that a rerun finds a leftover temporary by its name.
std::uint64_t stableHash(const std::string& text)
{
    std::uint64_t hash = 14695981039346656037ull;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 1099511628211ull;
    }
    return hash;
}

}  // namespace

void writeReadOnly(const fs::path& path, const std::function<void(std::ostream&)>& write)
{
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    if (error)
        failOn(path.parent_path(), "create the folder", error);
    const fs::path temporary = temporaryFor(path);
    // A failure names the workspace file, not the temporary, and leaves no temporary behind
    // (on a full disk it would hold the space the next attempt needs).
    const auto giveUp = [&](const std::error_code& cause) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        failOn(path, "write", cause);
    };
    {
        errno = 0;
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out)
            giveUp(std::error_code(errno, std::generic_category()));
        try {
            write(out);
        } catch (...) {
            out.close();
            fs::remove(temporary, error);
            throw;
        }
        const int cause = out.flush() ? 0 : errno;
        out.close();
        if (out.fail())
            giveUp(std::error_code(cause ? cause : EIO, std::generic_category()));
    }
    fs::permissions(temporary, kWriteBits, fs::perm_options::remove, error);
    if (!error)
        fs::rename(temporary, path, error);
    if (error)
        giveUp(error);
}

fs::path temporaryFor(const fs::path& path)
{
    char name[40];
    std::snprintf(name, sizeof name, ".hbdepot-%016llx.tmp",
                  static_cast<unsigned long long>(stableHash(path.filename().string())));
    return path.parent_path() / name;
}

void requireReplaceable(const fs::path& path)
{
    std::error_code error;
    if (fs::is_directory(path, error))
        failOn(path, "replace the folder");
    fs::create_directories(path.parent_path(), error);
    if (error)
        failOn(path.parent_path(), "create the folder", error);
    if (::access(path.parent_path().c_str(), W_OK | X_OK) != 0)
        failOn(path, "write", std::error_code(errno, std::generic_category()));
}

bool isWritable(const fs::path& path)
{
    std::error_code error;
    return (fs::status(path, error).permissions() & fs::perms::owner_write) != fs::perms::none && !error;
}

void setWritable(const fs::path& path, bool writable)
{
    std::error_code error;
    if (!fs::exists(path, error))
        return;
    if (writable)
        fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, error);
    else
        fs::permissions(path, kWriteBits, fs::perm_options::remove, error);
    if (error)
        failOn(path, "change the write permission of", error);
}

void remove(const fs::path& path)
{
    std::error_code error;
    fs::remove(path, error);
    if (error)
        failOn(path, "remove", error);
}

bool isReadableFile(const fs::path& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error) && std::ifstream(path, std::ios::binary).good();
}

TypeProbe::~TypeProbe()
{
    for (const auto& [folder, fd] : m_folderFds)
        if (fd >= 0)
            ::close(fd);
}

int TypeProbe::folderFd(std::string_view folder)
{
    // A folder that cannot be opened is remembered too, so that it is tried once.
    m_folder.assign(folder);
    if (const auto found = m_folderFds.find(m_folder); found != m_folderFds.end())
        return found->second;
    if (m_folderFds.size() >= kOpenFolders)
        return -1;
    const int fd = ::open(m_folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    m_folderFds.emplace(m_folder, fd);
    return fd;
}

bool TypeProbe::hasIoError(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const int folder = slash == std::string::npos || slash == 0 ? -1 : folderFd(std::string_view(path).substr(0, slash));
    struct stat info{};
    const int rc = folder < 0 ? ::stat(path.c_str(), &info) : ::fstatat(folder, path.c_str() + slash + 1, &info, 0);
    if (rc != 0)
        return errno != ENOENT && errno != ENOTDIR;
    return !S_ISREG(info.st_mode);
}

}  // namespace hbrc::depot::workspacefiles
