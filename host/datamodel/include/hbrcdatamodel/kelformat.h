#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/assetrecord.h>

#include <string>

namespace hbrc::host {

// The text format of a .kel asset file, version 1 (see host/datamodel/README.md). One line per
// entry, "key value"; free texts (names, field values) escape backslash as "\\", line breaks as
// "\n" and "\r", and other control characters as "\xHH"; no line holds a control character other
// than the tab. Lines that are empty or start with '#' are ignored.
//
//     kel 1
//     id 5b0d6c1e-2f4e-4c1b-9a53-7f1d2b1c9e01
//     kind metadata
//     persistable yes
//     type Material
//     name Brushed steel
//     version 3
//     field roughness = 0.4
//     external steel.bin
//     part 9e2a.. Layer Base coat
namespace KelFormat {

constexpr int kVersion = 1;

// Parses text into record. On failure returns false and sets errorText to "line N: reason"
// ("line N, column C: ..." for a control character).
HBRC_DATAMODEL_EXPORT bool Parse(const std::string& text, AssetRecord& record, std::string& errorText);
HBRC_DATAMODEL_EXPORT std::string Serialize(const AssetRecord& record);

// True when name may be an external file name: relative, inside the asset's folder (sub-folders
// allowed, no "..", no backslash, no control character or tab), not another .kel file.
HBRC_DATAMODEL_EXPORT bool IsValidExternalFileName(const std::string& name);

}  // namespace KelFormat
}  // namespace hbrc::host
