#pragma once

#include <hbrcservices/export.h>

#include <depot/depot.h>
#include <depot/faultinjector.h>
#include <depot/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// The revision-control server behind the services: the session operations the services ask of
// a server, in the embedded depot's terms (result codes, status words, changelist ids). Two
// servers implement it: the embedded depot and a Subversion repository (see svn/README.md). An
// object is used from one thread at a time; operations never throw.
class HBRC_SERVICES_EXPORT RevisionServer
{
public:
    using Files = std::vector<std::string>;

    virtual ~RevisionServer() = default;

    // The server setting this object was opened with: a depot file's path or a repository URL.
    virtual const std::string& path() const = 0;

    // A wrong password fails with a text containing "Invalid password"; an unreachable server
    // with depot::code::SessionUnusable.
    virtual depot::Result login(const std::string& user, const std::string& password, const std::string& workspace,
                                std::string& ticket) = 0;
    virtual depot::Result expireSession(const std::string& ticket) = 0;

    // Log-ins that outlast the process, kept where each server's own command-line client keeps
    // them: the embedded depot keeps the session's ticket in the ticket store it shares with
    // hbdepot; Subversion keeps the password in its client library's credential cache.
    // Opens the session kept for user in workspace; fails (depot::code::Failed) when none is kept
    // or the kept one has ended.
    virtual depot::Result resumeKept(const std::string& user, const std::string& workspace, std::string& ticket) = 0;
    // Keeps the log-in of the session for later processes.
    virtual depot::Result keep(const std::string& ticket) = 0;
    // Ends user's session and forgets what was kept of their log-in on this server.
    virtual depot::Result logout(const std::string& user, const std::string& ticket) = 0;

    virtual depot::Result sync(const std::string& ticket, const Files& files, const depot::CancelCheck& cancel = {}) = 0;
    // One status per file, in the order asked: the word, this session's changelist, the other
    // users' holds and the have and head revisions, for any number of files in one question.
    virtual depot::Result status(const std::string& ticket, const Files& files,
                                 std::vector<depot::FileStatus>& statuses, const depot::CancelCheck& cancel = {}) = 0;
    virtual depot::Result holders(const std::string& ticket, const Files& files,
                                  std::vector<std::vector<std::string>>& users,
                                  const depot::CancelCheck& cancel = {}) = 0;
    virtual depot::Result edit(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                               const depot::CancelCheck& cancel = {}) = 0;
    virtual depot::Result add(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                              const depot::CancelCheck& cancel = {}) = 0;
    virtual depot::Result remove(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                                 const depot::CancelCheck& cancel = {}) = 0;
    virtual depot::Result revert(const std::string& ticket, const Files& files,
                                 const depot::CancelCheck& cancel = {}) = 0;
    virtual depot::Result submit(const std::string& ticket, const depot::ChangelistId& changelist,
                                 const std::string& description, depot::ChangelistId& submitted,
                                 const depot::CancelCheck& cancel = {}) = 0;

    virtual depot::Result changelists(const std::string& ticket, depot::ChangelistState state,
                                      std::vector<depot::Changelist>& changelists) = 0;
    virtual depot::Result describe(const std::string& ticket, const depot::ChangelistId& changelist,
                                   depot::Changelist& description) = 0;
    virtual depot::Result createChangelist(const std::string& ticket, const std::string& description,
                                           depot::ChangelistId& created) = 0;
    virtual depot::Result changelistExists(const std::string& ticket, const depot::ChangelistId& changelist,
                                           bool& exists) = 0;

    // The session's pending work: the default changelist first, then the numbered ones, each with
    // the files open in it (by local path).
    virtual depot::Result pendingChangelists(const std::string& ticket,
                                             std::vector<depot::PendingChangelist>& pending) = 0;
    // A numbered pending changelist's new description, which cannot be empty; its removal, which
    // only an empty one allows. The default changelist refuses both.
    virtual depot::Result setDescription(const std::string& ticket, const depot::ChangelistId& changelist,
                                         const std::string& description) = 0;
    virtual depot::Result deleteChangelist(const std::string& ticket, const depot::ChangelistId& changelist) = 0;
    // Moves files open in this session into another of its pending changelists, all or none.
    virtual depot::Result reopen(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                                 const depot::CancelCheck& cancel = {}) = 0;
    // Reverts the files opened for edit whose content is still the revision they were opened at
    // (every open file when files is empty) and leaves the others open; reverted names those
    // reverted, as the server names files (depot paths; working-copy paths on Subversion).
    virtual depot::Result revertUnchanged(const std::string& ticket, const Files& files,
                                          std::vector<std::string>& reverted,
                                          const depot::CancelCheck& cancel = {}) = 0;

    // The text of a call that cannot reach the server, for the reason why (the same as the
    // server's own when a connection fails).
    virtual std::string unreachableText(const std::string& why) const = 0;
    // Ends the network waits of a call running on another thread, which then fails soon; safe
    // from any thread. Nothing for a server that polls the cancel check while it waits.
    virtual void interruptWaits() {}

    // Questions that reached the server through this object.
    virtual std::uint64_t roundTrips() const = 0;
    virtual depot::FaultInjector& faults() = 0;
};

// True for the URLs that name a Subversion repository (svn://, svn+ssh://, http(s)://, file://).
HBRC_SERVICES_EXPORT bool IsSubversionUrl(const std::string& server);

// True for the text of a failure (-34) because the server could not be reached at all, as opposed
// to one that refused a session.
HBRC_SERVICES_EXPORT bool IsUnreachableServerError(const std::string& error);

// The server a setting names: a Subversion repository for a URL, the embedded depot otherwise.
// Connects lazily: an unreachable server fails the calls with depot::code::SessionUnusable.
HBRC_SERVICES_EXPORT std::unique_ptr<RevisionServer> OpenRevisionServer(const std::string& server,
                                                                        const depot::DepotOptions& options);

}  // namespace hbrc::host
