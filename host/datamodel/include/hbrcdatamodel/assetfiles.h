#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/savereport.h>

#include <QString>

namespace hbrc::host {

// The removals of a save, each reported into a SaveReport (its writes are StagedWrites).
namespace AssetFiles {

// Removes path when it exists; true also when there was nothing to remove.
HBRC_DATAMODEL_EXPORT bool Remove(const QString& path, SaveReport& report);

}  // namespace AssetFiles
}  // namespace hbrc::host
