#include <hbrcdatamodel/datamodelmgr.h>

#include <hbrcdatamodel/objectquery.h>

#include <QDir>
#include <QFile>

#include <array>
#include <cstring>
#include <unordered_map>

namespace hbrc::host {

namespace {

bool hasFiles(kel4::closureId closure)
{
    return closure != kel4::closureId::Runtime;
}

}  // namespace

DataModelMgr::DataModelMgr(QString root)
    : m_root(std::move(root)),
      m_encodedRoot(QFile::encodeName(m_root).toStdString()),
      m_instance(new KelInstance),
      m_dataSource(new MultiFileDataSource(m_root))
{
    m_dataSource->SetManager(this);
}

DataModelMgr::~DataModelMgr()
{
    m_dataSource->SetManager(nullptr);
}

KELPtr<kel4::IKELInstance> DataModelMgr::GetInstance() const
{
    return KELPtr<kel4::IKELInstance>(m_instance.Get());
}

KELHandle<kel4::IDbObject> DataModelMgr::ResolveObject(const DbObjectId& id) const
{
    return id.IsValid() ? HandleOf(m_store.SlotOf(id.GetStr())) : KELHandle<kel4::IDbObject>();
}

kelResult DataModelMgr::Query(const std::string& queryText, kel4::Vector<kel4::CQueryResult>& results, int options,
                              std::string& errorText) const
{
    const auto query = ObjectQuery::Parse(queryText, errorText);
    if (!query)
        return kel4::kResultFailed;
    // The query reads nothing but the four flag bits: decide each of their combinations once.
    std::array<bool, (kFlagValueAsset << 1)> selected{};
    for (unsigned flags = 0; flags < selected.size(); ++flags)
        selected[flags] = query->Matches(flags);
    const bool includeUnsaved = (options & 1) != 0;
    m_store.ForEachLive([&](std::uint32_t slot) {
        if (selected[m_store.FlagsOf(slot)]
            && (includeUnsaved || m_store.AssetAt(m_store.OwnerOf(slot)).IsOnDisk()))
            results.emplace_back(HandleOf(slot));
    });
    return kel4::kResultSuccess;
}

kel4::Vector<KELPtr<kel4::IDataSource>> DataModelMgr::GetDataSources() const
{
    return {KELPtr<kel4::IDataSource>(m_dataSource.Get())};
}

std::uint32_t DataModelMgr::SlotOf(const KELHandleBase& object) const
{
    if (object.IsNull() || object.GetManager().Get() != this
        || !m_store.IsLive(object.GetCacheIndex(), object.GetInstanceNumber()))
        return ObjectStore::kNoSlot;
    return object.GetCacheIndex();
}

KELHandle<kel4::IDbObject> DataModelMgr::HandleOf(std::uint32_t slot) const
{
    if (!m_store.IsLive(slot))
        return {};
    return KELHandle<kel4::IDbObject>(const_cast<DataModelMgr*>(this), slot, m_store.InstanceOf(slot));
}

bool DataModelMgr::IsHandleValid(const KELHandleBase& object) const
{
    return SlotOf(object) != ObjectStore::kNoSlot;
}

DbObjectId DataModelMgr::GetObjectId(const KELHandleBase& object) const
{
    const std::uint32_t slot = SlotOf(object);
    return slot == ObjectStore::kNoSlot ? DbObjectId() : DbObjectId(m_store.IdOf(slot));
}

std::string DataModelMgr::GetObjectName(const KELHandleBase& object) const
{
    const std::uint32_t slot = SlotOf(object);
    return slot == ObjectStore::kNoSlot ? std::string() : m_store.NameOf(slot);
}

VersionId DataModelMgr::GetAncestorId(const KELHandleBase& object) const
{
    const std::uint32_t slot = SlotOf(object);
    if (slot == ObjectStore::kNoSlot)
        return {};
    const StoredAsset& asset = m_store.AssetAt(m_store.OwnerOf(slot));
    // An asset that revision control has not taken yet stays new to it, however often it is saved
    // and whether or not the workspace was opened again since.
    return m_dataSource->IsNotYetAdded(DbObjectId(asset.record.id)) ? VersionId() : asset.ancestor;
}

bool DataModelMgr::IsObjectOfType(const KELHandleBase& object, const char* typeId) const
{
    const std::uint32_t slot = SlotOf(object);
    if (slot == ObjectStore::kNoSlot || !typeId)
        return false;
    if (std::strcmp(typeId, kel4::IDbObject::GetTypeId()) == 0)
        return true;
    if (std::strcmp(typeId, kel4::IAsset::GetTypeId()) == 0)
        return m_store.IsAsset(slot);
    return m_store.TypeOf(slot) == typeId;
}

std::string DataModelMgr::AbsolutePath(const std::string& relative) const
{
    return m_encodedRoot + '/' + relative;
}

kel4::Set<std::string> DataModelMgr::FilesOf(const KELHandleBase& object, bool includeExternalFiles,
                                             kel4::closureId closure) const
{
    const std::uint32_t slot = SlotOf(object);
    if (slot == ObjectStore::kNoSlot || !hasFiles(closure))
        return {};
    kel4::Set<std::string> files;
    if (includeExternalFiles)
        files = ExternalFilesOf(object, closure);
    files.insert(AbsolutePath(m_store.AssetAt(m_store.OwnerOf(slot)).kelPath));
    return files;
}

kel4::Set<std::string> DataModelMgr::ExternalFilesOf(const KELHandleBase& object, kel4::closureId closure) const
{
    const std::uint32_t slot = SlotOf(object);
    if (slot == ObjectStore::kNoSlot || !hasFiles(closure))
        return {};
    const StoredAsset& asset = m_store.AssetAt(m_store.OwnerOf(slot));
    kel4::Set<std::string> files;
    for (const std::string& name : asset.record.externalFiles)
        files.insert(AbsolutePath(asset.ExternalPath(name)));
    return files;
}

DataModelMgr::ObjectSet DataModelMgr::RelatedObjects(const ObjectList& objects) const
{
    ObjectSet related;
    for (const auto& object : objects) {
        const std::uint32_t slot = SlotOf(object);
        if (slot == ObjectStore::kNoSlot)
            continue;
        const std::uint32_t owner = m_store.OwnerOf(slot);
        related.insert(HandleOf(owner));
        for (std::uint32_t part : m_store.AssetAt(owner).partSlots)
            related.insert(HandleOf(part));
    }
    for (const auto& object : objects)
        related.erase(object);
    return related;
}

DataModelMgr::ObjectSet DataModelMgr::OwningAssets(const ObjectList& objects) const
{
    ObjectSet assets;
    for (const auto& object : objects) {
        const std::uint32_t slot = SlotOf(object);
        if (slot != ObjectStore::kNoSlot)
            assets.insert(HandleOf(m_store.OwnerOf(slot)));
    }
    return assets;
}

kel4::List<DbObjectId> DataModelMgr::DbObjectIdsOf(const ObjectList& objects) const
{
    kel4::List<DbObjectId> ids;
    for (const auto& object : objects) {
        const std::uint32_t slot = SlotOf(object);
        if (slot == ObjectStore::kNoSlot)
            continue;
        ids.emplace_back(m_store.IdOf(slot));
        if (m_store.IsAsset(slot)) {
            for (std::uint32_t part : m_store.AssetAt(slot).partSlots)
                ids.emplace_back(m_store.IdOf(part));
        }
    }
    return ids;
}

std::string DataModelMgr::DisplayName(const KELHandleBase& object) const
{
    const std::uint32_t slot = SlotOf(object);
    if (slot == ObjectStore::kNoSlot)
        return {};
    if (m_store.IsAsset(slot))
        return m_store.NameOf(slot);
    return m_store.NameOf(m_store.OwnerOf(slot)) + '/' + m_store.NameOf(slot);
}

kel4::List<KELHandle<kel4::IAsset>> DataModelMgr::AssetsOwningFiles(const kel4::List<std::string>& files) const
{
    const QDir root(m_root);
    auto key = [&](const std::string& path) {
        return QDir::cleanPath(root.absoluteFilePath(QFile::decodeName(QByteArray::fromStdString(path))));
    };
    std::unordered_map<QString, std::uint32_t> owners;
    m_store.ForEachLive([&](std::uint32_t slot) {
        if (!m_store.IsAsset(slot))
            return;
        const StoredAsset& asset = m_store.AssetAt(slot);
        owners.emplace(key(asset.kelPath), slot);
        for (const std::string& name : asset.record.externalFiles)
            owners.emplace(key(asset.ExternalPath(name)), slot);
    });
    kel4::List<KELHandle<kel4::IAsset>> assets;
    for (const std::string& file : files) {
        const auto found = owners.find(key(file));
        assets.push_back(found == owners.end() ? KELHandle<kel4::IAsset>()
                                               : KELHandle<kel4::IAsset>::AssignCast(HandleOf(found->second)));
    }
    return assets;
}

bool DataModelMgr::IsDirty(const KELHandleBase& object) const
{
    const std::uint32_t slot = SlotOf(object);
    return slot != ObjectStore::kNoSlot && (m_store.FlagsOf(slot) & kFlagDirty) != 0;
}

}  // namespace hbrc::host
