#pragma once

#include <hbrcservices/revisionserver.h>

#include "svnchangelists.h"
#include "svnclient.h"
#include "svnstatuswalk.h"

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
    explicit SvnServer(std::string url) : m_url(std::move(url)) {}

    const std::string& path() const override { return m_url; }
    depot::Result login(const std::string& user, const std::string& password, const std::string& workspace,
                        std::string& ticket) override;
    depot::Result expireSession(const std::string& ticket) override;
    depot::Result resumeKept(const std::string& user, const std::string& workspace, std::string& ticket) override;
    depot::Result keep(const std::string& ticket) override;
    depot::Result logout(const std::string& user, const std::string& ticket) override;
    depot::Result sync(const std::string& ticket, const Files& files, const depot::CancelCheck& cancel) override;
    depot::Result status(const std::string& ticket, const Files& files, std::vector<depot::FileStatus>& statuses,
                         const depot::CancelCheck& cancel) override;
    depot::Result holders(const std::string& ticket, const Files& files, std::vector<std::vector<std::string>>& users,
                          const depot::CancelCheck& cancel) override;
    depot::Result edit(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                       const depot::CancelCheck& cancel) override;
    depot::Result add(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                      const depot::CancelCheck& cancel) override;
    depot::Result remove(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                         const depot::CancelCheck& cancel) override;
    depot::Result revert(const std::string& ticket, const Files& files, const depot::CancelCheck& cancel) override;
    depot::Result submit(const std::string& ticket, const depot::ChangelistId& changelist,
                         const std::string& description, depot::ChangelistId& submitted,
                         const depot::CancelCheck& cancel) override;
    depot::Result changelists(const std::string& ticket, depot::ChangelistState state,
                              std::vector<depot::Changelist>& changelists) override;
    depot::Result describe(const std::string& ticket, const depot::ChangelistId& changelist,
                           depot::Changelist& description) override;
    depot::Result createChangelist(const std::string& ticket, const std::string& description,
                                   depot::ChangelistId& created) override;
    depot::Result changelistExists(const std::string& ticket, const depot::ChangelistId& changelist,
                                   bool& exists) override;
    depot::Result pendingChangelists(const std::string& ticket, std::vector<depot::PendingChangelist>& pending) override;
    depot::Result setDescription(const std::string& ticket, const depot::ChangelistId& changelist,
                                 const std::string& description) override;
    depot::Result deleteChangelist(const std::string& ticket, const depot::ChangelistId& changelist) override;
    depot::Result reopen(const std::string& ticket, const Files& files, const depot::ChangelistId& changelist,
                         const depot::CancelCheck& cancel) override;
    depot::Result revertUnchanged(const std::string& ticket, const Files& files, std::vector<std::string>& reverted,
                                  const depot::CancelCheck& cancel) override;
    std::string unreachableText(const std::string& why) const override;
    void interruptWaits() override;
    std::uint64_t roundTrips() const override { return m_roundTrips; }
    depot::FaultInjector& faults() override { return m_faults; }

private:
    struct Session
    {
        SvnCredentials credentials;
        std::string workingCopy;
        std::unique_ptr<SvnChangelists> changelists;
    };
    class Call;

    Session* find(const std::string& ticket);
    // Refuses a change into a changelist the working copy does not have, and files that others
    // hold or that are not in a state to change; otherwise statuses holds the files' words.
    // With ownStrayLocks, the files locked in the session user's name without a token in this
    // working copy are not refused but listed there.
    depot::Result checkFilesMayChange(Call& call, const Files& files, const depot::ChangelistId& changelist,
                                      std::vector<depot::FileStatus>& statuses, Files* ownStrayLocks = nullptr);
    depot::Result statusWords(Call& call, const Files& files, bool askRepository,
                              std::vector<depot::FileStatus>& statuses, SvnStatusMap* walked = nullptr);

    std::string m_url;
    SvnClient m_client;
    std::map<std::string, std::unique_ptr<Session>> m_sessions;
    std::atomic<std::uint64_t> m_roundTrips{0};
    depot::FaultInjector m_faults;
};

}  // namespace hbrc::host
