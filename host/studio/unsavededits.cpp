#include "unsavededits.h"

#include <hbrcdatamodel/datamodelmgr.h>

namespace hbrc::studio {

UnsavedEditsSplit SplitByUnsavedEdits(const host::DataModelMgr& model, const std::vector<std::string>& files)
{
    UnsavedEditsSplit split;
    const kel4::List<KELHandle<kel4::IAsset>> owners = model.AssetsOwningFiles({files.begin(), files.end()});
    auto owner = owners.begin();
    for (const std::string& file : files) {
        const KELHandle<kel4::IAsset> asset = owner == owners.end() ? KELHandle<kel4::IAsset>() : *owner++;
        if (asset.IsNull() || !model.IsDirty(asset)) {
            split.free.push_back(file);
            continue;
        }
        if (const QString name = QString::fromStdString(asset.GetName()); !split.blocking.contains(name))
            split.blocking << name;
    }
    return split;
}

}  // namespace hbrc::studio
