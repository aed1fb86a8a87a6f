#include "svnserver.h"

#include "svnadvisorylock.h"
#include "svnconnectionbreaker.h"
#include "svnservercall.h"
#include "svnworkspacechanges.h"

#include <svn_config.h>

#include <svn_dirent_uri.h>
#include <svn_props.h>
#include <svn_ra.h>
#include <svn_string.h>
#include <svn_wc.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <thread>

namespace hbrc::host {

namespace {

using revision::Result;
namespace code = revision::code;
namespace status = revision::status;

constexpr unsigned kOpenHere = status::OpenedForEdit | status::OpenedForAdd | status::OpenedForDelete;

std::string Canonical(const std::string& path, apr_pool_t* pool)
{
    return svn_dirent_canonicalize(path.c_str(), pool);
}

bool IsUnreadable(const std::string& file)
{
    return ::access(file.c_str(), F_OK) == 0 && ::access(file.c_str(), R_OK) != 0;
}

revision::FileAction ActionOf(const SvnNodeStatus& node)
{
    if (node.local == svn_wc_status_added || node.local == svn_wc_status_replaced)
        return revision::FileAction::Add;
    if (node.local == svn_wc_status_deleted)
        return revision::FileAction::Delete;
    return revision::FileAction::Edit;
}

// The open files of a walk in path order, leaving out the folders added for them.
std::vector<std::pair<std::string, const SvnNodeStatus*>> OpenFiles(const SvnStatusMap& nodes)
{
    std::vector<std::pair<std::string, const SvnNodeStatus*>> open;
    for (const auto& [path, node] : nodes)
        if (!node.directory && SvnIsOpenHere(node))
            open.emplace_back(path, &node);
    std::sort(open.begin(), open.end());
    return open;
}

// The status word of a file for the session's user; the mapping README.md tables.
revision::FileStatus FileStatusOf(const SvnNodeStatus* node, bool askedRepository, const std::string& file)
{
    revision::FileStatus result;
    if (!node || !node->versioned || node->local == svn_wc_status_unversioned ||
        node->local == svn_wc_status_ignored || node->local == svn_wc_status_none) {
        result.word = status::NotInDepot;
    } else {
        if (node->local == svn_wc_status_added || node->local == svn_wc_status_replaced)
            result.word |= status::OpenedForAdd;
        if (node->local == svn_wc_status_deleted)
            result.word |= status::OpenedForDelete;
        const bool lockedHere = !node->localLockToken.empty() &&
                                (!askedRepository || node->repositoryLockToken == node->localLockToken);
        if (lockedHere) {
            result.word |= status::OpenedForEdit;
        } else if (!node->repositoryLockOwner.empty()) {
            result.word |= status::OpenedByOthers | status::LockedByOthers;
            result.holders.push_back(node->repositoryLockOwner);
            // Others' working copies and changelists are theirs alone: a lock says who, not where.
            result.heldBy.push_back({node->repositoryLockOwner, {}, revision::FileAction::Edit, {}, true});
        }
        if (node->repository != svn_wc_status_none && node->repository != svn_wc_status_normal)
            result.word |= status::NotAtHead;
        result.changelist = node->changelist;
        result.haveRevision = node->changedRevision;
        result.headRevision = askedRepository ? node->headChangedRevision : node->changedRevision;
    }
    if (IsUnreadable(file))
        result.word |= status::IoError;
    return result;
}

// Why files cannot be opened for action, as the contract words a refusal (a heading, then a line
// per file); code::Ok when all of them can.
Result Refusals(const char* action, const RevisionServer::Files& files,
                const std::vector<revision::FileStatus>& statuses)
{
    std::string refusals;
    int refusalCode = code::Failed;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const unsigned word = statuses[i].word;
        if (word & status::NotInDepot) {
            refusals += "\n" + files[i] + " is not in the depot";
        } else if (word & status::OpenedByOthers) {
            refusals += "\n" + files[i] + " is locked by " + statuses[i].holders.front();
        } else if ((word & status::NotAtHead) && !(word & kOpenHere)) {
            refusals += "\n" + files[i] + " is not at the head revision (sync it first)";
        } else if (word & status::IoError) {
            refusals += "\n" + files[i] + " cannot be read";
            refusalCode = code::IoError;
        }
    }
    if (refusals.empty())
        return {};
    return {refusalCode, "Cannot open for " + std::string(action) + ":" + refusals};
}

// The files locked in user's name elsewhere than in this working copy (no token here), which no
// longer count as held by others; they are returned for the caller to take back.
RevisionServer::Files OwnStrayLocks(const RevisionServer::Files& files, const std::string& user,
                                    std::vector<revision::FileStatus>& statuses)
{
    RevisionServer::Files strays;
    for (std::size_t i = 0; i < files.size(); ++i) {
        revision::FileStatus& file = statuses[i];
        if ((file.word & status::LockedByOthers) && file.holders == std::vector<std::string>{user}) {
            file.word &= ~(status::OpenedByOthers | status::LockedByOthers);
            file.holders.clear();
            file.heldBy.clear();
            strays.push_back(files[i]);
        }
    }
    return strays;
}

// Collects what a lock or unlock did to each path.
struct LockOutcome
{
    std::vector<std::string> done;
    std::string failures;

