#pragma once

#include <QStringList>

#include <string>
#include <vector>

namespace hbrc::host {
class DataModelMgr;
}

namespace hbrc::studio {

// Unsaved edits block revert and get latest. Both rewrite files on disk while an asset's edits
// live in memory only: the asset would look up to date while dirty, and its next save would write
// the edits over what was brought (or a revert would drop the check-out the save needs).
struct UnsavedEditsSplit
{
    std::vector<std::string> free;  // files of assets without unsaved edits, and files of no asset
    QStringList blocking;           // the assets with unsaved edits, by name, once each
};
UnsavedEditsSplit SplitByUnsavedEdits(const host::DataModelMgr& model, const std::vector<std::string>& files);

}  // namespace hbrc::studio
