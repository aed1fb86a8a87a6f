#pragma once

#include <hbrcdatamodel/export.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace hbrc::host {

// What an asset is for the save and its hooks: metadata (descriptions, materials, settings),
// a value asset (a stored value such as a curve or a constant), or plain data (saved with the
// workspace but neither of the two).
enum class AssetKind { Metadata, Value, Data };

HBRC_DATAMODEL_EXPORT const char* AssetKindName(AssetKind kind);
// False when text names no kind.
HBRC_DATAMODEL_EXPORT bool AssetKindFromName(const std::string& text, AssetKind& kind);

// A sub-object held inside an asset (a layer of a material, a key of a curve). It is stored in
// its asset's file and saved with it.
struct PartRecord
{
    std::string id;
    std::string type;
    std::string name;
};

// The content of one .kel file.
struct AssetRecord
{
    std::string id;
    AssetKind kind = AssetKind::Data;
    // A non-persistable asset is never written by a save; its edits live for the session.
    bool persistable = true;
    std::string type;
    std::string name;
    // Incremented by every save of the asset; 0 for an asset never saved.
    std::uint64_t version = 0;
    std::map<std::string, std::string> fields;
    // File names relative to the folder of the .kel file, in the order the asset lists them.
    std::vector<std::string> externalFiles;
    std::vector<PartRecord> parts;
};

}  // namespace hbrc::host
