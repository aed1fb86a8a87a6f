#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/assetrecord.h>
#include <hbrcdatamodel/datamodelmgr.h>
#include <hbrcdatamodel/itemlibrary.h>
#include <hbrcdatamodel/savereport.h>
#include <hbrcdatamodel/workspaceloader.h>

#include <kel4/kelhandle.h>

#include <QByteArray>
#include <QString>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// The result of an edit: empty error on success, otherwise why nothing was changed.
struct EditResult
{
    std::string error;
    explicit operator bool() const { return error.empty(); }
};

// What a new asset starts with.
struct NewAsset
{
    AssetKind kind = AssetKind::Data;
    std::string type = "Asset";
    std::string name;
    // Folder of the .kel file, relative to the workspace folder ("" for the folder itself).
    std::string folder;
    bool persistable = true;
    std::map<std::string, std::string> fields;
};

// An open workspace folder: its data model, its item library, the editing operations the studio
// and tests use, and the save. Edits change the model only and mark the asset dirty; files change
// on Save. An asset's .kel file name is chosen from its name when it is created and kept when the
// asset is renamed.
class HBRC_DATAMODEL_EXPORT Workspace
{
public:
    // Loads every asset below folder; null with errorText when folder is not a readable folder.
    static std::unique_ptr<Workspace> Open(const QString& folder, std::string& errorText);
    // The same in steps, for a reader on another thread: the workspace of folder without assets,
    // then the files WorkspaceLoader::Read found, batch by batch (AddRead answers the slots of the
    // assets it added), then the log line of the whole load (LogLoaded).
    static std::unique_ptr<Workspace> OpenEmpty(const QString& folder, std::string& errorText);
    std::vector<std::uint32_t> AddRead(std::vector<WorkspaceLoader::ReadFile> files);
    // Makes room for this many more assets before AddRead adds them, so that no batch of a large
    // read grows the object tables all at once.
    void Reserve(std::size_t assets);
    void LogLoaded() const;
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    const QString& Root() const { return m_model->Root(); }
    DataModelMgr& Model() const { return *m_model; }
    ItemLibrary& Library() { return *m_library; }
    borax::datamodel::ItemLibraryAccessor Accessor() { return m_library->Accessor(); }
    const WorkspaceLoader::Outcome& LoadOutcome() const { return m_loaded; }

    // --- editing ----------------------------------------------------------------------------------
    KELHandle<kel4::IAsset> CreateAsset(const NewAsset& asset, std::string& errorText);
    KELHandle<kel4::IDbObject> AddPart(const KELHandleBase& asset, const std::string& type, const std::string& name,
                                       std::string& errorText);
    EditResult SetField(const KELHandleBase& asset, const std::string& field, const std::string& value);
    // Renames an asset or a part (the asset's file keeps its name).
    EditResult Rename(const KELHandleBase& object, const std::string& name);
    // Removes the asset and its parts now; the save removes its files.
    EditResult DeleteAsset(const KELHandleBase& asset);
    // Adds an external file beside the asset's .kel file, or replaces the content of one it has.
    EditResult AddExternalFile(const KELHandleBase& asset, const std::string& fileName, const QByteArray& content);
    // Drops an external file from the asset; the save removes it from disk.
    EditResult RemoveExternalFile(const KELHandleBase& asset, const std::string& fileName);

    // Reads the asset's .kel file again after revision control changed it on disk (a revert, a sync).
    // Refused for an asset with unsaved edits (they would be lost) and when the file no longer holds
    // the same asset and parts: those need the workspace opened again.
    EditResult ReloadFromDisk(const KELHandleBase& asset);

    // The first asset of that name, or a null handle.
    KELHandle<kel4::IAsset> FindAsset(const std::string& name) const;
    bool HasUnsavedChanges() const { return m_model->Store().HasUnsavedChanges(); }

    SaveReport Save();

private:
    explicit Workspace(const QString& root);
    // The slot of a live asset of this workspace, or ObjectStore::kNoSlot with error set.
    std::uint32_t AssetSlot(const KELHandleBase& asset, std::string& error) const;
    std::string UniqueKelPath(const std::string& folder, const std::string& name) const;
    void Touch(std::uint32_t assetSlot);

    KELPtr<DataModelMgr> m_model;
    std::unique_ptr<ItemLibrary> m_library;
    WorkspaceLoader::Outcome m_loaded;
};

}  // namespace hbrc::host
