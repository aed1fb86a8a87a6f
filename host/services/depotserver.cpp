#include "depotserver.h"

#include <depot/ticketstore.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace hbrc::host {

namespace {

// The contract's codes and status bits are the depot's numbers, so that both pass unchanged.
static_assert(revision::code::Ok == depot::code::Ok && revision::code::Failed == depot::code::Failed &&
              revision::code::Cancelled == depot::code::Cancelled && revision::code::IoError == depot::code::IoError &&
              revision::code::SessionUnusable == depot::code::SessionUnusable &&
              revision::code::Skipped == depot::code::Skipped);
static_assert(revision::status::OpenedForEdit == depot::status::OpenedForEdit &&
              revision::status::OpenedByOthers == depot::status::OpenedByOthers &&
              revision::status::OpenedForAdd == depot::status::OpenedForAdd &&
              revision::status::AddedByOthers == depot::status::AddedByOthers &&
              revision::status::OpenedForDelete == depot::status::OpenedForDelete &&
              revision::status::DeletedByOthers == depot::status::DeletedByOthers &&
              revision::status::NotAtHead == depot::status::NotAtHead &&
              revision::status::NotInDepot == depot::status::NotInDepot &&
              revision::status::IoError == depot::status::IoError &&
              revision::status::LockedByOthers == depot::status::LockedByOthers);

revision::Result Answer(const depot::Result& result)
{
    return {result.code, result.error};
}

revision::FileAction ActionOf(depot::FileAction action)
{
    switch (action) {
    case depot::FileAction::Add: return revision::FileAction::Add;
    case depot::FileAction::Delete: return revision::FileAction::Delete;
    case depot::FileAction::Edit: break;
    }
    return revision::FileAction::Edit;
}

depot::ChangelistState DepotState(revision::ChangelistState state)
{
    return state == revision::ChangelistState::Submitted ? depot::ChangelistState::Submitted
                                                         : depot::ChangelistState::Pending;
}

revision::ChangelistState StateOf(depot::ChangelistState state)
{
    return state == depot::ChangelistState::Submitted ? revision::ChangelistState::Submitted
                                                      : revision::ChangelistState::Pending;
}

revision::FileStatus StatusOf(const depot::FileStatus& status)
{
    revision::FileStatus answer{status.word, status.changelist, status.holders, {}, status.haveRevision,
                                status.headRevision};
    for (const depot::FileHolder& hold : status.heldBy)
        answer.heldBy.push_back({hold.user, hold.workspace, ActionOf(hold.action), hold.changelist, hold.locked});
    return answer;
}

revision::Changelist ChangelistOf(const depot::Changelist& changelist)
{
    revision::Changelist answer{changelist.id,        changelist.description,   changelist.user, changelist.workspace,
                                StateOf(changelist.state), {}, changelist.time};
    for (const depot::ChangelistFile& file : changelist.files)
        answer.files.push_back({file.depotPath, ActionOf(file.action), file.revision});
    return answer;
}

// Each element of a depot answer in the contract's type.
template <typename Convert, typename From>
auto ConvertedAll(const std::vector<From>& answered, Convert convert)
{
    std::vector<decltype(convert(answered.front()))> converted;
    converted.reserve(answered.size());
    for (const From& each : answered)
        converted.push_back(convert(each));
    return converted;
}

revision::FileRevision RevisionOf(const depot::FileRevision& file)
{
    return {file.depotPath, file.revision, file.changelist, ActionOf(file.action), file.user, file.workspace, file.time,
            file.description};
}

revision::PendingChangelist PendingOf(const depot::PendingChangelist& pending)
{
    revision::PendingChangelist answer{ChangelistOf(pending.changelist), {}};
    for (const depot::OpenedFile& file : pending.files)
        answer.files.push_back({file.depotPath, file.localPath, ActionOf(file.action), file.changelist, file.user,
                                file.workspace, file.locked});
    return answer;
}

depot::DepotOptions DepotOptionsOf(const revision::ServerOptions& options)
{
    depot::DepotOptions depotOptions;
    depotOptions.passwordHashCost = options.passwordHashCost == revision::PasswordHashCost::Minimal
                                        ? depot::PasswordHashCost::Minimal
                                        : depot::PasswordHashCost::Interactive;
    return depotOptions;
}

depot::Operation DepotOperation(revision::Operation operation)
{
    using From = revision::Operation;
    using To = depot::Operation;
    switch (operation) {
    case From::Login: return To::Login;
    case From::Logout: return To::Logout;
    case From::Session: return To::Session;
    case From::Sync: return To::Sync;
    case From::Status: return To::Status;
    case From::Holders: return To::Holders;
    case From::Edit: return To::Edit;
    case From::Add: return To::Add;
    case From::Delete: return To::Delete;
    case From::Revert: return To::Revert;
    case From::Submit: return To::Submit;
    case From::Changelists: return To::Changelists;
    case From::Describe: return To::Describe;
    case From::CreateChangelist: return To::CreateChangelist;
    case From::ChangelistExists: return To::ChangelistExists;
    case From::Reopen: return To::Reopen;
    case From::DeleteChangelist: return To::DeleteChangelist;
    case From::SetDescription: return To::SetDescription;
    case From::RevertUnchanged: return To::RevertUnchanged;
    case From::History: return To::History;
    case From::Content: return To::Content;
    case From::SubmittedChanges: return To::Changelists;
    case From::FilesAt: return To::Files;
    case From::Users: return To::Users;
    case From::Workspaces: return To::Workspaces;
    case From::WorkspaceChanges: return To::WorkspaceChanges;
    case From::Pending: break;
    }
    return To::Pending;
}

std::string UnreachableText(const std::string& path, const std::string& why)
{
    return "Cannot reach the depot at '" + path + "': " + why;
}

}  // namespace

