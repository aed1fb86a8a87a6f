#include "unsavededits.h"

#include <hbrcdatamodel/datamodelmgr.h>

namespace hbrc::studio {

UnsavedEdits::Verdict UnsavedEdits::check(const host::DataModelMgr& model, Rewrite rewrite,
                                          const std::vector<std::string>& files)
{
    Verdict verdict;
    const kel4::List<KELHandle<kel4::IAsset>> owners = model.AssetsOwningFiles({files.begin(), files.end()});
    auto owner = owners.begin();
    for (const std::string& file : files) {
        const KELHandle<kel4::IAsset> asset = owner == owners.end() ? KELHandle<kel4::IAsset>() : *owner++;
        if (asset.IsNull() || !model.IsDirty(asset)) {
            verdict.files.push_back(file);
            continue;
        }
        if (const QString name = QString::fromStdString(asset.GetName()); !verdict.blocking.contains(name))
            verdict.blocking << name;
    }
    if (verdict.blocking.isEmpty())
        return verdict;
    const QString names = verdict.blocking.join(QStringLiteral(", "));
    if (rewrite == Rewrite::GetLatest) {
        verdict.warning = tr("Not brought up to date because of unsaved edits: %1. Save or undo them first.").arg(names);
        return verdict;
    }
    if (rewrite == Rewrite::GetRevision) {
        verdict.warning = tr("Not brought to the chosen revision because of unsaved edits: %1. Save or undo them first.").arg(names);
        verdict.files.clear();
        return verdict;
    }
    verdict.warning = tr("Not reverted: %1 has unsaved edits. Save or undo them first.").arg(names);
    if (rewrite == Rewrite::Revert)
        verdict.files.clear();
    return verdict;
}

}  // namespace hbrc::studio
