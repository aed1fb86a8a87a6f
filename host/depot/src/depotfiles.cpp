// The depot's operations on workspace files: sync, status, opening, revert and lock.
#include <depot/depot.h>

#include <filesystem>
#include <variant>

#include "contentstore.h"
#include "depoterror.h"
#include "depotimpl.h"
#include "filestate.h"
#include "openrules.h"
#include "pendingchange.h"
#include "workspacefiles.h"

namespace hbrc::depot {

namespace fs = std::filesystem;

namespace {

std::string joinLines(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += (text.empty() ? "" : "\n") + line;
    return text;
}

template <typename Visit>
void forEachState(Call& call, const Depot::Files& files, Visit visit)
{
    FileStateReader reader(call.db(), call.workspace());
    for (const std::string& file : files) {
        call.checkpoint();
        visit(file, reader.read(file));
    }
}

// Whether sync may replace the workspace's copy of a file: a read-only or missing copy, or a
// writable one that still holds the workspace's revision or already holds the one it brings
// (`brought`, 0 for a removal). Anything else is a local change made after "make writable", which
// only a forced sync overwrites.
bool mayReplace(const fs::path& local, const FileState& state, std::int64_t brought, ContentStore& contents)
{
    if (!fs::exists(local) || !workspacefiles::isWritable(local))
        return true;
    const ContentFingerprint present = ContentStore::fingerprintOfFile(local);
    const auto holds = [&](std::int64_t revision) {
        return revision > 0 && present == contents.fingerprint(contents.ofRevision(*state.key, revision));
    };
    return holds(state.haveRevision.value_or(0)) || holds(brought);
}

// The revision a file is synced to and whether it has content there (a deleting one has none).
struct SyncTarget
{
    std::int64_t revision = 0;
    bool live = false;
};

// Where a named revision (0: the head) takes a file; a refusal when the depot does not have it.
class SyncTargets
{
public:
    explicit SyncTargets(Database& db) : m_action(db, "SELECT action FROM revisions WHERE path = ?1 AND rev = ?2") {}

