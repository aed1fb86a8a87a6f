#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/faultinjection.h>
#include <hbrcservices/revisiontypes.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// The revision-control server behind the services: the session operations the services ask of a
// server, in the contract's own vocabulary (hbrcservices/revisiontypes.h). Two backends implement
// it: the embedded depot (depotserver.h) and a Subversion repository (svn/README.md); what one of
// them cannot do is a capability to ask, never a look at the server setting. An object is used
// from one thread at a time; operations never throw.
//
// Rules both backends keep:
// - Names of files. Files go to the server by local path (absolute, in the session's workspace).
//   Where an answer names files by a single name (revertUnchanged), it is the server's name of the
//   file ("//depot/..." on the embedded depot, "^/..." in a Subversion repository); an open file
//   (PendingChangelist) carries both.
// - Refusals. A call that refuses files for their state answers code::Failed (code::IoError when
//   a file cannot be read) with a heading that says what was refused, then a line per refused
//   file that begins with the file as the caller named it: "Cannot open for edit:\nFILE is locked
//   by bob". A call without a usable session answers code::SessionUnusable with a text whose
//   first line ends with "please log in again." (revision::kNotLoggedInText when there never was
//   one); a server that cannot be reached answers code::SessionUnusable with unreachableText(),
//   which begins "Cannot reach" (IsUnreachableServerError); a wrong password at a log-in answers
//   code::Failed with "Invalid password for user NAME.". Errors of a backend's own library pass
//   on as it words them.
// - Round trips. roundTrips() counts the questions that reached the server's store (the depot's
//   database, the repository), log-ins and failures forced by fault injection included; every
//   list question is one round trip whatever its length; work done in the working copy alone
//   costs none.
class HBRC_SERVICES_EXPORT RevisionServer
{
public:
    using Files = std::vector<std::string>;

    virtual ~RevisionServer() = default;

    // The server setting this object was opened with: a depot file's path or a repository URL.
    virtual const std::string& path() const = 0;

    // A wrong password fails with a text containing "Invalid password"; an unreachable server
    // with revision::code::SessionUnusable.
    virtual revision::Result login(const std::string& user, const std::string& password, const std::string& workspace,
                                std::string& ticket) = 0;
    virtual revision::Result expireSession(const std::string& ticket) = 0;

    // Log-ins that outlast the process, kept where each server's own command-line client keeps
    // them: the embedded depot keeps the session's ticket in the ticket store it shares with
    // hbdepot; Subversion keeps the password in its client library's credential cache.
    // Opens the session kept for user in workspace; fails (revision::code::Failed) when none is kept
    // or the kept one has ended.
    virtual revision::Result resumeKept(const std::string& user, const std::string& workspace, std::string& ticket) = 0;
    // Keeps the log-in of the session for later processes.
    virtual revision::Result keep(const std::string& ticket) = 0;
    // Ends user's session and forgets what was kept of their log-in on this server.
    virtual revision::Result logout(const std::string& user, const std::string& ticket) = 0;

    virtual revision::Result sync(const std::string& ticket, const Files& files, const revision::CancelCheck& cancel = {}) = 0;
    // One status per file, in the order asked: the word, this session's changelist, the other
    // users' holds and the have and head revisions, for any number of files in one question.
    virtual revision::Result status(const std::string& ticket, const Files& files,
                                 std::vector<revision::FileStatus>& statuses, const revision::CancelCheck& cancel = {}) = 0;
    virtual revision::Result holders(const std::string& ticket, const Files& files,
                                  std::vector<std::vector<std::string>>& users,
                                  const revision::CancelCheck& cancel = {}) = 0;
    virtual revision::Result edit(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                               const revision::CancelCheck& cancel = {}) = 0;
    virtual revision::Result add(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                              const revision::CancelCheck& cancel = {}) = 0;
    virtual revision::Result remove(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                                 const revision::CancelCheck& cancel = {}) = 0;
    virtual revision::Result revert(const std::string& ticket, const Files& files,
                                 const revision::CancelCheck& cancel = {}) = 0;
    virtual revision::Result submit(const std::string& ticket, const revision::ChangelistId& changelist,
                                 const std::string& description, revision::ChangelistId& submitted,
                                 const revision::CancelCheck& cancel = {}) = 0;

    virtual revision::Result changelists(const std::string& ticket, revision::ChangelistState state,
                                      std::vector<revision::Changelist>& changelists) = 0;
    virtual revision::Result describe(const std::string& ticket, const revision::ChangelistId& changelist,
                                   revision::Changelist& description) = 0;
    virtual revision::Result createChangelist(const std::string& ticket, const std::string& description,
                                           revision::ChangelistId& created) = 0;
    virtual revision::Result changelistExists(const std::string& ticket, const revision::ChangelistId& changelist,
                                           bool& exists) = 0;

