#pragma once

#include <hbrcdatamodel/savereport.h>

#include <QByteArray>
#include <QString>

namespace hbrc::host {

// The file operations of a save, each reported into a SaveReport.
namespace AssetFiles {

// Writes content to path atomically (a temporary file beside it, then a rename), creating the
// folder when needed. A file whose write permission bits are all clear is read-only for the
// host and is not replaced, whoever runs the host.
bool Write(const QString& path, const QByteArray& content, SaveReport& report);
// Removes path when it exists; true also when there was nothing to remove.
bool Remove(const QString& path, SaveReport& report);

}  // namespace AssetFiles
}  // namespace hbrc::host