    static void Notify(void* baton, const svn_wc_notify_t* notify, apr_pool_t* /*pool*/)
    {
        auto* outcome = static_cast<LockOutcome*>(baton);
        if (notify->action == svn_wc_notify_locked || notify->action == svn_wc_notify_unlocked) {
            outcome->done.emplace_back(notify->path);
        } else if (notify->action == svn_wc_notify_failed_lock || notify->action == svn_wc_notify_failed_unlock) {
            outcome->failures += "\n" + std::string(notify->path) + " - " +
                                 (notify->err && notify->err->message ? notify->err->message : "refused");
        }
    }
};

// Puts files into a changelist of the working copy; "" takes them out of every one.
svn_error_t* MoveToChangelist(svn_client_ctx_t* context, apr_array_header_t* paths,
                              const revision::ChangelistId& changelist, apr_pool_t* pool)
{
    if (changelist.empty())
        return svn_client_remove_from_changelists(paths, svn_depth_empty, nullptr, context, pool);
    return svn_client_add_to_changelist(paths, changelist.c_str(), svn_depth_empty, nullptr, context, pool);
}

svn_error_t* GiveLogMessage(const char** message, const char** temporaryFile, const apr_array_header_t* /*items*/,
                            void* baton, apr_pool_t* pool)
{
    *message = apr_pstrdup(pool, static_cast<const std::string*>(baton)->c_str());
    *temporaryFile = nullptr;
    return SVN_NO_ERROR;
}

svn_error_t* KeepRevision(const svn_commit_info_t* info, void* baton, apr_pool_t* /*pool*/)
{
    *static_cast<svn_revnum_t*>(baton) = info->revision;
    return SVN_NO_ERROR;
}

}  // namespace

SvnServer::Session* SvnServer::find(const std::string& ticket)
{
    const auto found = m_sessions.find(ticket);
    return found == m_sessions.end() ? nullptr : found->second.get();
}

Result SvnServer::login(const std::string& user, const std::string& password, const std::string& workspace,
                        std::string& ticket)
{
    Call call(*this, {});
    if (Result forced = call.begin(revision::Operation::Login, nullptr); !forced.ok())
        return forced;
    if (user.empty() || workspace.empty())
        return {code::Failed, "A Subversion account needs a user name and the folder of its working copy."};
    auto session = std::make_unique<Session>();
    session->credentials = {user, password};
    const char* folder = nullptr;
    if (svn_error_t* relative = svn_dirent_get_absolute(&folder, workspace.c_str(), call.pool()))
        return call.finish(relative);
    session->workingCopy = folder;
    call.use(*session);

    // Asking the repository for its latest revision on a new connection proves that it is
    // reachable and accepts the account now.
    svn_error_t* err = call.reachRepository();
    if (err && SvnIsAuthenticationFailure(err)) {
        ++m_roundTrips;
        svn_error_clear(err);
        return {code::Failed, "Invalid password for user " + user + "."};
    }
    if (Result reached = call.ask(err); !reached.ok())
        return reached;

    const char* root = nullptr;
    svn_error_t* notWorkingCopy = svn_client_get_wc_root(&root, session->workingCopy.c_str(), call.context(),
                                                          call.pool(), call.pool());
    if (notWorkingCopy) {
        svn_error_clear(notWorkingCopy);
        root = session->workingCopy.c_str();
        svn_opt_revision_t head{};
        head.kind = svn_opt_revision_head;
        svn_revnum_t checkedOut = SVN_INVALID_REVNUM;
        const Result checkout = call.ask(svn_client_checkout3(&checkedOut, m_url.c_str(), session->workingCopy.c_str(),
                                                              &head, &head, svn_depth_infinity, TRUE, TRUE,
                                                              call.context(), call.pool()));
        if (!checkout.ok())
            return checkout;
    }
    // Kept at the working copy's root, whichever of its folders the workspace names, so that every
    // session on the working copy shares them.
    const std::string adminFolder = svn_dirent_join(root, svn_wc_get_adm_dir(call.pool()), call.pool());
    session->changelists = std::make_unique<SvnChangelists>(adminFolder);
    session->origin = SvnWorkingCopyId::Of(root, adminFolder);
    session->lockingFile = adminFolder + "/hbrc-locking.lock";
    ticket = SvnRandomId();
    m_sessions[ticket] = std::move(session);
    return {};
}

