#include <hbrcdatamodel/datamodelmgr.h>

#include <hbrcdatamodel/backgroundrelease.h>
#include <hbrcdatamodel/objectquery.h>

#include <QDir>
#include <QFile>

#include <array>
#include <cstring>
#include <unordered_map>
#include <unordered_set>
#include <vector>

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
    // The store holds plain data only (records, strings, tables): the release may free it on its
    // worker, while the instance and the data source, shared with the plug-in, stay here.
    BackgroundRelease::Instance().Free(std::move(m_store));
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

// A .kel file is found by its path. Other files are looked for among the external files of the
// assets stored in their folder or above it, in one pass over the assets that runs only when such
// a file is asked about: a short list costs a few lookups whatever the size of the workspace.
kel4::List<KELHandle<kel4::IAsset>> DataModelMgr::AssetsOwningFiles(const kel4::List<std::string>& files) const
{
    const QDir root(m_root);
    QString rootPrefix = QDir::cleanPath(root.absolutePath());
    if (!rootPrefix.endsWith(QLatin1Char('/')))
        rootPrefix += QLatin1Char('/');
    std::vector<std::uint32_t> owners;
    owners.reserve(files.size());
    // The other files by their path relative to the folder, and every folder that holds one.
    std::unordered_map<std::string, std::vector<std::size_t>> others;
    std::unordered_set<std::string> othersFolders;
    for (const std::string& file : files) {
        const QString path = QDir::cleanPath(root.absoluteFilePath(QFile::decodeName(QByteArray::fromStdString(file))));
        owners.push_back(ObjectStore::kNoSlot);
        if (!path.startsWith(rootPrefix))
            continue;
        std::string relative = QFile::encodeName(path.mid(rootPrefix.size())).toStdString();
        owners.back() = m_store.AssetWithKelPath(relative);
        if (owners.back() != ObjectStore::kNoSlot)
            continue;
        for (std::size_t slash = relative.rfind('/'); slash != std::string::npos && slash > 0;
             slash = relative.rfind('/', slash - 1))
            othersFolders.insert(relative.substr(0, slash + 1));
        othersFolders.insert(std::string());
        others[std::move(relative)].push_back(owners.size() - 1);
    }
    if (!others.empty()) {
        m_store.ForEachLive([&](std::uint32_t slot) {
            if (!m_store.IsAsset(slot) || m_store.AssetAt(slot).record.externalFiles.empty())
                return;
            const StoredAsset& asset = m_store.AssetAt(slot);
            if (othersFolders.count(asset.kelPath.substr(0, asset.kelPath.rfind('/') + 1)) == 0)
                return;
            for (const std::string& name : asset.record.externalFiles) {
                if (const auto found = others.find(asset.ExternalPath(name)); found != others.end()) {
                    for (std::size_t position : found->second)
                        owners[position] = slot;
                    others.erase(found);
                }
            }
        });
    }
    kel4::List<KELHandle<kel4::IAsset>> assets;
    for (std::uint32_t owner : owners)
        assets.push_back(owner == ObjectStore::kNoSlot ? KELHandle<kel4::IAsset>()
                                                       : KELHandle<kel4::IAsset>::AssignCast(HandleOf(owner)));
    return assets;
}

bool DataModelMgr::IsDirty(const KELHandleBase& object) const
{
    const std::uint32_t slot = SlotOf(object);
    return slot != ObjectStore::kNoSlot && (m_store.FlagsOf(slot) & kFlagDirty) != 0;
}

}  // namespace hbrc::host
