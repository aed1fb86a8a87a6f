#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/assetrecord.h>

#include <kel4/dbobjectid.h>

#include <QByteArray>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace hbrc::host {

// An asset as the data model holds it: its record, where it is stored and what is unsaved.
struct StoredAsset
{
    AssetRecord record;
    // The .kel file, relative to the workspace folder, '/'-separated.
    std::string kelPath;
    // The version on disk before the last save that wrote this asset; null for an asset that did
    // not exist on disk before that save (or has not been saved yet), and for one that was never
    // confirmed as added to revision control since (see MultiFileDataSource).
    VersionId ancestor;
    // External files whose content the next save writes, and those it deletes.
    std::map<std::string, QByteArray> pendingContent;
    std::set<std::string> pendingRemoval;
    // The slots of the asset's parts, parallel to record.parts.
    std::vector<std::uint32_t> partSlots;

    bool IsOnDisk() const { return record.version > 0; }
    // An external file's path relative to the workspace folder: beside the .kel file.
    std::string ExternalPath(const std::string& name) const
    {
        const std::size_t slash = kelPath.rfind('/');
        return slash == std::string::npos ? name : kelPath.substr(0, slash + 1) + name;
    }
};

// The files a save must remove because their asset was deleted.
struct PendingDeletion
{
    std::vector<std::string> files;  // relative to the workspace folder
};

// The object cache of a data model: every asset and part in a numbered slot. A slot keeps an
// instance number that grows each time the slot is freed, so that handles to a removed object
// stop resolving even when the slot is reused.
class HBRC_DATAMODEL_EXPORT ObjectStore
{
public:
    static constexpr std::uint32_t kNoSlot = 0xffffffffu;
    // Most assets have a few parts; the object tables grow past a reserve only for richer ones.
    static constexpr std::size_t kObjectsPerAsset = 3;

    // Makes room for this many more assets (and a few parts each) before a load adds them.
    void Reserve(std::size_t assets);
    // Adds the asset and its parts. Fails (kNoSlot) when one of the ids or the file is taken.
    std::uint32_t AddAsset(AssetRecord record, std::string kelPath);
    // Adds a part to an asset; kNoSlot when the id is taken or assetSlot is no asset.
    std::uint32_t AddPart(std::uint32_t assetSlot, PartRecord part);
    // Frees the asset and its parts. Files it had on disk are remembered for the next save.
    void RemoveAsset(std::uint32_t assetSlot);

    bool IsLive(std::uint32_t slot, std::uint32_t instance) const;
    bool IsLive(std::uint32_t slot) const { return slot < m_slots.size() && m_slots[slot].used; }
    std::uint32_t InstanceOf(std::uint32_t slot) const { return m_slots[slot].instance; }
    std::uint32_t SlotOf(const std::string& id) const;
    bool HasKelPath(const std::string& kelPath) const { return m_byKelPath.count(kelPath) != 0; }
    // The asset stored in that .kel file (relative to the workspace folder), or kNoSlot.
    std::uint32_t AssetWithKelPath(const std::string& kelPath) const
    {
        const auto found = m_byKelPath.find(kelPath);
        return found == m_byKelPath.end() ? kNoSlot : found->second;
    }
    bool IsAsset(std::uint32_t slot) const { return IsLive(slot) && m_slots[slot].asset != nullptr; }
    // The asset a live object belongs to (itself for an asset).
    std::uint32_t OwnerOf(std::uint32_t slot) const { return m_slots[slot].owner; }
    StoredAsset& AssetAt(std::uint32_t assetSlot) { return *m_slots[assetSlot].asset; }
    const StoredAsset& AssetAt(std::uint32_t assetSlot) const { return *m_slots[assetSlot].asset; }
    // The record of a live part, held in its asset's record.
    PartRecord& PartAt(std::uint32_t partSlot);
    const PartRecord& PartAt(std::uint32_t partSlot) const;

    const std::string& IdOf(std::uint32_t slot) const;
    const std::string& NameOf(std::uint32_t slot) const;
    const std::string& TypeOf(std::uint32_t slot) const;
    // ObjectFlag bits of a live object. A part shares its asset's persistence and dirty state.
    unsigned FlagsOf(std::uint32_t slot) const { return m_slots[slot].flags; }

    // Dirty state of an asset, kept in a set so that a save visits only dirty assets.
    void SetDirty(std::uint32_t assetSlot, bool dirty);
    const std::set<std::uint32_t>& DirtyAssets() const { return m_dirty; }

    std::vector<PendingDeletion>& PendingDeletions() { return m_deletions; }
    bool HasUnsavedChanges() const { return !m_dirty.empty() || !m_deletions.empty(); }

    // Calls visit(slot) for every live object, in slot order.
    void ForEachLive(const std::function<void(std::uint32_t)>& visit) const;
    std::size_t LiveCount() const { return m_live; }

private:
    struct Slot
    {
        std::uint32_t instance = 1;
        bool used = false;
        std::uint32_t owner = kNoSlot;
        std::size_t partIndex = 0;             // for a part: its index in the owner's parts
        // ObjectFlag bits, kept beside the slot so that a query over every object reads no asset.
        unsigned flags = 0;
        std::unique_ptr<StoredAsset> asset;    // for an asset
    };

    std::uint32_t Allocate(const std::string& id, std::uint32_t owner, unsigned flags);
    void Free(std::uint32_t slot);

    std::vector<Slot> m_slots;
    std::vector<std::uint32_t> m_freeSlots;
    std::unordered_map<std::string, std::uint32_t> m_byId;
    std::unordered_map<std::string, std::uint32_t> m_byKelPath;
    std::set<std::uint32_t> m_dirty;
    std::vector<PendingDeletion> m_deletions;
    std::size_t m_live = 0;
};

}  // namespace hbrc::host
