#include <hbrcdatamodel/objectquery.h>
#include <hbrcdatamodel/objectstore.h>

#include <algorithm>

namespace hbrc::host {

namespace {

// The flags an asset's parts share with it.
constexpr unsigned kSharedWithParts = kFlagPersistable | kFlagDirty;

unsigned assetFlags(const AssetRecord& record)
{
    unsigned flags = record.persistable ? unsigned(kFlagPersistable) : 0u;
    if (record.kind == AssetKind::Metadata)
        flags |= kFlagMetadata;
    else if (record.kind == AssetKind::Value)
        flags |= kFlagValueAsset;
    return flags;
}

}  // namespace

std::uint32_t ObjectStore::Allocate(const std::string& id, std::uint32_t owner, unsigned flags)
{
    std::uint32_t slot;
    if (!m_freeSlots.empty()) {
        slot = m_freeSlots.back();
        m_freeSlots.pop_back();
    } else {
        slot = std::uint32_t(m_slots.size());
        m_slots.emplace_back();
    }
    Slot& entry = m_slots[slot];
    entry.used = true;
    entry.owner = owner == kNoSlot ? slot : owner;
    entry.flags = flags;
    m_byId.emplace(id, slot);
    ++m_live;
    return slot;
}

void ObjectStore::Free(std::uint32_t slot)
{
    Slot& entry = m_slots[slot];
    m_byId.erase(IdOf(slot));
    entry.used = false;
    entry.asset.reset();
    entry.owner = kNoSlot;
    entry.flags = 0;
    ++entry.instance;
    m_freeSlots.push_back(slot);
    --m_live;
}

void ObjectStore::Reserve(std::size_t assets)
{
    m_slots.reserve(m_slots.size() + assets * kObjectsPerAsset);
    m_byId.reserve(m_byId.size() + assets * kObjectsPerAsset);
    m_byKelPath.reserve(m_byKelPath.size() + assets);
}

std::uint32_t ObjectStore::AddAsset(AssetRecord record, std::string kelPath)
{
    // Every id new and distinct: the parts of one asset are few, so compare them pairwise.
    const auto taken = [this](const std::string& id) { return m_byId.count(id) != 0; };
    if (taken(record.id))
        return kNoSlot;
    for (auto part = record.parts.begin(); part != record.parts.end(); ++part) {
        if (part->id == record.id || taken(part->id)
            || std::any_of(record.parts.begin(), part, [&](const PartRecord& earlier) { return earlier.id == part->id; }))
            return kNoSlot;
    }
    const auto [byKelPath, kelPathIsNew] = m_byKelPath.try_emplace(kelPath, kNoSlot);
    if (!kelPathIsNew)
        return kNoSlot;
    auto asset = std::make_unique<StoredAsset>();
    asset->kelPath = std::move(kelPath);
    if (record.version > 0)
        asset->ancestor = VersionId(std::to_string(record.version));
    asset->record = std::move(record);
    const unsigned flags = assetFlags(asset->record);
    const std::uint32_t slot = Allocate(asset->record.id, kNoSlot, flags);
    m_slots[slot].asset = std::move(asset);
    byKelPath->second = slot;
    StoredAsset& stored = *m_slots[slot].asset;
    for (std::size_t i = 0; i < stored.record.parts.size(); ++i) {
        const std::uint32_t partSlot = Allocate(stored.record.parts[i].id, slot, flags & kSharedWithParts);
        m_slots[partSlot].partIndex = i;
        stored.partSlots.push_back(partSlot);
    }
    return slot;
}

std::uint32_t ObjectStore::AddPart(std::uint32_t assetSlot, PartRecord part)
{
    if (!IsAsset(assetSlot) || part.id.empty() || m_byId.count(part.id))
        return kNoSlot;
    StoredAsset& asset = AssetAt(assetSlot);
    asset.record.parts.push_back(std::move(part));
    const std::uint32_t slot =
        Allocate(asset.record.parts.back().id, assetSlot, m_slots[assetSlot].flags & kSharedWithParts);
    m_slots[slot].partIndex = asset.record.parts.size() - 1;
    asset.partSlots.push_back(slot);
    return slot;
}

void ObjectStore::RemoveAsset(std::uint32_t assetSlot)
{
    if (!IsAsset(assetSlot))
        return;
    StoredAsset& asset = AssetAt(assetSlot);
    if (asset.IsOnDisk()) {
        PendingDeletion deletion{{asset.kelPath}};
        for (const std::string& name : asset.record.externalFiles)
            deletion.files.push_back(asset.ExternalPath(name));
        for (const std::string& name : asset.pendingRemoval)
            deletion.files.push_back(asset.ExternalPath(name));
        m_deletions.push_back(std::move(deletion));
    }
    for (std::uint32_t part : asset.partSlots)
        Free(part);
    m_byKelPath.erase(asset.kelPath);
    m_dirty.erase(assetSlot);
    Free(assetSlot);
}

bool ObjectStore::IsLive(std::uint32_t slot, std::uint32_t instance) const
{
    return IsLive(slot) && m_slots[slot].instance == instance;
}

std::uint32_t ObjectStore::SlotOf(const std::string& id) const
{
    const auto found = m_byId.find(id);
    return found == m_byId.end() ? kNoSlot : found->second;
}

PartRecord& ObjectStore::PartAt(std::uint32_t partSlot)
{
    const Slot& entry = m_slots[partSlot];
    return m_slots[entry.owner].asset->record.parts[entry.partIndex];
}

const PartRecord& ObjectStore::PartAt(std::uint32_t partSlot) const
{
    return const_cast<ObjectStore*>(this)->PartAt(partSlot);
}

const std::string& ObjectStore::IdOf(std::uint32_t slot) const
{
    return IsAsset(slot) ? AssetAt(slot).record.id : PartAt(slot).id;
}

const std::string& ObjectStore::NameOf(std::uint32_t slot) const
{
    return IsAsset(slot) ? AssetAt(slot).record.name : PartAt(slot).name;
}

const std::string& ObjectStore::TypeOf(std::uint32_t slot) const
{
    return IsAsset(slot) ? AssetAt(slot).record.type : PartAt(slot).type;
}

void ObjectStore::SetDirty(std::uint32_t assetSlot, bool dirty)
{
    if (!IsAsset(assetSlot))
        return;
    StoredAsset& asset = AssetAt(assetSlot);
    if (dirty && !(FlagsOf(assetSlot) & kFlagDirty) && asset.IsOnDisk())
        asset.ancestor = VersionId(std::to_string(asset.record.version));
    auto mark = [dirty](Slot& entry) { entry.flags = dirty ? entry.flags | kFlagDirty : entry.flags & ~kFlagDirty; };
    mark(m_slots[assetSlot]);
    for (std::uint32_t part : asset.partSlots)
        mark(m_slots[part]);
    if (dirty)
        m_dirty.insert(assetSlot);
    else
        m_dirty.erase(assetSlot);
}

void ObjectStore::ForEachLive(const std::function<void(std::uint32_t)>& visit) const
{
    for (std::uint32_t slot = 0; slot < m_slots.size(); ++slot) {
        if (m_slots[slot].used)
            visit(slot);
    }
}

}  // namespace hbrc::host