void DepotServer::Faults::failNextCalls(int count, int code, std::string message)
{
    m_injector.failNextCalls(count, code, std::move(message));
}

void DepotServer::Faults::failOperation(revision::Operation operation, int code, std::string message)
{
    m_injector.failOperation(DepotOperation(operation), code, std::move(message));
}

DepotServer::DepotServer(const std::string& path, const revision::ServerOptions& options)
    : m_depot(path, DepotOptionsOf(options))
{
}

std::string DepotServer::SettingProblem(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored) ? std::string() : UnreachableText(path, "no such file");
}

std::string DepotServer::unreachableText(const std::string& why) const
{
    return UnreachableText(path(), why);
}

revision::Capabilities DepotServer::capabilities() const
{
    using revision::Capability;
    return {Capability::SharedSessions,         Capability::NamedWorkspaces,        Capability::Locks,
            Capability::ServerNumberedChangelists, Capability::SubmittedChangesListed, Capability::OthersOpenFilesSeen,
            Capability::KeptLogIns};
}

revision::Result DepotServer::login(const std::string& user, const std::string& password, const std::string& workspace,
                                    std::string& ticket)
{
    return Answer(m_depot.login(user, password, workspace, ticket));
}

revision::Result DepotServer::expireSession(const std::string& ticket)
{
    return Answer(m_depot.expireSession(ticket));
}

revision::Result DepotServer::resumeKept(const std::string& user, const std::string& workspace, std::string& ticket)
{
    const std::optional<depot::StoredTicket> kept =
        depot::TicketStore().find(depot::TicketStore::depotKey(path()), user);
    if (kept && kept->workspace == workspace) {
        std::string owner;
        std::string ownersWorkspace;
        const depot::Result alive = m_depot.session(kept->ticket, owner, ownersWorkspace);
        if (alive.ok() && owner == user && ownersWorkspace == workspace) {
            ticket = kept->ticket;
            return Answer(alive);
        }
    }
    return {revision::code::Failed, "No live log-in of " + user + " in workspace " + workspace + " is kept."};
}

revision::Result DepotServer::keep(const std::string& ticket)
{
    std::string user;
    std::string workspace;
    const depot::Result alive = m_depot.session(ticket, user, workspace);
    if (!alive.ok())
        return Answer(alive);
    try {
        depot::TicketStore().save(depot::TicketStore::depotKey(path()), user, {workspace, ticket});
    } catch (const std::runtime_error& error) {
        return {revision::code::Failed, error.what()};
    }
    return Answer(alive);
}

revision::Result DepotServer::logout(const std::string& user, const std::string& ticket)
{
    std::string notForgotten;
    try {
        depot::TicketStore().forget(depot::TicketStore::depotKey(path()), user);
    } catch (const std::runtime_error& error) {
        notForgotten = error.what();
    }
    const depot::Result ended = m_depot.logout(ticket);
    if (!notForgotten.empty())
        return {revision::code::Failed, notForgotten};
    // A session that had ended already needs no ending.
    return ended.code == depot::code::SessionUnusable ? revision::Result{} : Answer(ended);
}

