#pragma once

// The embedded depot: a revision-control server model kept in one SQLite file and used in-process
// by every host that opens it. Several processes may open the same file at once.
//
// Every operation is one round trip: it runs in one transaction, whatever the length of its file
// list, and either completes or leaves the depot as it was (also when the caller cancels); sync
// alone is per file and lands every file it can. Workspace files change after the commit, from a
// journal that the next process opening the depot finishes if this one dies midway, so the depot's
// record and the files agree after a crash at any point. Operations never throw; they answer a Result (0 success, negative failure
// with its text). Operations on files need a session ticket from login(); an unknown or expired
// ticket, like an unreachable depot file, fails them with code::SessionUnusable (-34).
//
// Files are named by local paths, absolute or relative to the session's workspace root; every
// workspace sees the whole depot below its root. Files open exclusively: a file open in one
// workspace cannot be opened in another. A Depot object is used from one thread at a time.

#include <depot/export.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include <depot/faultinjector.h>
#include <depot/types.h>

namespace hbrc::depot {

struct DepotOptions
{
    // How long an operation waits for another process's write to finish before failing.
    std::chrono::milliseconds busyTimeout{10000};
    // Seconds since the epoch; the system clock when empty. Tests move time with it.
    std::function<std::int64_t()> clock;
    // How expensive the hashes of passwords set through this connection are. Minimal is for
    // throw-away depots (tests, benchmarks): log-ins get fast and guesses cheap.
    PasswordHashCost passwordHashCost = PasswordHashCost::Interactive;
};

class HBRC_DEPOT_EXPORT Depot
{
public:
    using Files = std::vector<std::string>;

    // Creates a new, empty depot file; sessions last `sessionLifetime` after each log-in.
    static Result create(const std::string& path, std::chrono::seconds sessionLifetime = std::chrono::hours(12));

    // Connects lazily: when the file cannot be opened, every call fails with -34 until it can.
    explicit Depot(std::string path, DepotOptions options = {});
    ~Depot();
    Depot(const Depot&) = delete;
    Depot& operator=(const Depot&) = delete;

    const std::string& path() const;
    // Whether this process may only read the depot (connecting to it first): sessions are then
    // kept in this object only, and every change is refused.
    bool readOnly();

    // Administration: whoever can open the depot file administers it, no session needed.
    // An empty password lets the user log in with none.
    Result addUser(const std::string& name, const std::string& password);
    Result addWorkspace(const std::string& name, const std::string& owner, const std::string& root);
    // A new password (empty: none) for an existing user; open sessions stay.
    Result setPassword(const std::string& user, const std::string& password);
    // Removes a user who owns no workspace, and their sessions; submitted changes keep the name.
    Result removeUser(const std::string& name);
    // Removes a workspace in which no file is open, with its sessions, its empty pending
    // changelists, its have records and its unfinished file steps; workspace files stay on disk
    // and submitted changes keep the name.
    Result removeWorkspace(const std::string& name);
    Result setSessionLifetime(std::chrono::seconds lifetime);
    // Every workspace, by name.
    Result workspaces(std::vector<WorkspaceInfo>& workspaces);
    // The same in a session, refused without a live one.
    Result workspaces(const std::string& ticket, std::vector<WorkspaceInfo>& workspaces);

    // Opens a session of `user` in their `workspace`. A wrong password fails with a text
    // containing "Invalid password", and so does an unknown user.
    Result login(const std::string& user, const std::string& password, const std::string& workspace,
                 std::string& ticket);
    // Whose session a ticket is; -34 when it is unknown or expired.
    Result session(const std::string& ticket, std::string& user, std::string& workspace);
    Result logout(const std::string& ticket);
    // Fault injection: the ticket stops working now, in every process.
    Result expireSession(const std::string& ticket);

    // The head revisions of the files (all depot files for an empty list) into the workspace,
    // read-only; files this workspace has open are left alone. A writable file whose content is
    // not the workspace's revision is kept unless `mode` is Force, and so is a file that cannot be
    // written: each is named ("Can't clobber writable file ...") in a Failed result while the
    // other files are synced and recorded. `report`, when given, receives what was synced.
    Result sync(const std::string& ticket, const Files& files, SyncMode mode = SyncMode::Safe,
                const CancelCheck& cancel = {}, SyncReport* report = nullptr);
    // One status per file, in the order asked, with the revisions and other workspaces' holds.
    Result status(const std::string& ticket, const Files& files, std::vector<FileStatus>& statuses,
                  const CancelCheck& cancel = {});
    // Users of other workspaces holding the files (open or locked), sorted, per file.
    Result holders(const std::string& ticket, const Files& files, std::vector<std::vector<std::string>>& users,
                   const CancelCheck& cancel = {});

