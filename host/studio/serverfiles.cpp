#include "serverfiles.h"

#include <hbrcdatamodel/datamodelmgr.h>

namespace hbrc::studio {

KELHandle<kel4::IAsset> AssetOfServerFile(const host::DataModelMgr& model, const std::string& serverName,
                                          std::string& localPath)
{
    kel4::List<std::string> candidates;
    for (std::size_t slash = serverName.find('/'); slash != std::string::npos; slash = serverName.find('/', slash + 1))
        if (slash + 1 < serverName.size() && serverName[slash + 1] != '/')
            candidates.push_back(model.AbsolutePath(serverName.substr(slash + 1)));
    const kel4::List<KELHandle<kel4::IAsset>> owners = model.AssetsOwningFiles(candidates);
    auto candidate = candidates.begin();
    for (const KELHandle<kel4::IAsset>& owner : owners) {
        if (!owner.IsNull()) {
            localPath = *candidate;
            return owner;
        }
        ++candidate;
    }
    localPath.clear();
    return {};
}

}  // namespace hbrc::studio