    std::variant<SyncTarget, std::string> resolve(const FileState& state, std::int64_t revision)
    {
        if (revision == 0)
            return SyncTarget{state.headRevision.value_or(0), state.live()};
        if (!m_action.bind(1, *state.key).bind(2, revision).step())
            return "no such revision (the head is #" + std::to_string(state.headRevision.value_or(0)) + ")";
        const bool live = actionFromName(m_action.text(0)) != FileAction::Delete;
        m_action.reset();
        return SyncTarget{revision, live};
    }

private:
    Statement m_action;
};

}  // namespace

// Sync of files to revisions (0: the head). Pinned (syncTo) refuses files that are open here or
// unknown; the plain sync passes them over, and takes every depot file when given none.
Result Depot::Impl::syncFiles(const std::string& ticket, const std::vector<FileAtRevision>& files, bool pinned,
                              SyncMode mode, const CancelCheck& cancel, SyncReport* report)
{
    SyncReport done;
    const Result result = runInSession(Operation::Sync, Transaction::Kind::Write, ticket, cancel, [&](Call& call) {
        const WorkspaceView& workspace = call.workspace();
        std::vector<FileAtRevision> wanted = files;
        if (wanted.empty() && !pinned) {
            Statement all(call.db(), "SELECT path FROM files ORDER BY path");
            while (all.step())
                wanted.push_back({workspace.localPathOf(all.text(0)).string(), 0});
        }
        ContentStore contents(call.db());
        SyncTargets targets(call.db());
        Statement setHave(call.db(), "INSERT INTO have(workspace, path, rev) VALUES (?1, ?2, ?3) "
                                     "ON CONFLICT(workspace, path) DO UPDATE SET rev = excluded.rev");
        Statement dropHave(call.db(), "DELETE FROM have WHERE workspace = ?1 AND path = ?2");
        std::vector<std::string> refusals;
        FileStateReader reader(call.db(), workspace);
        for (const FileAtRevision& file : wanted) {
            call.checkpoint();
            const FileState state = reader.read(file.file);
            const std::string named = file.file + (file.revision ? "#" + std::to_string(file.revision) : "");
            if (!state.key || state.mine || !state.headRevision) {
                if (pinned)
                    refusals.push_back(named + (!state.key        ? " - not below the workspace root"
                                                : state.mine      ? " - opened in this workspace; submit or revert it first"
                                                                  : " - no such file in the depot"));
                continue;
            }
            const std::variant<SyncTarget, std::string> resolved = targets.resolve(state, file.revision);
            if (const std::string* refusal = std::get_if<std::string>(&resolved)) {
                refusals.push_back(named + " - " + *refusal);
                continue;
            }
            const SyncTarget target = std::get<SyncTarget>(resolved);
            const fs::path local = workspace.localPathOf(*state.key);
            if (target.live ? state.haveRevision == target.revision && fs::exists(local) : !state.haveRevision)
                continue;
            // A file that cannot be written is refused alone, before anything of it is recorded.
            try {
                workspacefiles::requireReplaceable(local);
                const std::int64_t brought = target.live ? target.revision : 0;
                if (mode == SyncMode::Safe && !mayReplace(local, state, brought, contents)) {
                    refusals.push_back("Can't clobber writable file " + local.string());
                    continue;
                }
            } catch (const DepotError& error) {
                refusals.push_back(error.what());
                continue;
            }
            if (target.live) {
                setHave.bind(1, workspace.name()).bind(2, *state.key).bind(3, target.revision).run();
                call.schedule(FileStep::Kind::WriteRevision, *state.key, target.revision);
            } else {
                dropHave.bind(1, workspace.name()).bind(2, *state.key).run();
                call.schedule(FileStep::Kind::Remove, *state.key);
            }
        }
        call.checkpoint();
        if (!refusals.empty())
            call.refuseSome(code::Failed, joinLines(refusals));
    }, [&](const std::vector<FileStep>& tried) {
        // What was written, not what was meant to be: a step that failed is named in the answer.
        for (const FileStep& step : tried) {
            if (!step.applied)
                continue;
            if (step.kind == FileStep::Kind::WriteRevision)
                done.updated.push_back(depotPathOf(step.key) + "#" + std::to_string(step.revision));
            else
                done.deleted.push_back(depotPathOf(step.key));
        }
    });
    // Empty when the transaction did not get as far as the files.
    if (report)
        *report = std::move(done);
    return result;
}

Result Depot::sync(const std::string& ticket, const Files& files, SyncMode mode, const CancelCheck& cancel,
                   SyncReport* report)
{
    std::vector<FileAtRevision> heads;
    heads.reserve(files.size());
    for (const std::string& file : files)
        heads.push_back({file, 0});
    return d->syncFiles(ticket, heads, false, mode, cancel, report);
}

Result Depot::syncTo(const std::string& ticket, const std::vector<FileAtRevision>& files, SyncMode mode,
                     const CancelCheck& cancel, SyncReport* report)
{
    return d->syncFiles(ticket, files, true, mode, cancel, report);
}

Result Depot::status(const std::string& ticket, const Files& files, std::vector<FileStatus>& statuses,
                     const CancelCheck& cancel)
{
    std::vector<FileStatus> answer;
    answer.reserve(files.size());
    const Result result = d->runInSession(Operation::Status, Transaction::Kind::Read, ticket, cancel, [&](Call& call) {
        workspacefiles::TypeProbe disk;
        for (const FileState& state : readStates(call.db(), call.workspace(), files)) {
            call.checkpoint();
            FileStatus fileStatus;
            fileStatus.word = statusWord(state);
            fileStatus.holders = holdersOf(state);
            for (const OpenRecord& other : state.others)
                fileStatus.heldBy.push_back(
                    {other.user, other.workspace, other.action, changelistIdOf(other.change), other.locked});
            fileStatus.haveRevision = state.haveRevision.value_or(0);
            fileStatus.headRevision = state.headRevision.value_or(0);
            if (state.key && disk.hasIoError(call.workspace().localFileOf(*state.key)))
                fileStatus.word |= status::IoError;
            if (state.mine)
                fileStatus.changelist = changelistIdOf(state.mine->change);
            answer.push_back(std::move(fileStatus));
        }
    });
    if (result.ok())
        statuses = std::move(answer);
    return result;
}

Result Depot::holders(const std::string& ticket, const Files& files, std::vector<std::vector<std::string>>& users,
                      const CancelCheck& cancel)
{
    std::vector<std::vector<std::string>> answer;
    const Result result = d->runInSession(Operation::Holders, Transaction::Kind::Read, ticket, cancel, [&](Call& call) {
        for (const FileState& state : readStates(call.db(), call.workspace(), files)) {
            call.checkpoint();
            answer.push_back(holdersOf(state));
        }
    });
    if (result.ok())
        users = std::move(answer);
    return result;
}

Result Depot::Impl::openFiles(Operation operation, FileAction action, const std::string& ticket, const Files& files,
                              const ChangelistId& changelist, const CancelCheck& cancel)
{
    return runInSession(operation, Transaction::Kind::Write, ticket, cancel, [&](Call& call) {
        const WorkspaceView& workspace = call.workspace();
        const std::optional<std::int64_t> change = resolvePendingChange(call, changelist);
        Statement open(call.db(), "INSERT INTO opened(workspace, path, user, action, change) VALUES (?1, ?2, ?3, ?4, ?5)");
        std::vector<std::string> refusals;
        int refusalCode = code::Failed;
        // One reader, so that a file named twice is seen as already open the second time.
        forEachState(call, files, [&](const std::string& file, const FileState& state) {
            const std::string name = state.key ? depotPathOf(*state.key) : file;
            const OpenDecision decision = decideOpen(action, state);
            if (decision.kind == OpenDecision::Kind::AlreadyOpen)
                return;
            if (decision.kind == OpenDecision::Kind::Refuse) {
                refusals.push_back(name + " " + decision.reason);
                return;
            }
            const fs::path local = workspace.localPathOf(*state.key);
            if (action == FileAction::Add && !workspacefiles::isReadableFile(local)) {
                refusals.push_back(name + " cannot be read from " + local.string());
                refusalCode = code::IoError;
                return;
            }
            open.bind(1, workspace.name()).bind(2, *state.key).bind(3, call.user());
            open.bind(4, std::string(actionName(action))).bind(5, change).run();
            if (action == FileAction::Edit)
                call.schedule(FileStep::Kind::MakeWritable, *state.key);
            else if (action == FileAction::Delete)
                call.schedule(FileStep::Kind::Remove, *state.key);
        });
        if (!refusals.empty())
            throw DepotError(refusalCode, "Cannot open for " + std::string(actionName(action)) + ":\n" +
                                              joinLines(refusals));
        call.checkpoint();
    });
}

Result Depot::edit(const std::string& ticket, const Files& files, const ChangelistId& changelist,
                   const CancelCheck& cancel)
{
    return d->openFiles(Operation::Edit, FileAction::Edit, ticket, files, changelist, cancel);
}

Result Depot::add(const std::string& ticket, const Files& files, const ChangelistId& changelist,
                  const CancelCheck& cancel)
{
    return d->openFiles(Operation::Add, FileAction::Add, ticket, files, changelist, cancel);
}

Result Depot::remove(const std::string& ticket, const Files& files, const ChangelistId& changelist,
                     const CancelCheck& cancel)
{
    return d->openFiles(Operation::Delete, FileAction::Delete, ticket, files, changelist, cancel);
}

Result Depot::revert(const std::string& ticket, const Files& files, const CancelCheck& cancel)
{
    return d->runInSession(Operation::Revert, Transaction::Kind::Write, ticket, cancel, [&](Call& call) {
        const WorkspaceView& workspace = call.workspace();
        Statement unopen(call.db(), "DELETE FROM opened WHERE workspace = ?1 AND path = ?2");
        std::vector<std::string> notOpened;
        forEachState(call, files, [&](const std::string& file, const FileState& state) {
            if (!state.mine) {
                notOpened.push_back(file + " - file not opened in workspace " + workspace.name() + ", skipped");
                return;
            }
            unopen.bind(1, workspace.name()).bind(2, *state.key).run();
            if (state.mine->action != FileAction::Add && state.haveRevision)
                call.schedule(FileStep::Kind::WriteRevision, *state.key, *state.haveRevision);
        });
        call.checkpoint();
        if (!notOpened.empty())
            call.refuseSome(code::Skipped, joinLines(notOpened));
    });
}

Result Depot::revertUnchanged(const std::string& ticket, const Files& files, std::vector<std::string>& reverted,
                              const CancelCheck& cancel)
{
    std::vector<std::string> answer;
    const Result result =
        d->runInSession(Operation::RevertUnchanged, Transaction::Kind::Write, ticket, cancel, [&](Call& call) {
            const WorkspaceView& workspace = call.workspace();
            Files wanted = files;
            if (wanted.empty()) {
                Statement mine(call.db(), "SELECT path FROM opened WHERE workspace = ?1 ORDER BY path");
                mine.bind(1, workspace.name());
                while (mine.step())
                    wanted.push_back(workspace.localPathOf(mine.text(0)).string());
            }
            ContentStore contents(call.db());
            Statement unopen(call.db(), "DELETE FROM opened WHERE workspace = ?1 AND path = ?2");
            forEachState(call, wanted, [&](const std::string&, const FileState& state) {
                if (!state.mine || state.mine->action != FileAction::Edit || !state.haveRevision)
                    return;
                const fs::path local = workspace.localPathOf(*state.key);
                if (!workspacefiles::isReadableFile(local) ||
                    !(ContentStore::fingerprintOfFile(local) ==
                      contents.fingerprint(contents.ofRevision(*state.key, *state.haveRevision))))
                    return;
                unopen.bind(1, workspace.name()).bind(2, *state.key).run();
                call.schedule(FileStep::Kind::MakeReadOnly, *state.key);
                answer.push_back(depotPathOf(*state.key));
            });
            call.checkpoint();
        });
    if (result.ok())
        reverted = std::move(answer);
    return result;
}

Result Depot::Impl::setLocked(Operation operation, bool locked, const std::string& ticket, const Files& files,
                              const CancelCheck& cancel)
{
    return runInSession(operation, Transaction::Kind::Write, ticket, cancel, [&](Call& call) {
        Statement update(call.db(), "UPDATE opened SET locked = ?3 WHERE workspace = ?1 AND path = ?2");
        std::vector<std::string> refusals;
        forEachState(call, files, [&](const std::string& file, const FileState& state) {
            if (!state.mine)
                refusals.push_back(file + " is not opened in workspace " + call.workspace().name());
            else
                update.bind(1, call.workspace().name()).bind(2, *state.key).bind(3, std::int64_t{locked}).run();
        });
        if (!refusals.empty())
            throw DepotError(code::Failed, std::string(locked ? "Cannot lock:\n" : "Cannot unlock:\n") +
                                               joinLines(refusals));
    });
}

Result Depot::lock(const std::string& ticket, const Files& files, const CancelCheck& cancel)
{
    return d->setLocked(Operation::Lock, true, ticket, files, cancel);
}

Result Depot::unlock(const std::string& ticket, const Files& files, const CancelCheck& cancel)
{
    return d->setLocked(Operation::Unlock, false, ticket, files, cancel);
}

}  // namespace hbrc::depot