    // Open files in a pending changelist of this workspace ("" = the default changelist). All
    // files are opened, or none when one of them cannot be (the error names each refusal).
    Result edit(const std::string& ticket, const Files& files, const ChangelistId& changelist,
                const CancelCheck& cancel = {});
    Result add(const std::string& ticket, const Files& files, const ChangelistId& changelist,
               const CancelCheck& cancel = {});
    Result remove(const std::string& ticket, const Files& files, const ChangelistId& changelist,
                  const CancelCheck& cancel = {});
    // Un-opens the files: edits and deletes get the workspace's revision back, read-only; adds
    // only stop being open. Files not open are skipped and named in a Skipped result.
    Result revert(const std::string& ticket, const Files& files, const CancelCheck& cancel = {});
    // Un-opens the files opened for edit whose content is still the workspace's revision, and
    // makes them read-only again; other files are left open. Every file this workspace has open
    // when `files` is empty. `reverted` names the files reverted, as depot paths.
    Result revertUnchanged(const std::string& ticket, const Files& files, std::vector<std::string>& reverted,
                           const CancelCheck& cancel = {});
    // Locks files this workspace has open, so that others see them as locked; unlock releases
    // them. Both refuse all files when one of them is not open here.
    Result lock(const std::string& ticket, const Files& files, const CancelCheck& cancel = {});
    Result unlock(const std::string& ticket, const Files& files, const CancelCheck& cancel = {});
    // Moves files this workspace has open into another of its pending changelists, all or none.
    Result reopen(const std::string& ticket, const Files& files, const ChangelistId& changelist,
                  const CancelCheck& cancel = {});

    // Submits every file of the pending changelist at once, giving each a new head revision.
    // The default changelist needs a description; a numbered one keeps its own unless one is given.
    Result submit(const std::string& ticket, const ChangelistId& changelist, const std::string& description,
                  ChangelistId& submitted, const CancelCheck& cancel = {});

    Result opened(const std::string& ticket, bool allWorkspaces, std::vector<OpenedFile>& files);
    // Pending: this workspace's numbered changelists; submitted: every submitted change. Newest last.
    // Each carries its time.
    Result changelists(const std::string& ticket, ChangelistState state, std::vector<Changelist>& changelists);
    Result describe(const std::string& ticket, const ChangelistId& changelist, Changelist& description);
    Result createChangelist(const std::string& ticket, const std::string& description, ChangelistId& created);
    // A numbered pending changelist of this workspace: its new description; its removal, which
    // only an empty one allows.
    Result setDescription(const std::string& ticket, const ChangelistId& changelist, const std::string& description);
    Result deleteChangelist(const std::string& ticket, const ChangelistId& changelist);
    // The default changelist, then this workspace's numbered pending ones (oldest first), each
    // with the files open in it; one question for all of the session's pending work.
    Result pending(const std::string& ticket, std::vector<PendingChangelist>& pending);
    // True for "" and for this workspace's pending changelists; false for submitted or unknown ones.
    Result changelistExists(const std::string& ticket, const ChangelistId& changelist, bool& exists);

    // The history, each question one round trip whatever the length of its list. Files are local
    // paths below the session's workspace root; a file the depot does not know has no revisions.
    // Each file's revisions, newest first, at most `limit` of them (0: all).
    Result fileHistory(const std::string& ticket, const Files& files, std::size_t limit,
                       std::vector<std::vector<FileRevision>>& histories);
    // Writes a file's bytes at a revision (0: the head) to `out`, as they were submitted; a revision
    // that deletes the file has none and is refused. A damaged content fails midway.
    Result fileContent(const std::string& ticket, const FileAtRevision& file, std::ostream& out);
    // Submitted changes that pass the filter, newest (last submitted) first, without their files.
    Result submittedChanges(const std::string& ticket, const ChangeFilter& filter, std::vector<Changelist>& changes);
    // The files at or below the paths (the whole depot when empty) as they were right after the
    // submitted change (""): the head), each at its revision then; files deleted by then are left
    // out. In path order, without descriptions.
    Result filesAt(const std::string& ticket, const Files& paths, const ChangelistId& change,
                   std::vector<FileRevision>& files);
    // Every user, sorted.
    Result users(const std::string& ticket, std::vector<std::string>& users);
    // Brings each file to the revision named (0: the head), read-only, as sync does, and records
    // it as the workspace's: a deleting revision removes the file. Files this workspace has open
    // and revisions the depot does not have are refused and named, the others synced.
    Result syncTo(const std::string& ticket, const std::vector<FileAtRevision>& files,
                  SyncMode mode = SyncMode::Safe, const CancelCheck& cancel = {}, SyncReport* report = nullptr);

    // Round trips made through this object (every call above except create).
    std::uint64_t roundTrips() const;
    FaultInjector& faults();

    struct Impl;

private:
    std::unique_ptr<Impl> d;
};

}  // namespace hbrc::depot
