#pragma once

#include <cstdint>
#include <optional>

#include <depot/types.h>

namespace hbrc::depot {

class Call;

// The change number of a changelist identifier; nothing for the default changelist ("" or
// "default"). Throws DepotError for text that is no changelist number.
std::optional<std::int64_t> parseChangelistId(const ChangelistId& id);
// As parseChangelistId, and the change must be pending in the call's workspace.
std::optional<std::int64_t> resolvePendingChange(Call& call, const ChangelistId& id);

}  // namespace hbrc::depot
