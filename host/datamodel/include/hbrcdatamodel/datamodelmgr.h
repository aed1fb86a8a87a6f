#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/kelinstance.h>
#include <hbrcdatamodel/multifiledatasource.h>
#include <hbrcdatamodel/objectstore.h>

#include <kel4/containers.h>
#include <kel4/idatamodelmgr.h>

#include <QString>

namespace hbrc::host {
class OfflineJournal;

// The data model of an open workspace folder: its object store, database instance and data
// source, answering the SDK's IDataModelMgr and the host-side questions that the revision-control
// services ask about objects (their files, related objects, owning assets, ids and names).
//
// File paths handed out are absolute, in the file-name encoding (QFile::encodeName). Objects of
// the persistence closure (and of closureId::All) are stored in files; the runtime closure has
// none. A part is stored in its asset's files.
class HBRC_DATAMODEL_EXPORT DataModelMgr final : public kel4::RefCounted<kel4::IDataModelMgr>
{
public:
    using ObjectList = kel4::List<KELHandle<kel4::IDbObject>>;
    using ObjectSet = kel4::Set<KELHandle<kel4::IDbObject>>;

    explicit DataModelMgr(QString root);
    ~DataModelMgr() override;
    DataModelMgr(const DataModelMgr&) = delete;
    DataModelMgr& operator=(const DataModelMgr&) = delete;

    // --- IDataModelMgr --------------------------------------------------------------------------
    KELPtr<kel4::IKELInstance> GetInstance() const override;
    KELHandle<kel4::IDbObject> ResolveObject(const DbObjectId& id) const override;
    // Option bit 0 includes objects never saved; bit 1 (objects not loaded yet) changes nothing,
    // since a workspace loads all of its objects when it opens.
    kelResult Query(const std::string& queryText, kel4::Vector<kel4::CQueryResult>& results, int options,
                    std::string& errorText) const override;
    kel4::Vector<KELPtr<kel4::IDataSource>> GetDataSources() const override;
    bool IsHandleValid(const KELHandleBase& object) const override;
    DbObjectId GetObjectId(const KELHandleBase& object) const override;
    std::string GetObjectName(const KELHandleBase& object) const override;
    VersionId GetAncestorId(const KELHandleBase& object) const override;
    // "IDbObject" for every object, "IAsset" for assets, otherwise the object's own type name.
    bool IsObjectOfType(const KELHandleBase& object, const char* typeId) const override;

    // --- host side ------------------------------------------------------------------------------
    const QString& Root() const { return m_root; }
    ObjectStore& Store() { return m_store; }
    const ObjectStore& Store() const { return m_store; }
    KelInstance& Instance() const { return *m_instance; }
    MultiFileDataSource& DataSource() const { return *m_dataSource; }

    // The slot of a live object of this model, or ObjectStore::kNoSlot.
    std::uint32_t SlotOf(const KELHandleBase& object) const;
    KELHandle<kel4::IDbObject> HandleOf(std::uint32_t slot) const;
    // The absolute path of a file named relative to the workspace folder.
    std::string AbsolutePath(const std::string& relative) const;

    // The object's files: its asset's .kel file and, with includeExternalFiles, the external files.
    kel4::Set<std::string> FilesOf(const KELHandleBase& object, bool includeExternalFiles,
                                   kel4::closureId closure) const;
    kel4::Set<std::string> ExternalFilesOf(const KELHandleBase& object, kel4::closureId closure) const;
    // The objects an edit or save of these involves besides them: an asset's parts; a part's asset
    // and its sibling parts. The listed objects themselves are left out.
    ObjectSet RelatedObjects(const ObjectList& objects) const;
    // The assets that own the objects' files (an asset owns itself).
    ObjectSet OwningAssets(const ObjectList& objects) const;
    // The ids of the items the objects stand for: an asset and its parts; a part.
    kel4::List<DbObjectId> DbObjectIdsOf(const ObjectList& objects) const;
    // The asset's name; a part shows as "<asset name>/<part name>". "" for a null handle.
    std::string DisplayName(const KELHandleBase& object) const;
    // The asset that owns each file (absolute or relative to the folder), a null handle for a file
    // of no asset; at most one pass over the assets for the whole list.
    kel4::List<KELHandle<kel4::IAsset>> AssetsOwningFiles(const kel4::List<std::string>& files) const;
    bool IsDirty(const KELHandleBase& object) const;

    // The journal that names every file the host makes writable, creates or deletes, each before it
    // changes; null while the host works under revision control with its server (the default). Not
    // owned.
    void SetJournal(OfflineJournal* journal) { m_journal = journal; }
    OfflineJournal* Journal() const { return m_journal; }

private:
    QString m_root;
    std::string m_encodedRoot;  // m_root in the file-name encoding, the prefix of every absolute path
    ObjectStore m_store;
    KELPtr<KelInstance> m_instance;
    KELPtr<MultiFileDataSource> m_dataSource;
    OfflineJournal* m_journal = nullptr;
};

}  // namespace hbrc::host
