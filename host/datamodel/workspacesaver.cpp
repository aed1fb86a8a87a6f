#include <hbrcdatamodel/workspacesaver.h>

#include <hbrcdatamodel/assetfiles.h>
#include <hbrcdatamodel/datamodelmgr.h>
#include <hbrcdatamodel/itemlibrary.h>
#include <hbrcdatamodel/kelformat.h>

#include <QFile>

namespace hbrc::host {

namespace {

QString absolute(const DataModelMgr& model, const std::string& relative)
{
    return QFile::decodeName(QByteArray::fromStdString(model.AbsolutePath(relative)));
}

void removeDeletedAssets(DataModelMgr& model, SaveReport& report)
{
    std::vector<PendingDeletion> remaining;
    for (PendingDeletion& deletion : model.Store().PendingDeletions()) {
        PendingDeletion failed;
        for (const std::string& file : deletion.files) {
            if (!AssetFiles::Remove(absolute(model, file), report))
                failed.files.push_back(file);
        }
        if (!failed.files.empty())
            remaining.push_back(std::move(failed));
    }
    model.Store().PendingDeletions() = std::move(remaining);
}

// Writes one dirty asset; true when all of its files are as the model holds them.
bool writeAsset(DataModelMgr& model, std::uint32_t slot, SaveReport& report)
{
    StoredAsset& asset = model.Store().AssetAt(slot);
    bool externalsWritten = true;
    for (const auto& [name, content] : asset.pendingContent)
        externalsWritten = AssetFiles::Write(absolute(model, asset.ExternalPath(name)), content, report) && externalsWritten;
    if (!externalsWritten)
        return false;

    AssetRecord saved = asset.record;
    ++saved.version;
    if (!AssetFiles::Write(absolute(model, asset.kelPath), QByteArray::fromStdString(KelFormat::Serialize(saved)), report))
        return false;
    const bool firstWrite = !asset.IsOnDisk();
    asset.ancestor = firstWrite ? VersionId() : VersionId(std::to_string(asset.record.version));
    asset.record.version = saved.version;
    asset.pendingContent.clear();
    if (firstWrite)
        model.DataSource().RecordAddedObject(DbObjectId(asset.record.id), slot, model.Store().InstanceOf(slot));

    for (auto name = asset.pendingRemoval.begin(); name != asset.pendingRemoval.end();) {
        if (AssetFiles::Remove(absolute(model, asset.ExternalPath(*name)), report))
            name = asset.pendingRemoval.erase(name);
        else
            ++name;
    }
    return asset.pendingRemoval.empty();
}

}  // namespace

SaveReport WorkspaceSaver::Save(DataModelMgr& model, ItemLibrary& library)
{
    SaveReport report;
    if (library.PostPreCommit()) {
        report.cancelled = true;
        return report;
    }
    removeDeletedAssets(model, report);
    const std::set<std::uint32_t> dirty = model.Store().DirtyAssets();
    for (std::uint32_t slot : dirty) {
        if (model.Store().AssetAt(slot).record.persistable && writeAsset(model, slot, report))
            model.Store().SetDirty(slot, false);
    }
    for (const std::string& file : report.deletedFiles)
        model.DataSource().RecordDeletedFile(file);
    library.PostPostCommit();
    return report;
}

}  // namespace hbrc::host
