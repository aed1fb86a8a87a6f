#pragma once

#include <hbrcservices/revisionserver.h>

#include <depot/depot.h>

namespace hbrc::host {

// The embedded depot as the services' server: every call goes to the depot, its answers and
// arguments converted between the contract's types and the depot library's here, at this edge.
class DepotServer final : public RevisionServer
{
public:
    DepotServer(const std::string& path, const revision::ServerOptions& options);

    // Why a depot file path cannot serve without opening it (the file is not there); empty if it can.
    static std::string SettingProblem(const std::string& path);

    const std::string& path() const override { return m_depot.path(); }
    revision::Result login(const std::string& user, const std::string& password, const std::string& workspace,
                           std::string& ticket) override;
    revision::Result expireSession(const std::string& ticket) override;
    revision::Result resumeKept(const std::string& user, const std::string& workspace, std::string& ticket) override;
    revision::Result keep(const std::string& ticket) override;
    revision::Result logout(const std::string& user, const std::string& ticket) override;
    revision::Result sync(const std::string& ticket, const Files& files, const revision::CancelCheck& cancel) override;
    revision::Result status(const std::string& ticket, const Files& files, std::vector<revision::FileStatus>& statuses,
                            const revision::CancelCheck& cancel) override;
    revision::Result holders(const std::string& ticket, const Files& files,
                             std::vector<std::vector<std::string>>& users, const revision::CancelCheck& cancel) override;
    revision::Result edit(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                          const revision::CancelCheck& cancel) override;
    revision::Result add(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                         const revision::CancelCheck& cancel) override;
    revision::Result remove(const std::string& ticket, const Files& files, const revision::ChangelistId& changelist,
                            const revision::CancelCheck& cancel) override;
    revision::Result revert(const std::string& ticket, const Files& files,
                            const revision::CancelCheck& cancel) override;
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
    revision::Result pendingChangelists(const std::string& ticket,
                                        std::vector<revision::PendingChangelist>& pending) override;
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
    // Breaks off the injected latency, the one wait of the depot that polls no cancel check.
    void interruptWaits() override { m_depot.faults().interruptLatency(); }
    revision::Capabilities capabilities() const override;
    std::uint64_t roundTrips() const override { return m_depot.roundTrips(); }
    revision::FaultInjection& faults() override { return m_faults; }

private:
    // The contract's fault injection onto the depot's own, which fails and delays its round trips.
    class Faults final : public revision::FaultInjection
    {
    public:
        explicit Faults(depot::FaultInjector& injector) : m_injector(injector) {}
        void setLatency(std::chrono::milliseconds perRoundTrip) override { m_injector.setLatency(perRoundTrip); }
        std::chrono::milliseconds latency() const override { return m_injector.latency(); }
        void failNextCalls(int count, int code, std::string message) override;
        void failOperation(revision::Operation operation, int code, std::string message) override;
        void clear() override { m_injector.clear(); }

    private:
        depot::FaultInjector& m_injector;
    };

    depot::Depot m_depot;
    Faults m_faults{m_depot.faults()};
};

}  // namespace hbrc::host
