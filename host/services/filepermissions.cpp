#include <hbrcservices/filepermissions.h>

#include <filesystem>

namespace hbrc::host::FilePermissions {

namespace fs = std::filesystem;

namespace {

constexpr fs::perms kAnyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

}  // namespace

bool IsReadOnly(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    return !error && fs::exists(status) && (status.permissions() & kAnyWrite) == fs::perms::none;
}

bool MakeWritable(const std::string& path, std::string& errorText)
{
    if (!IsReadOnly(path))
        return true;
    std::error_code error;
    fs::permissions(path, fs::perms::owner_write, fs::perm_options::add, error);
    if (error) {
        errorText = "Cannot make '" + path + "' writable: " + error.message();
        return false;
    }
    return true;
}

}  // namespace hbrc::host::FilePermissions