std::string SvnServer::unreachableText(const std::string& why) const
{
    return SvnUnreachableText(m_url, why);
}

void SvnServer::interruptWaits()
{
    BreakConnectionsTo(m_url);
    m_faults.interruptLatency();
}

revision::Capabilities SvnServer::capabilities() const
{
    return {revision::Capability::Locks, revision::Capability::KeptLogIns};
}

Result SvnServer::expireSession(const std::string& ticket)
{
    m_sessions.erase(ticket);
    return {};
}

// An empty password is the one the credential cache holds for the user.
Result SvnServer::resumeKept(const std::string& user, const std::string& workspace, std::string& ticket)
{
    const Result resumed = login(user, {}, workspace, ticket);
    if (resumed.code == code::Failed && resumed.error.find("Invalid password") != std::string::npos)
        return {code::Failed, "No password of " + user + " for " + m_url + " is kept."};
    return resumed;
}

// The client library writes the credentials to its cache when the server accepts them on a new
// connection: one round trip with the session's account marked to be kept.
Result SvnServer::keep(const std::string& ticket)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::Login, &ticket); !begun.ok())
        return begun;
    // The configuration folder with its credential cache, made as the svn client makes it.
    svn_error_clear(svn_config_ensure(nullptr, call.pool()));
    Session& session = call.session();
    session.credentials.keep = true;
    call.use(session);
    svn_error_t* err = call.reachRepository();
    session.credentials.keep = false;
    return call.ask(err);
}

Result SvnServer::logout(const std::string& user, const std::string& ticket)
{
    m_sessions.erase(ticket);
    SvnForgetKeptPassword(m_url, user);
    return {};
}

Result SvnServer::statusWords(Call& call, const Files& files, bool askRepository,
                              std::vector<revision::FileStatus>& statuses, SvnStatusMap* walked)
{
    SvnStatusMap own;
    SvnStatusMap& nodes = walked ? *walked : own;
    svn_error_t* err = SvnWalkStatus(m_client, call.session().workingCopy, askRepository, nodes, call.pool());
    const Result result = askRepository ? call.ask(err) : call.finish(err);
    if (!result.ok())
        return result;
    // The first question after a server came back sees the locks it left: released there, whatever
    // the user does next (a check-out she cancels, or none), so that nobody finds the files held.
    if (askRepository)
        releaseStrayLocks(call, nodes);
    statuses.clear();
    statuses.reserve(files.size());
    for (const std::string& file : files) {
        const auto found = nodes.find(Canonical(file, call.pool()));
        statuses.push_back(FileStatusOf(found == nodes.end() ? nullptr : &found->second, askRepository, file));
    }
    return result;
}

Result SvnServer::status(const std::string& ticket, const Files& files, std::vector<revision::FileStatus>& statuses,
                         const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Status, &ticket); !begun.ok())
        return begun;
    return statusWords(call, files, true, statuses);
}

Result SvnServer::holders(const std::string& ticket, const Files& files, std::vector<std::vector<std::string>>& users,
                          const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Holders, &ticket); !begun.ok())
        return begun;
    std::vector<revision::FileStatus> statuses;
    const Result result = statusWords(call, files, true, statuses);
    if (!result.ok())
        return result;
    users.clear();
    for (const revision::FileStatus& fileStatus : statuses)
        users.push_back(fileStatus.holders);
    return result;
}

