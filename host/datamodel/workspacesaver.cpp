#include <hbrcdatamodel/workspacesaver.h>

#include <hbrcdatamodel/assetfiles.h>
#include <hbrcdatamodel/datamodelmgr.h>
#include <hbrcdatamodel/itemlibrary.h>
#include <hbrcdatamodel/kelformat.h>
#include <hbrcdatamodel/offlinejournal.h>
#include <hbrcdatamodel/stagedwrites.h>

#include <QFile>
#include <QFileInfo>

#include <optional>
#include <vector>

namespace hbrc::host {

namespace {

QString absolute(const DataModelMgr& model, const std::string& relative)
{
    return QFile::decodeName(QByteArray::fromStdString(model.AbsolutePath(relative)));
}

// Names a file the save is about to create or delete in the offline journal, when one is kept;
// false (reported) when the journal cannot be written: the file must then stay as it is.
bool journalBefore(DataModelMgr& model, const QString& path, OfflineJournal::Change change, SaveReport& report)
{
    OfflineJournal* journal = model.Journal();
    if (!journal)
        return true;
    const bool affected = change == OfflineJournal::Change::Created ? !QFileInfo::exists(path) : QFileInfo::exists(path);
    std::string error;
    if (!affected || journal->Record(QFile::encodeName(path).toStdString(), change, error))
        return true;
    report.Fail(QFile::encodeName(path).toStdString(), error);
    return false;
}

// Removes one file of the save, named in the offline journal first.
bool removeFile(DataModelMgr& model, const QString& path, SaveReport& report)
{
    return journalBefore(model, path, OfflineJournal::Change::Deleted, report) && AssetFiles::Remove(path, report);
}

// Stages one file of the save, named in the offline journal first when it is new.
std::optional<StagedWrites::Ticket> stageFile(DataModelMgr& model, StagedWrites& writes, const QString& path,
                                              const QByteArray& content, SaveReport& report,
                                              const std::vector<StagedWrites::Ticket>& renameAfter = {})
{
    if (!journalBefore(model, path, OfflineJournal::Change::Created, report))
        return std::nullopt;
    return writes.Stage(path, content, report, renameAfter);
}

void removeDeletedAssets(DataModelMgr& model, SaveReport& report)
{
    std::vector<PendingDeletion> remaining;
    for (PendingDeletion& deletion : model.Store().PendingDeletions()) {
        PendingDeletion failed;
        for (const std::string& file : deletion.files) {
            if (!removeFile(model, absolute(model, file), report))
                failed.files.push_back(file);
        }
        if (!failed.files.empty())
            remaining.push_back(std::move(failed));
    }
    model.Store().PendingDeletions() = std::move(remaining);
}

// A dirty asset whose files were staged: its asset file goes in place after its external files.
struct StagedAsset
{
    std::uint32_t slot;
    QString kelPath;
    AssetRecord saved;
};

// Stages the files of one dirty asset; nothing when one of its external files cannot be staged.
std::optional<StagedAsset> stageAsset(DataModelMgr& model, std::uint32_t slot, StagedWrites& writes, SaveReport& report)
{
    const StoredAsset& asset = model.Store().AssetAt(slot);
    std::vector<StagedWrites::Ticket> externals;
    bool externalsStaged = true;
    for (const auto& [name, content] : asset.pendingContent) {
        const auto ticket = stageFile(model, writes, absolute(model, asset.ExternalPath(name)), content, report);
        if (ticket)
            externals.push_back(*ticket);
        externalsStaged = externalsStaged && ticket;
    }
    if (!externalsStaged)
        return std::nullopt;
    StagedAsset staged{slot, absolute(model, asset.kelPath), asset.record};
    ++staged.saved.version;
    if (!stageFile(model, writes, staged.kelPath, QByteArray::fromStdString(KelFormat::Serialize(staged.saved)), report,
                   externals))
        return std::nullopt;
    return staged;
}

// Records that an asset's files are on disk; true when it has nothing left to save.
bool finishAsset(DataModelMgr& model, const StagedAsset& staged, SaveReport& report)
{
    StoredAsset& asset = model.Store().AssetAt(staged.slot);
    const bool firstWrite = !asset.IsOnDisk();
    asset.ancestor = firstWrite ? VersionId() : VersionId(std::to_string(asset.record.version));
    asset.record.version = staged.saved.version;
    asset.pendingContent.clear();
    if (firstWrite)
        model.DataSource().RecordAddedObject(DbObjectId(asset.record.id), staged.slot, model.Store().InstanceOf(staged.slot));

    for (auto name = asset.pendingRemoval.begin(); name != asset.pendingRemoval.end();) {
        if (removeFile(model, absolute(model, asset.ExternalPath(*name)), report))
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
    // All files first, then one flush for the lot: a save pays for the disk once, not per file.
    StagedWrites writes;
    std::vector<StagedAsset> staged;
    for (std::uint32_t slot : model.Store().DirtyAssets()) {
        if (!model.Store().AssetAt(slot).record.persistable)
            continue;
        if (auto asset = stageAsset(model, slot, writes, report))
            staged.push_back(std::move(*asset));
    }
    const std::set<QString> written = writes.Commit(report);
    for (const StagedAsset& asset : staged) {
        if (written.count(asset.kelPath) && finishAsset(model, asset, report))
            model.Store().SetDirty(asset.slot, false);
    }
    for (const std::string& file : report.deletedFiles)
        model.DataSource().RecordDeletedFile(file);
    library.PostPostCommit();
    model.DataSource().SettleReported();
    return report;
}

}  // namespace hbrc::host