revision::Result DepotServer::sync(const std::string& ticket, const Files& files, const revision::CancelCheck& cancel)
{
    return Answer(m_depot.sync(ticket, files, depot::SyncMode::Safe, cancel));
}

revision::Result DepotServer::status(const std::string& ticket, const Files& files,
                                     std::vector<revision::FileStatus>& statuses, const revision::CancelCheck& cancel)
{
    std::vector<depot::FileStatus> answered;
    const depot::Result result = m_depot.status(ticket, files, answered, cancel);
    if (result.ok()) {
        statuses.clear();
        statuses.reserve(answered.size());
        for (const depot::FileStatus& status : answered)
            statuses.push_back(StatusOf(status));
    }
    return Answer(result);
}

revision::Result DepotServer::holders(const std::string& ticket, const Files& files,
                                      std::vector<std::vector<std::string>>& users, const revision::CancelCheck& cancel)
{
    return Answer(m_depot.holders(ticket, files, users, cancel));
}

revision::Result DepotServer::edit(const std::string& ticket, const Files& files,
                                   const revision::ChangelistId& changelist, const revision::CancelCheck& cancel)
{
    return Answer(m_depot.edit(ticket, files, changelist, cancel));
}

revision::Result DepotServer::add(const std::string& ticket, const Files& files,
                                  const revision::ChangelistId& changelist, const revision::CancelCheck& cancel)
{
    return Answer(m_depot.add(ticket, files, changelist, cancel));
}

revision::Result DepotServer::remove(const std::string& ticket, const Files& files,
                                     const revision::ChangelistId& changelist, const revision::CancelCheck& cancel)
{
    return Answer(m_depot.remove(ticket, files, changelist, cancel));
}

revision::Result DepotServer::revert(const std::string& ticket, const Files& files,
                                     const revision::CancelCheck& cancel)
{
    return Answer(m_depot.revert(ticket, files, cancel));
}

revision::Result DepotServer::submit(const std::string& ticket, const revision::ChangelistId& changelist,
                                     const std::string& description, revision::ChangelistId& submitted,
                                     const revision::CancelCheck& cancel)
{
    return Answer(m_depot.submit(ticket, changelist, description, submitted, cancel));
}

revision::Result DepotServer::changelists(const std::string& ticket, revision::ChangelistState state,
                                          std::vector<revision::Changelist>& changelists)
{
    std::vector<depot::Changelist> answered;
    const depot::Result result = m_depot.changelists(ticket, DepotState(state), answered);
    if (result.ok())
        changelists = ConvertedAll(answered, ChangelistOf);
    return Answer(result);
}

revision::Result DepotServer::describe(const std::string& ticket, const revision::ChangelistId& changelist,
                                       revision::Changelist& description)
{
    depot::Changelist answered;
    const depot::Result result = m_depot.describe(ticket, changelist, answered);
    if (result.ok())
        description = ChangelistOf(answered);
    return Answer(result);
}

revision::Result DepotServer::createChangelist(const std::string& ticket, const std::string& description,
                                               revision::ChangelistId& created)
{
    return Answer(m_depot.createChangelist(ticket, description, created));
}

revision::Result DepotServer::changelistExists(const std::string& ticket, const revision::ChangelistId& changelist,
                                               bool& exists)
{
    return Answer(m_depot.changelistExists(ticket, changelist, exists));
}

revision::Result DepotServer::pendingChangelists(const std::string& ticket,
                                                 std::vector<revision::PendingChangelist>& pending)
{
    std::vector<depot::PendingChangelist> answered;
    const depot::Result result = m_depot.pending(ticket, answered);
    if (result.ok()) {
        pending.clear();
        for (const depot::PendingChangelist& changelist : answered)
            pending.push_back(PendingOf(changelist));
    }
    return Answer(result);
}

revision::Result DepotServer::setDescription(const std::string& ticket, const revision::ChangelistId& changelist,
                                             const std::string& description)
{
    return Answer(m_depot.setDescription(ticket, changelist, description));
}

revision::Result DepotServer::deleteChangelist(const std::string& ticket, const revision::ChangelistId& changelist)
{
    return Answer(m_depot.deleteChangelist(ticket, changelist));
}

