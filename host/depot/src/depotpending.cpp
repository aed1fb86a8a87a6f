// A workspace's pending work: listing it, moving opened files between its changelists, and the
// description and removal of a numbered changelist.
#include <depot/depot.h>

#include <map>

#include "depoterror.h"
#include "depotimpl.h"
#include "filestate.h"
#include "pendingchange.h"
#include "workspaceview.h"

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

Result Depot::pending(const std::string& ticket, std::vector<PendingChangelist>& pending)
{
    std::vector<PendingChangelist> answer;
    const Result result = d->runInSession(Operation::Pending, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        const WorkspaceView& workspace = call.workspace();
        answer.push_back({{{}, {}, call.user(), workspace.name(), ChangelistState::Pending, {}, 0}, {}});
        std::map<std::int64_t, std::size_t> byNumber;
        Statement changes(call.db(), "SELECT number, description, user, time FROM changes "
                                     "WHERE submitted = 0 AND workspace = ?1 ORDER BY number");
        changes.bind(1, workspace.name());
        while (changes.step()) {
            byNumber[changes.integer(0)] = answer.size();
            answer.push_back({{std::to_string(changes.integer(0)), changes.text(1), changes.text(2), workspace.name(),
                               ChangelistState::Pending, {}, changes.integer(3)},
                              {}});
        }
        Statement files(call.db(), "SELECT path, action, change, locked, user FROM opened WHERE workspace = ?1 ORDER BY path");
        files.bind(1, workspace.name());
        while (files.step()) {
            const std::optional<std::int64_t> change = files.optionalInteger(2);
            const auto found = change ? byNumber.find(*change) : byNumber.end();
            PendingChangelist& owner = found == byNumber.end() ? answer.front() : answer[found->second];
            owner.files.push_back({depotPathOf(files.text(0)), workspace.localPathOf(files.text(0)).string(),
                                   actionFromName(files.text(1)), changelistIdOf(change), files.text(4),
                                   workspace.name(), files.integer(3) != 0});
        }
    });
    if (result.ok())
        pending = std::move(answer);
    return result;
}

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
