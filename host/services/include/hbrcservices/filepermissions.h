#pragma once

#include <hbrcservices/export.h>

#include <string>

namespace hbrc::host {

// The read-only state of workspace files on disk. A file is read-only when all of its write
// permission bits are clear, as a sync or a revert leaves it; a missing file is not read-only.
namespace FilePermissions {

HBRC_SERVICES_EXPORT bool IsReadOnly(const std::string& path);
// Gives the owner write permission; true when the file is writable afterwards.
HBRC_SERVICES_EXPORT bool MakeWritable(const std::string& path, std::string& errorText);

}  // namespace FilePermissions
}  // namespace hbrc::host
