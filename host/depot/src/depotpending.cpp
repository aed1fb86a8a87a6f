// Rearranging a workspace's pending work: moving opened files between its changelists, and the
// description and removal of a numbered changelist.
#include <depot/depot.h>

#include "depoterror.h"
#include "depotimpl.h"
#include "filestate.h"
#include "pendingchange.h"

namespace hbrc::depot {

namespace {

// A numbered pending changelist of the call's workspace; the default one has no record to change.
std::int64_t numberedPendingChange(Call& call, const ChangelistId& changelist, const char* refusal)
{
    const std::optional<std::int64_t> number = resolvePendingChange(call, changelist);
    if (!number)
        throw DepotError(code::Failed, std::string("The default changelist ") + refusal + ".");
    return *number;
}

}  // namespace

Result Depot::reopen(const std::string& ticket, const Files& files, const ChangelistId& changelist,
                     const CancelCheck& cancel)
{
    return d->runInSession(Operation::Reopen, Transaction::Kind::Write, ticket, cancel, [&](Call& call) {
        const std::optional<std::int64_t> change = resolvePendingChange(call, changelist);
        Statement move(call.db(), "UPDATE opened SET change = ?3 WHERE workspace = ?1 AND path = ?2");
        FileStateReader reader(call.db(), call.workspace());
        std::string refusals;
        for (const std::string& file : files) {
            call.checkpoint();
            const FileState state = reader.read(file);
            if (!state.mine)
                refusals += "\n" + file + " is not opened in workspace " + call.workspace().name();
            else
                move.bind(1, call.workspace().name()).bind(2, *state.key).bind(3, change).run();
        }
        if (!refusals.empty())
            throw DepotError(code::Failed, "Cannot move to another changelist:" + refusals);
    });
}

Result Depot::setDescription(const std::string& ticket, const ChangelistId& changelist, const std::string& description)
{
    return d->runInSession(Operation::SetDescription, Transaction::Kind::Write, ticket, {}, [&](Call& call) {
        const std::int64_t number = numberedPendingChange(call, changelist, "has no description to change");
        if (description.empty())
            throw DepotError(code::Failed, "A changelist's description cannot be empty.");
        Statement update(call.db(), "UPDATE changes SET description = ?2 WHERE number = ?1");
        update.bind(1, number).bind(2, description).run();
    });
}

Result Depot::deleteChangelist(const std::string& ticket, const ChangelistId& changelist)
{
    return d->runInSession(Operation::DeleteChangelist, Transaction::Kind::Write, ticket, {}, [&](Call& call) {
        const std::int64_t number = numberedPendingChange(call, changelist, "cannot be deleted");
        Statement count(call.db(), "SELECT count(*) FROM opened WHERE change = ?1");
        count.bind(1, number).step();
        if (const std::int64_t open = count.integer(0); open > 0)
            throw DepotError(code::Failed, "Change " + changelist + " has " + std::to_string(open) +
                                               " open file(s); move them to another changelist or revert them first.");
        count.reset();
        Statement(call.db(), "DELETE FROM changes WHERE number = ?1").bind(1, number).run();
    });
}

}  // namespace hbrc::depot
