#pragma once

#include <hbrcservices/revisionserver.h>

namespace hbrc::host {

// The embedded depot as the services' server: every call goes to the depot unchanged.
class DepotServer final : public RevisionServer
{
public:
    DepotServer(const std::string& path, const depot::DepotOptions& options) : m_depot(path, options) {}

    const std::string& path() const override { return m_depot.path(); }
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
    std::string unreachableText(const std::string& why) const override
    {
        return "Cannot reach the depot at '" + path() + "': " + why;
    }
    std::uint64_t roundTrips() const override { return m_depot.roundTrips(); }
    depot::FaultInjector& faults() override { return m_depot.faults(); }

private:
    depot::Depot m_depot;
};

}  // namespace hbrc::host