revision::Result DepotServer::reopen(const std::string& ticket, const Files& files,
                                     const revision::ChangelistId& changelist, const revision::CancelCheck& cancel)
{
    return Answer(m_depot.reopen(ticket, files, changelist, cancel));
}

revision::Result DepotServer::revertUnchanged(const std::string& ticket, const Files& files,
                                              std::vector<std::string>& reverted, const revision::CancelCheck& cancel)
{
    return Answer(m_depot.revertUnchanged(ticket, files, reverted, cancel));
}

revision::Result DepotServer::fileHistory(const std::string& ticket, const Files& files, std::size_t limit,
                                         std::vector<std::vector<revision::FileRevision>>& histories)
{
    std::vector<std::vector<depot::FileRevision>> answered;
    const depot::Result result = m_depot.fileHistory(ticket, files, limit, answered);
    if (result.ok())
        histories = ConvertedAll(answered, [](const std::vector<depot::FileRevision>& history) {
            return ConvertedAll(history, RevisionOf);
        });
    return Answer(result);
}

revision::Result DepotServer::fileContent(const std::string& ticket, const revision::FileAtRevision& file,
                                         std::string& content)
{
    std::ostringstream bytes;
    const depot::Result result = m_depot.fileContent(ticket, {file.file, file.revision}, bytes);
    if (result.ok())
        content = std::move(bytes).str();
    return Answer(result);
}

revision::Result DepotServer::submittedChanges(const std::string& ticket, const revision::ChangeFilter& filter,
                                              std::vector<revision::Changelist>& changes)
{
    std::vector<depot::Changelist> answered;
    const depot::Result result = m_depot.submittedChanges(
        ticket, {filter.user, filter.paths, filter.since, filter.until, filter.limit}, answered);
    if (result.ok())
        changes = ConvertedAll(answered, ChangelistOf);
    return Answer(result);
}

revision::Result DepotServer::submittedChange(const std::string& ticket, const revision::ChangelistId& change,
                                             revision::Changelist& description)
{
    const revision::Result described = describe(ticket, change, description);
    if (described.ok() && description.state != revision::ChangelistState::Submitted)
        return {revision::code::Failed, "Change " + change + " is not submitted."};
    return described;
}

revision::Result DepotServer::filesAt(const std::string& ticket, const Files& paths,
                                     const revision::ChangelistId& change, std::vector<revision::FileRevision>& files)
{
    std::vector<depot::FileRevision> answered;
    const depot::Result result = m_depot.filesAt(ticket, paths, change, answered);
    if (result.ok())
        files = ConvertedAll(answered, RevisionOf);
    return Answer(result);
}

revision::Result DepotServer::users(const std::string& ticket, std::vector<std::string>& users)
{
    return Answer(m_depot.users(ticket, users));
}

revision::Result DepotServer::workspaces(const std::string& ticket, std::vector<revision::WorkspaceRecord>& workspaces)
{
    std::vector<depot::WorkspaceInfo> answered;
    const depot::Result result = m_depot.workspaces(ticket, answered);
    if (result.ok())
        workspaces = ConvertedAll(answered, [](const depot::WorkspaceInfo& workspace) {
            return revision::WorkspaceRecord{workspace.name, workspace.owner, workspace.root};
        });
    return Answer(result);
}

revision::Result DepotServer::syncTo(const std::string& ticket, const std::vector<revision::FileAtRevision>& files,
                                    const revision::CancelCheck& cancel)
{
    std::vector<depot::FileAtRevision> targets;
    targets.reserve(files.size());
    for (const revision::FileAtRevision& file : files)
        targets.push_back({file.file, file.revision});
    return Answer(m_depot.syncTo(ticket, targets, depot::SyncMode::Safe, cancel));
}

revision::Result DepotServer::workspaceChanges(const std::string& ticket, const Files& paths,
                                              std::vector<revision::WorkspaceChange>& changes,
                                              const revision::CancelCheck& cancel)
{
    std::vector<depot::WorkspaceChange> found;
    const depot::Result result = m_depot.workspaceChanges(ticket, paths, found, cancel);
    if (result.ok()) {
        changes.clear();
        for (const depot::WorkspaceChange& change : found)
            changes.push_back({change.localPath, change.depotPath, ActionOf(change.action), change.haveRevision});
    }
    return Answer(result);
}

}  // namespace hbrc::host