    // The session's pending work: the default changelist first, then the numbered ones, each with
    // the files open in it (by local path).
    virtual revision::Result pendingChangelists(const std::string& ticket,
                                             std::vector<revision::PendingChangelist>& pending) = 0;
    // A numbered pending changelist's new description, which cannot be empty; its removal, which
    // only an empty one allows. The default changelist refuses both.
    virtual revision::Result setDescription(const std::string& ticket, const revision::ChangelistId& changelist,
                                         const std::string& description) = 0;
    virtual revision::Result deleteChangelist(const std::string& ticket, const revision::ChangelistId& changelist) = 0;
    // Moves files open in this session into another of its pending changelists, all or none.
    virtual revision::Result reopen(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                                 const revision::CancelCheck& cancel = {}) = 0;
    // Reverts the files opened for edit whose content is still the revision they were opened at
    // (every open file when files is empty) and leaves the others open; reverted names those
    // reverted by the server's names of the files.
    virtual revision::Result revertUnchanged(const std::string& ticket, const Files& files,
                                          std::vector<std::string>& reverted,
                                          const revision::CancelCheck& cancel = {}) = 0;

    // --- history: each question is one round trip, whatever the number of files or changes ---
    // The history of each file, newest first, at most `limit` revisions per file (0: all), one list
    // per file in the order asked; a file the depot never had gets an empty list.
    virtual revision::Result fileHistory(const std::string& ticket, const Files& files, std::size_t limit,
                                         std::vector<std::vector<revision::FileRevision>>& histories) = 0;
    // The content of a file at a revision (0: the head); a revision that deletes it is refused.
    virtual revision::Result fileContent(const std::string& ticket, const revision::FileAtRevision& file,
                                         std::string& content) = 0;
    // Submitted changes, newest first, without their files (describe has them).
    virtual revision::Result submittedChanges(const std::string& ticket, const revision::ChangeFilter& filter,
                                              std::vector<revision::Changelist>& changes) = 0;
    // A submitted change with its files, each at the revision the change made. Unlike describe,
    // which on a server that numbers pending changelists per working copy names those first.
    virtual revision::Result submittedChange(const std::string& ticket, const revision::ChangelistId& change,
                                             revision::Changelist& description) = 0;
    // The files at or below the local paths (the whole depot when empty) as of a submitted change
    // ("": the head), each at the revision it had then; files deleted by then are left out. In path
    // order; description is left empty.
    virtual revision::Result filesAt(const std::string& ticket, const Files& paths, const revision::ChangelistId& change,
                                     std::vector<revision::FileRevision>& files) = 0;
    // The users the server knows, sorted; on a server without accounts of its own, the authors of
    // its submitted changes.
    virtual revision::Result users(const std::string& ticket, std::vector<std::string>& users) = 0;
    // The workspaces the server knows, by name; a server whose workspaces are working copies knows
    // the session's own.
    virtual revision::Result workspaces(const std::string& ticket, std::vector<revision::WorkspaceRecord>& workspaces) = 0;
    // Brings files to the revisions named, read-only, as sync does for the head; files this workspace
    // has open are refused.
    virtual revision::Result syncTo(const std::string& ticket, const std::vector<revision::FileAtRevision>& files,
                                    const revision::CancelCheck& cancel = {}) = 0;

    // --- work done without opening files ---
    // The workspace files at or below the local paths (the whole workspace when empty) that differ
    // from the revisions the workspace has without being open: by content, not by the read-only
    // bit. One round trip for the workspace's records; the files themselves are read locally.
    virtual revision::Result workspaceChanges(const std::string& ticket, const Files& paths,
                                              std::vector<revision::WorkspaceChange>& changes,
                                              const revision::CancelCheck& cancel = {}) = 0;

    // The text of a call that cannot reach the server, for the reason why (the same as the
    // server's own when a connection fails).
    virtual std::string unreachableText(const std::string& why) const = 0;
    // Ends the network waits of a call running on another thread, which then fails soon; safe
    // from any thread. Nothing for a server that polls the cancel check while it waits.
    virtual void interruptWaits() {}

    // What this backend can do.
    virtual revision::Capabilities capabilities() const = 0;
    // Questions that reached the server through this object (the rule above).
    virtual std::uint64_t roundTrips() const = 0;
    virtual revision::FaultInjection& faults() = 0;
};

// True for the text of a failure (-34) because the server could not be reached at all, as opposed
// to one that refused a session.
HBRC_SERVICES_EXPORT bool IsUnreachableServerError(const std::string& error);

// What can be told of a server setting without asking the server: empty when nothing, else why it
// cannot serve (an embedded depot's file that is not there).
HBRC_SERVICES_EXPORT std::string ServerSettingProblem(const std::string& server);

// The server a setting names: a Subversion repository for a URL (svn://, svn+ssh://, http(s)://,
// file://), the embedded depot otherwise. Connects lazily: an unreachable server fails the calls
// with revision::code::SessionUnusable.
HBRC_SERVICES_EXPORT std::unique_ptr<RevisionServer> OpenRevisionServer(const std::string& server, const revision::ServerOptions& options);

}  // namespace hbrc::host