Result SvnServer::sync(const std::string& ticket, const Files& files, const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Sync, &ticket); !begun.ok())
        return begun;
    return call.ask(call.update(files.empty() ? Files{call.session().workingCopy} : files, 0));
}

Result SvnServer::checkFilesMayChange(Call& call, const char* action, const Files& files,
                                      const revision::ChangelistId& changelist,
                                      std::vector<revision::FileStatus>& statuses, Files* ownStrayLocks)
{
    if (!call.session().changelists->exists(changelist))
        return {code::Failed, "Change " + changelist + " unknown."};
    if (Result asked = statusWords(call, files, true, statuses); !asked.ok())
        return asked;
    if (ownStrayLocks)
        *ownStrayLocks = OwnStrayLocks(files, call.session().credentials.user, statuses);
    return Refusals(action, files, statuses);
}

Result SvnServer::edit(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                       const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Edit, &ticket); !begun.ok())
        return begun;
    std::vector<revision::FileStatus> statuses;
    Files strays;
    if (Result checked = checkFilesMayChange(call, "edit", files, changelist, statuses, &strays); !checked.ok())
        return checked;

    // No stray of this working copy is released while its locks are taken (see releaseStrayLocks).
    const SvnAdvisoryLock locking(call.session().lockingFile, SvnAdvisoryLock::Mode::Shared);
    const std::string comment = call.session().origin.lockComment();
    Result tookBack;
    if (!strays.empty()) {
        // Locks in the user's own name that this working copy holds no token for: taken from
        // another working copy of hers, or left by a check-out the server died during before the
        // status walk could release them. Re-taken with the user's authority.
        if (Result taken = call.ask(svn_client_lock(call.paths(strays), comment.c_str(), TRUE, call.context(), call.pool()));
            !taken.ok())
            return taken;
        tookBack.error = "Took back the locks in " + call.session().credentials.user +
                         "'s name that this working copy held no token for:\n";
        for (const std::string& file : strays)
            tookBack.error += "  " + file + "\n";
    }
    Files toLock;
    for (std::size_t i = 0; i < files.size(); ++i)
        if (!(statuses[i].word & kOpenHere) &&
            std::find(strays.begin(), strays.end(), files[i]) == strays.end())
            toLock.push_back(files[i]);
    if (!toLock.empty()) {
        LockOutcome outcome;
        call.context()->notify_func2 = LockOutcome::Notify;
        call.context()->notify_baton2 = &outcome;
        Result locked = call.ask(svn_client_lock(call.paths(toLock), comment.c_str(), FALSE, call.context(), call.pool()));
        if (locked.ok() && !outcome.failures.empty())
            locked = {code::Failed, "Cannot open for edit:" + outcome.failures};
        if (!locked.ok()) {
            // All or nothing: the locks taken before the refusal are given back.
            if (!outcome.done.empty())
                svn_error_clear(svn_client_unlock(call.paths(outcome.done), FALSE, call.context(), call.pool()));
            return locked;
        }
    }
    const Result moved = call.finish(MoveToChangelist(call.context(), call.paths(files), changelist, call.pool()));
    return moved.ok() ? tookBack : moved;
}

Result SvnServer::add(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                      const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Add, &ticket); !begun.ok())
        return begun;
    if (!call.session().changelists->exists(changelist))
        return {code::Failed, "Change " + changelist + " unknown."};
    Files added;
    for (const std::string& file : files) {
        svn_error_t* err = svn_client_add5(file.c_str(), svn_depth_empty, FALSE, TRUE, FALSE, TRUE, call.context(),
                                           call.pool());
        if (err) {
            if (!added.empty())
                svn_error_clear(svn_client_revert4(call.paths(added), svn_depth_empty, nullptr, TRUE, FALSE, TRUE,
                                                   call.context(), call.pool()));
            return call.finish(err);
        }
        added.push_back(file);
    }
    apr_array_header_t* paths = call.paths(files);
    svn_error_t* err = svn_client_propset_local(SVN_PROP_NEEDS_LOCK, svn_string_create("*", call.pool()), paths,
                                                svn_depth_empty, FALSE, nullptr, call.context(), call.pool());
    if (!err)
        err = MoveToChangelist(call.context(), paths, changelist, call.pool());
    return call.finish(err);
}

