#pragma once

#include <hbrcservices/revisionserver.h>

#include "../forcedfaults.h"
#include "svnchangelists.h"
#include "svnclient.h"
#include "svnstatuswalk.h"
#include "svnworkingcopyid.h"

#include <atomic>
#include <map>
#include <memory>

namespace hbrc::host {

// A Subversion repository as the services' server, through the client library. A session's
// workspace is the folder of its working copy (checked out at the log-in when it is not one yet);
// check-out is a lock, files this backend adds get svn:needs-lock so that they stay read-only
// until locked, and pending changelists are client-side changelists with their descriptions kept
// beside the working copy. The mapping to status words is tabled in README.md.
class SvnServer final : public RevisionServer
{
public:
    SvnServer(std::string url, std::chrono::seconds networkTimeout) : m_url(std::move(url)), m_client(networkTimeout) {}

    const std::string& path() const override { return m_url; }
    revision::Result login(const std::string& user, const std::string& password, const std::string& workspace,
                        std::string& ticket) override;
    revision::Result expireSession(const std::string& ticket) override;
    revision::Result resumeKept(const std::string& user, const std::string& workspace, std::string& ticket) override;
    revision::Result keep(const std::string& ticket) override;
    revision::Result logout(const std::string& user, const std::string& ticket) override;
    revision::Result sync(const std::string& ticket, const Files& files, const revision::CancelCheck& cancel) override;
    revision::Result status(const std::string& ticket, const Files& files, std::vector<revision::FileStatus>& statuses,
                         const revision::CancelCheck& cancel) override;
    revision::Result holders(const std::string& ticket, const Files& files, std::vector<std::vector<std::string>>& users,
                          const revision::CancelCheck& cancel) override;
    revision::Result edit(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                       const revision::CancelCheck& cancel) override;
    revision::Result add(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                      const revision::CancelCheck& cancel) override;
    revision::Result remove(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                         const revision::CancelCheck& cancel) override;
    revision::Result revert(const std::string& ticket, const Files& files, const revision::CancelCheck& cancel) override;
    revision::Result submit(const std::string& ticket, const revision::ChangelistId& changelist,
                         const std::string& description, revision::ChangelistId& submitted,
                         const revision::CancelCheck& cancel) override;
    revision::Result changelists(const std::string& ticket, revision::ChangelistState state,
                              std::vector<revision::Changelist>& changelists) override;
    revision::Result describe(const std::string& ticket, const revision::ChangelistId& changelist,
                           revision::Changelist& description) override;
    revision::Result createChangelist(const std::string& ticket, const std::string& description,
                                   revision::ChangelistId& created) override;
    revision::Result changelistExists(const std::string& ticket, const revision::ChangelistId& changelist,
                                   bool& exists) override;
    revision::Result pendingChangelists(const std::string& ticket, std::vector<revision::PendingChangelist>& pending) override;
    revision::Result setDescription(const std::string& ticket, const revision::ChangelistId& changelist,
                                 const std::string& description) override;
    revision::Result deleteChangelist(const std::string& ticket, const revision::ChangelistId& changelist) override;
    revision::Result reopen(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                         const revision::CancelCheck& cancel) override;
    revision::Result revertUnchanged(const std::string& ticket, const Files& files, std::vector<std::string>& reverted,
                                  const revision::CancelCheck& cancel) override;
    revision::Result fileHistory(const std::string& ticket, const Files& files, std::size_t limit,
                                 std::vector<std::vector<revision::FileRevision>>& histories) override;
    revision::Result fileContent(const std::string& ticket, const revision::FileAtRevision& file,
                                 std::string& content) override;
    revision::Result submittedChanges(const std::string& ticket, const revision::ChangeFilter& filter,
                                      std::vector<revision::Changelist>& changes) override;
    revision::Result submittedChange(const std::string& ticket, const revision::ChangelistId& change,
                                     revision::Changelist& description) override;
    revision::Result filesAt(const std::string& ticket, const Files& paths, const revision::ChangelistId& change,
                             std::vector<revision::FileRevision>& files) override;
    revision::Result users(const std::string& ticket, std::vector<std::string>& users) override;
    revision::Result workspaces(const std::string& ticket, std::vector<revision::WorkspaceRecord>& workspaces) override;
    revision::Result syncTo(const std::string& ticket, const std::vector<revision::FileAtRevision>& files,
                            const revision::CancelCheck& cancel) override;
    revision::Result workspaceChanges(const std::string& ticket, const Files& paths,
                                      std::vector<revision::WorkspaceChange>& changes,
                                      const revision::CancelCheck& cancel) override;
    std::string unreachableText(const std::string& why) const override;
    void interruptWaits() override;
    revision::Capabilities capabilities() const override;
    std::uint64_t roundTrips() const override { return m_roundTrips; }
    revision::FaultInjection& faults() override { return m_faults; }

private:
    struct Session
    {
        SvnCredentials credentials;
        std::string workingCopy;
        std::unique_ptr<SvnChangelists> changelists;
        SvnWorkingCopyId origin;   // named in the comment of the locks this session takes
        std::string lockingFile;   // held shared while locks are taken, exclusively while strays are released
    };
    class Call;

    Session* find(const std::string& ticket);
    // Refuses a change into a changelist the working copy does not have, and files that others
    // hold or that are not in a state to open for action ("edit", "delete"); otherwise statuses
    // holds the files' words. With ownStrayLocks, the files locked in the session user's name
    // without a token in this working copy are not refused but listed there.
    revision::Result checkFilesMayChange(Call& call, const char* action, const Files& files,
                                         const revision::ChangelistId& changelist,
                                         std::vector<revision::FileStatus>& statuses,
                                         Files* ownStrayLocks = nullptr);
    revision::Result statusWords(Call& call, const Files& files, bool askRepository,
                                 std::vector<revision::FileStatus>& statuses, SvnStatusMap* walked = nullptr);
    // Gives up the locks that the walk (with the repository asked) found in the session user's
    // name, taken from this working copy, whose tokens it does not hold: a server that died during
    // a check-out granted them without answering. Says so in the log; the walk then shows them free.
    void releaseStrayLocks(Call& call, SvnStatusMap& walked);

    std::string m_url;
    SvnClient m_client;
    std::map<std::string, std::unique_ptr<Session>> m_sessions;
    std::atomic<std::uint64_t> m_roundTrips{0};
    ForcedFaults m_faults;
};

}  // namespace hbrc::host
