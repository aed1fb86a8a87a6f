#include "pendingchange.h"

#include <algorithm>
#include <cctype>

#include "call.h"
#include "depoterror.h"

namespace hbrc::depot {

std::optional<std::int64_t> parseChangelistId(const ChangelistId& id)
{
    if (id.empty() || id == "default")
        return std::nullopt;
    const bool digits = id.size() < 18 && std::all_of(id.begin(), id.end(), [](unsigned char c) {
        return std::isdigit(c) != 0;
    });
    if (!digits)
        throw DepotError(code::Failed, "'" + id + "' is not a changelist number");
    return std::stoll(id);
}

std::optional<std::int64_t> resolvePendingChange(Call& call, const ChangelistId& id)
{
    const std::optional<std::int64_t> number = parseChangelistId(id);
    if (!number)
        return number;
    Statement pending(call.db(), "SELECT 1 FROM changes WHERE number = ?1 AND submitted = 0 AND workspace = ?2");
    pending.bind(1, *number).bind(2, call.workspace().name());
    if (!pending.step())
        throw DepotError(code::Failed, "Change " + id + " is not a pending changelist of workspace " +
                                           call.workspace().name());
    pending.reset();
    return number;
}

}  // namespace hbrc::depot