Result SvnServer::remove(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                         const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Delete, &ticket); !begun.ok())
        return begun;
    std::vector<revision::FileStatus> statuses;
    if (Result checked = checkFilesMayChange(call, "delete", files, changelist, statuses); !checked.ok())
        return checked;
    apr_array_header_t* paths = call.paths(files);
    svn_error_t* err = svn_client_delete4(paths, FALSE, FALSE, nullptr, nullptr, nullptr, call.context(), call.pool());
    if (!err)
        err = MoveToChangelist(call.context(), paths, changelist, call.pool());
    return call.finish(err);
}

Result SvnServer::revert(const std::string& ticket, const Files& files, const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Revert, &ticket); !begun.ok())
        return begun;
    std::vector<revision::FileStatus> statuses;
    if (Result walked = statusWords(call, files, false, statuses); !walked.ok())
        return walked;
    Files open;
    Files locked;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (statuses[i].word & kOpenHere)
            open.push_back(files[i]);
        if (statuses[i].word & status::OpenedForEdit)
            locked.push_back(files[i]);
    }
    if (open.empty())
        return {};
    if (Result reverted = call.finish(svn_client_revert4(call.paths(open), svn_depth_empty, nullptr, TRUE, FALSE,
                                                         TRUE, call.context(), call.pool()));
        !reverted.ok())
        return reverted;
    if (locked.empty())
        return {};
    return call.ask(svn_client_unlock(call.paths(locked), FALSE, call.context(), call.pool()));
}

Result SvnServer::submit(const std::string& ticket, const revision::ChangelistId& changelist,
                         const std::string& description, revision::ChangelistId& submitted,
                         const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Submit, &ticket); !begun.ok())
        return begun;
    const SvnChangelists& records = *call.session().changelists;
    if (!records.exists(changelist))
        return {code::Failed, "Change " + changelist + " unknown."};
    std::string message = description.empty() ? records.description(changelist) : description;
    if (message.empty())
        return {code::Failed, "Change description missing: a submit of the default changelist needs one."};

    // The changelist's open files: a commit takes the changed ones (with the folders added for
    // them) and gives up their locks; the locks of unchanged ones are given up on their own.
    SvnStatusMap nodes;
    if (Result walked = call.walkLocally(nodes); !walked.ok())
        return walked;
    std::set<std::string> commit;
    Files unlockOnly;
    for (const auto& [path, node] : nodes) {
        if (!SvnIsOpenHere(node) || node.changelist != changelist)
            continue;
        if (node.local == svn_wc_status_normal) {
            unlockOnly.push_back(path);
            continue;
        }
        commit.insert(path);
        for (std::string parent = svn_dirent_dirname(path.c_str(), call.pool()); parent.size() > 1;
             parent = svn_dirent_dirname(parent.c_str(), call.pool())) {
            const auto found = nodes.find(parent);
            if (found == nodes.end() || found->second.local != svn_wc_status_added)
                break;
            commit.insert(parent);
        }
    }
    if (commit.empty() && unlockOnly.empty())
        return {code::Failed, "No files to submit."};

    svn_revnum_t revision = SVN_INVALID_REVNUM;
    if (!commit.empty()) {
        call.context()->log_msg_func3 = GiveLogMessage;
        call.context()->log_msg_baton3 = &message;
        const Result committed = call.ask(svn_client_commit6(
            call.paths({commit.begin(), commit.end()}), svn_depth_empty, FALSE, FALSE, TRUE, FALSE, FALSE, nullptr,
            nullptr, KeepRevision, &revision, call.context(), call.pool()));
        if (!committed.ok())
            return committed;
    }
    if (!unlockOnly.empty())
        if (Result unlocked = call.ask(svn_client_unlock(call.paths(unlockOnly), FALSE, call.context(), call.pool()));
            !unlocked.ok())
            return unlocked;
    submitted = SVN_IS_VALID_REVNUM(revision) ? std::to_string(revision) : std::string();
    return changelist.empty() ? Result{} : records.erase(changelist);
}

