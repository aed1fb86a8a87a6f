#include "workspacefiles.h"

#include <fstream>
#include <iterator>
#include <system_error>

#include "depoterror.h"

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

}  // namespace

std::vector<char> read(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in || !fs::is_regular_file(path))
        failOn(path, "read");
    std::vector<char> content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad())
        failOn(path, "read");
    return content;
}

void writeReadOnly(const fs::path& path, const std::vector<char>& content)
{
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    if (error)
        failOn(path.parent_path(), "create the folder", error);
    fs::path temporary = path;
    temporary += ".hbdepot-tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
        if (!out.flush())
            failOn(temporary, "write");
    }
    fs::permissions(temporary, kWriteBits, fs::perm_options::remove, error);
    if (!error)
        fs::rename(temporary, path, error);
    if (error) {
        fs::remove(temporary, error);
        failOn(path, "write", error);
    }
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

bool hasIoError(const fs::path& path)
{
    std::error_code error;
    const fs::file_status state = fs::status(path, error);
    if (state.type() == fs::file_type::not_found)
        return false;
    return error || state.type() != fs::file_type::regular;
}

}  // namespace hbrc::depot::workspacefiles
