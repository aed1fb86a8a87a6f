#include <hbrcdatamodel/workspace.h>

#include <hbrcdatamodel/kelformat.h>
#include <hbrcdatamodel/workspacesaver.h>

#include <log/log.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>
#include <cctype>

namespace hbrc::host {

namespace {

std::string newId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

bool isWord(const std::string& text)
{
    return !text.empty() && std::none_of(text.begin(), text.end(), [](unsigned char c) {
        return std::isspace(c) || c == '\\' || c == '=';
    });
}

// A file name made of the asset name's letters, digits, '-', '_' and '.'; others become '_'.
std::string fileStem(const std::string& name)
{
    std::string stem;
    for (unsigned char c : name)
        stem += std::isalnum(c) || c == '-' || c == '_' || c == '.' ? char(c) : '_';
    if (stem.empty() || stem.find_first_not_of('.') == std::string::npos)
        stem = "asset";
    return stem;
}

}  // namespace

Workspace::Workspace(const QString& root)
    : m_model(new DataModelMgr(root)), m_library(std::make_unique<ItemLibrary>(*m_model))
{
}

Workspace::~Workspace()
{
    m_library.reset();
    m_model->Instance().ClearServices();
}

std::unique_ptr<Workspace> Workspace::Open(const QString& folder, std::string& errorText)
{
    std::unique_ptr<Workspace> workspace = OpenEmpty(folder, errorText);
    if (!workspace)
        return nullptr;
    ObjectStore& store = workspace->m_model->Store();
    workspace->m_loaded = WorkspaceLoader::Load(workspace->Root(), store);
    workspace->m_library->Reserve(store.LiveCount());
    store.ForEachLive([&](std::uint32_t slot) { workspace->m_library->Bind(store.IdOf(slot)); });
    workspace->LogLoaded();
    return workspace;
}

std::unique_ptr<Workspace> Workspace::OpenEmpty(const QString& folder, std::string& errorText)
{
    const QFileInfo info(folder);
    if (!info.isDir() || !info.isReadable()) {
        errorText = "The workspace folder " + QFile::encodeName(folder).toStdString() + " does not exist or cannot be read";
        return nullptr;
    }
    return std::unique_ptr<Workspace>(new Workspace(info.canonicalFilePath()));
}

std::vector<std::uint32_t> Workspace::AddRead(std::vector<WorkspaceLoader::ReadFile> files)
{
    ObjectStore& store = m_model->Store();
    std::vector<std::uint32_t> added;
    added.reserve(files.size());
    for (WorkspaceLoader::ReadFile& file : files) {
        const std::uint32_t slot = WorkspaceLoader::Add(std::move(file), store, m_loaded);
        if (slot == ObjectStore::kNoSlot)
            continue;
        m_library->Bind(store.IdOf(slot));
        for (std::uint32_t part : store.AssetAt(slot).partSlots)
            m_library->Bind(store.IdOf(part));
        added.push_back(slot);
    }
    return added;
}

void Workspace::Reserve(std::size_t assets)
{
    m_model->Store().Reserve(assets);
    m_library->Reserve(assets * ObjectStore::kObjectsPerAsset);
}

void Workspace::LogLoaded() const
{
    Log::Singleton::Instance().GetStream(Log::eMessage)
        << "Opened workspace " << QFile::encodeName(Root()).toStdString() << ": " << m_loaded.loaded << " assets, "
        << m_loaded.skipped << " files skipped";
}

std::uint32_t Workspace::AssetSlot(const KELHandleBase& asset, std::string& error) const
{
    const std::uint32_t slot = m_model->SlotOf(asset);
    if (slot == ObjectStore::kNoSlot || !m_model->Store().IsAsset(slot)) {
        error = "The object is not an asset of this workspace";
        return ObjectStore::kNoSlot;
    }
    return slot;
}

void Workspace::Touch(std::uint32_t assetSlot)
{
    m_model->Store().SetDirty(assetSlot, true);
}

std::string Workspace::UniqueKelPath(const std::string& folder, const std::string& name) const
{
    const std::string prefix = folder.empty() ? std::string() : folder + '/';
    const std::string stem = fileStem(name);
    for (int suffix = 1;; ++suffix) {
        const std::string candidate = prefix + stem + (suffix == 1 ? "" : "_" + std::to_string(suffix)) + ".kel";
        if (!m_model->Store().HasKelPath(candidate)
            && !QFileInfo::exists(QFile::decodeName(QByteArray::fromStdString(m_model->AbsolutePath(candidate)))))
            return candidate;
    }
}

KELHandle<kel4::IAsset> Workspace::CreateAsset(const NewAsset& asset, std::string& errorText)
{
    if (asset.name.empty()) {
        errorText = "An asset needs a name";
        return {};
    }
    if (!isWord(asset.type)) {
        errorText = "The asset type \"" + asset.type + "\" must be one word";
        return {};
    }
    if (!asset.folder.empty() && !KelFormat::IsValidExternalFileName(asset.folder)) {
        errorText = "The folder \"" + asset.folder + "\" is not inside the workspace";
        return {};
    }
    for (const auto& field : asset.fields) {
        if (!isWord(field.first)) {
            errorText = "The field name \"" + field.first + "\" must be one word without '='";
            return {};
        }
    }
    AssetRecord record;
    record.id = newId();
    record.kind = asset.kind;
    record.persistable = asset.persistable;
    record.type = asset.type;
    record.name = asset.name;
    record.fields = asset.fields;
    const std::uint32_t slot = m_model->Store().AddAsset(std::move(record), UniqueKelPath(asset.folder, asset.name));
    Touch(slot);
    m_library->Bind(m_model->Store().IdOf(slot));
    return KELHandle<kel4::IAsset>::AssignCast(m_model->HandleOf(slot));
}

KELHandle<kel4::IDbObject> Workspace::AddPart(const KELHandleBase& asset, const std::string& type,
                                              const std::string& name, std::string& errorText)
{
    const std::uint32_t slot = AssetSlot(asset, errorText);
    if (slot == ObjectStore::kNoSlot)
        return {};
    if (!isWord(type)) {
        errorText = "The part type \"" + type + "\" must be one word";
        return {};
    }
    const std::uint32_t part = m_model->Store().AddPart(slot, {newId(), type, name});
    Touch(slot);
    m_library->Bind(m_model->Store().IdOf(part));
    return m_model->HandleOf(part);
}

EditResult Workspace::ReloadFromDisk(const KELHandleBase& asset)
{
    EditResult result;
    const std::uint32_t slot = AssetSlot(asset, result.error);
    if (slot == ObjectStore::kNoSlot)
        return result;
    StoredAsset& stored = m_model->Store().AssetAt(slot);
    if (m_model->Store().DirtyAssets().count(slot))
        return {"\"" + stored.record.name + "\" has unsaved edits"};
    QFile file(QFile::decodeName(QByteArray::fromStdString(m_model->AbsolutePath(stored.kelPath))));
    if (!file.open(QIODevice::ReadOnly))
        return {"Cannot read " + stored.kelPath + ": " + file.errorString().toStdString()};
    AssetRecord record;
    std::string error;
    if (!KelFormat::Parse(file.readAll().toStdString(), record, error))
        return {stored.kelPath + ": " + error};
    const auto samePart = [](const PartRecord& a, const PartRecord& b) { return a.id == b.id; };
    if (record.id != stored.record.id ||
        !std::equal(record.parts.begin(), record.parts.end(), stored.record.parts.begin(), stored.record.parts.end(),
                    samePart))
        return {stored.kelPath + " now holds other objects; open the workspace again"};
    stored.record = std::move(record);
    stored.ancestor = VersionId(std::to_string(stored.record.version));
    return result;
}

EditResult Workspace::SetField(const KELHandleBase& asset, const std::string& field, const std::string& value)
{
    EditResult result;
    const std::uint32_t slot = AssetSlot(asset, result.error);
    if (slot == ObjectStore::kNoSlot)
        return result;
    if (!isWord(field))
        return {"The field name \"" + field + "\" must be one word without '='"};
    m_model->Store().AssetAt(slot).record.fields[field] = value;
    Touch(slot);
    return result;
}

EditResult Workspace::Rename(const KELHandleBase& object, const std::string& name)
{
    const std::uint32_t slot = m_model->SlotOf(object);
    if (slot == ObjectStore::kNoSlot)
        return {"The object is not an object of this workspace"};
    if (name.empty())
        return {"A name cannot be empty"};
    ObjectStore& store = m_model->Store();
    (store.IsAsset(slot) ? store.AssetAt(slot).record.name : store.PartAt(slot).name) = name;
    Touch(store.OwnerOf(slot));
    borax::datamodel::ItemID item;
    if (m_library->FindItemByDbUid(store.IdOf(slot), item))
        m_library->PostItemNameChanged(item);
    return {};
}

EditResult Workspace::DeleteAsset(const KELHandleBase& asset)
{
    EditResult result;
    const std::uint32_t slot = AssetSlot(asset, result.error);
    if (slot == ObjectStore::kNoSlot)
        return result;
    ObjectStore& store = m_model->Store();
    m_library->Unbind(store.IdOf(slot));
    for (std::uint32_t part : store.AssetAt(slot).partSlots)
        m_library->Unbind(store.IdOf(part));
    store.RemoveAsset(slot);
    return result;
}

EditResult Workspace::AddExternalFile(const KELHandleBase& asset, const std::string& fileName,
                                      const QByteArray& content)
{
    EditResult result;
    const std::uint32_t slot = AssetSlot(asset, result.error);
    if (slot == ObjectStore::kNoSlot)
        return result;
    if (!KelFormat::IsValidExternalFileName(fileName))
        return {"\"" + fileName + "\" is not a file name inside the asset's folder"};
    StoredAsset& stored = m_model->Store().AssetAt(slot);
    auto& files = stored.record.externalFiles;
    if (std::find(files.begin(), files.end(), fileName) == files.end())
        files.push_back(fileName);
    stored.pendingContent[fileName] = content;
    stored.pendingRemoval.erase(fileName);
    Touch(slot);
    return result;
}

EditResult Workspace::RemoveExternalFile(const KELHandleBase& asset, const std::string& fileName)
{
    EditResult result;
    const std::uint32_t slot = AssetSlot(asset, result.error);
    if (slot == ObjectStore::kNoSlot)
        return result;
    StoredAsset& stored = m_model->Store().AssetAt(slot);
    auto& files = stored.record.externalFiles;
    const auto found = std::find(files.begin(), files.end(), fileName);
    if (found == files.end())
        return {"The asset has no external file \"" + fileName + "\""};
    files.erase(found);
    stored.pendingContent.erase(fileName);
    if (stored.IsOnDisk())
        stored.pendingRemoval.insert(fileName);
    Touch(slot);
    return result;
}

KELHandle<kel4::IAsset> Workspace::FindAsset(const std::string& name) const
{
    const ObjectStore& store = m_model->Store();
    std::uint32_t found = ObjectStore::kNoSlot;
    store.ForEachLive([&](std::uint32_t slot) {
        if (found == ObjectStore::kNoSlot && store.IsAsset(slot) && store.NameOf(slot) == name)
            found = slot;
    });
    return KELHandle<kel4::IAsset>::AssignCast(m_model->HandleOf(found));
}

SaveReport Workspace::Save()
{
    return WorkspaceSaver::Save(*m_model, *m_library);
}

}  // namespace hbrc::host