Result SvnServer::changelists(const std::string& ticket, revision::ChangelistState state,
                              std::vector<revision::Changelist>& changelists)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::Changelists, &ticket); !begun.ok())
        return begun;
    if (state == revision::ChangelistState::Submitted)
        return {code::Failed, "Submitted changes of a Subversion repository are its log; they are not listed here."};
    changelists.clear();
    for (const auto& [number, text] : call.session().changelists->pending()) {
        revision::Changelist pending;
        pending.id = std::to_string(number);
        pending.description = text;
        pending.user = call.session().credentials.user;
        pending.workspace = call.session().workingCopy;
        changelists.push_back(std::move(pending));
    }
    return {};
}

Result SvnServer::describe(const std::string& ticket, const revision::ChangelistId& changelist,
                           revision::Changelist& description)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::Describe, &ticket); !begun.ok())
        return begun;
    if (!call.session().changelists->exists(changelist))
        return {code::Failed, "Change " + changelist + " unknown."};
    description = {};
    description.id = changelist;
    description.description = call.session().changelists->description(changelist);
    description.user = call.session().credentials.user;
    description.workspace = call.session().workingCopy;
    return {};
}

Result SvnServer::createChangelist(const std::string& ticket, const std::string& description,
                                   revision::ChangelistId& created)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::CreateChangelist, &ticket); !begun.ok())
        return begun;
    return call.session().changelists->create(description, created);
}

Result SvnServer::changelistExists(const std::string& ticket, const revision::ChangelistId& changelist, bool& exists)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::ChangelistExists, &ticket); !begun.ok())
        return begun;
    exists = call.session().changelists->exists(changelist);
    return {};
}

Result SvnServer::pendingChangelists(const std::string& ticket, std::vector<revision::PendingChangelist>& pending)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::Pending, &ticket); !begun.ok())
        return begun;
    SvnStatusMap nodes;
    if (Result walked = call.walkLocally(nodes); !walked.ok())
        return walked;
    const Session& session = call.session();
    const auto changelist = [&](const revision::ChangelistId& id, const std::string& description) {
        revision::PendingChangelist entry;
        entry.changelist = {id, description, session.credentials.user, session.workingCopy,
                            revision::ChangelistState::Pending, {}, 0};
        return entry;
    };
    std::vector<revision::PendingChangelist> answer{changelist({}, {})};
    std::map<std::string, std::size_t> byId;
    for (const auto& [number, text] : session.changelists->pending()) {
        byId[std::to_string(number)] = answer.size();
        answer.push_back(changelist(std::to_string(number), text));
    }
    for (const auto& [path, node] : OpenFiles(nodes)) {
        // A file in a changelist without a record (made by another client) counts as the default's.
        const auto found = byId.find(node->changelist);
        revision::PendingChangelist& owner = found == byId.end() ? answer.front() : answer[found->second];
        owner.files.push_back({node->repositoryPath, path, ActionOf(*node), owner.changelist.id,
                               session.credentials.user, session.workingCopy, !node->localLockToken.empty()});
    }
    pending = std::move(answer);
    return {};
}

Result SvnServer::setDescription(const std::string& ticket, const revision::ChangelistId& changelist,
                                 const std::string& description)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::SetDescription, &ticket); !begun.ok())
        return begun;
    const SvnChangelists& records = *call.session().changelists;
    if (changelist.empty())
        return {code::Failed, "The default changelist has no description to change."};
    if (description.empty())
        return {code::Failed, "A changelist's description cannot be empty."};
    return records.setDescription(changelist, description);
}

Result SvnServer::deleteChangelist(const std::string& ticket, const revision::ChangelistId& changelist)
{
    Call call(*this, {});
    if (Result begun = call.begin(revision::Operation::DeleteChangelist, &ticket); !begun.ok())
        return begun;
    const SvnChangelists& records = *call.session().changelists;
    if (changelist.empty())
        return {code::Failed, "The default changelist cannot be deleted."};
    if (!records.exists(changelist))
        return {code::Failed, "Change " + changelist + " unknown."};
    SvnStatusMap nodes;
    if (Result walked = call.walkLocally(nodes); !walked.ok())
        return walked;
    const auto open = std::count_if(nodes.begin(), nodes.end(), [&](const auto& entry) {
        return !entry.second.directory && entry.second.changelist == changelist;
    });
    if (open > 0)
        return {code::Failed, "Change " + changelist + " has " + std::to_string(open) +
                                  " open file(s); move them to another changelist or revert them first."};
    return records.erase(changelist);
}

Result SvnServer::reopen(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                         const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Reopen, &ticket); !begun.ok())
        return begun;
    if (!call.session().changelists->exists(changelist))
        return {code::Failed, "Change " + changelist + " unknown."};
    std::vector<revision::FileStatus> statuses;
    if (Result walked = statusWords(call, files, false, statuses); !walked.ok())
        return walked;
    std::string refusals;
    for (std::size_t i = 0; i < files.size(); ++i)
        if (!(statuses[i].word & kOpenHere))
            refusals += "\n" + files[i] + " is not opened in workspace " + call.session().workingCopy;
    if (!refusals.empty())
        return {code::Failed, "Cannot move to another changelist:" + refusals};
    return call.finish(MoveToChangelist(call.context(), call.paths(files), changelist, call.pool()));
}

Result SvnServer::revertUnchanged(const std::string& ticket, const Files& files, std::vector<std::string>& reverted,
                                  const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::RevertUnchanged, &ticket); !begun.ok())
        return begun;
    SvnStatusMap nodes;
    if (Result walked = call.walkLocally(nodes); !walked.ok())
        return walked;
    std::set<std::string> wanted;
    for (const std::string& file : files)
        wanted.insert(Canonical(file, call.pool()));
    // A checked-out file whose text and properties are the working copy's revision: only its lock
    // and changelist make it open.
    Files unchanged;
    std::vector<std::string> repositoryPaths;
    for (const auto& [path, node] : OpenFiles(nodes)) {
        if ((files.empty() || wanted.count(path)) && node->local == svn_wc_status_normal) {
            unchanged.push_back(path);
            repositoryPaths.push_back(node->repositoryPath);
        }
    }
    if (!unchanged.empty()) {
        if (Result unlocked = call.ask(svn_client_unlock(call.paths(unchanged), FALSE, call.context(), call.pool()));
            !unlocked.ok())
            return unlocked;
        if (Result moved = call.finish(MoveToChangelist(call.context(), call.paths(unchanged), {}, call.pool()));
            !moved.ok())
            return moved;
    }
    reverted = std::move(repositoryPaths);
    return {};
}

// An update per revision named; svn:needs-lock leaves the files read-only, as after a sync.
Result SvnServer::syncTo(const std::string& ticket, const std::vector<revision::FileAtRevision>& files,
                         const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::Sync, &ticket); !begun.ok())
        return begun;
    Files names;
    std::map<std::int64_t, Files> byRevision;
    for (const revision::FileAtRevision& file : files) {
        names.push_back(file.file);
        byRevision[file.revision].push_back(file.file);
    }
    std::vector<revision::FileStatus> statuses;
    if (Result walked = statusWords(call, names, false, statuses); !walked.ok())
        return walked;
    std::string refusals;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (statuses[i].word & kOpenHere)
            refusals += "\n" + names[i] + " is opened in workspace " + call.session().workingCopy;
    if (!refusals.empty())
        return {code::Failed, "Cannot sync:" + refusals};
    for (const auto& [revision, targets] : byRevision)
        if (Result updated = call.ask(call.update(targets, static_cast<long>(revision))); !updated.ok())
            return updated;
    return {};
}

Result SvnServer::workspaceChanges(const std::string& ticket, const Files& paths,
                                   std::vector<revision::WorkspaceChange>& changes,
                                   const revision::CancelCheck& cancel)
{
    Call call(*this, cancel);
    if (Result begun = call.begin(revision::Operation::WorkspaceChanges, &ticket); !begun.ok())
        return begun;
    SvnStatusMap nodes;
    if (Result walked = call.walkLocally(nodes); !walked.ok())
        return walked;
    apr_array_header_t* globalIgnores = nullptr;
    if (Result read = call.finish(svn_wc_get_default_ignores(&globalIgnores, call.context()->config, call.pool()));
        !read.ok())
        return read;
    return SvnWorkspaceChanges(nodes, call.session().workingCopy, paths, globalIgnores, cancel, changes, call.pool());
}

}  // namespace hbrc::host
