#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <depot/depot.h>

#include "call.h"
#include "sqlite.h"

namespace hbrc::depot {

struct Depot::Impl
{
    using Body = std::function<void(Call&)>;
    // Sees the operation's file steps once they were tried (each marked applied or not).
    using StepsTried = std::function<void(const std::vector<FileStep>&)>;

    Impl(std::string depotPath, DepotOptions depotOptions);

    std::int64_t now() const;
    // Runs one round trip: injected faults and latency, the connection, the transaction, the
    // session check (when a ticket is given), the body, the commit, the file steps. Never throws.
    Result run(Operation operation, Transaction::Kind kind, const std::optional<std::string>& ticket,
               const CancelCheck& cancel, const Body& body, const StepsTried& stepsTried = {});
    Result runInSession(Operation operation, Transaction::Kind kind, const std::string& ticket,
                        const CancelCheck& cancel, const Body& body, const StepsTried& stepsTried = {})
    {
        return run(operation, kind, ticket, cancel, body, stepsTried);
    }

    Result openFiles(Operation operation, FileAction action, const std::string& ticket, const Files& files,
                     const ChangelistId& changelist, const CancelCheck& cancel);
    Result syncFiles(const std::string& ticket, const std::vector<FileAtRevision>& files, bool pinned, SyncMode mode,
                     const CancelCheck& cancel, SyncReport* report);
    // Without a ticket for administration, with one in a session.
    Result listWorkspaces(const std::optional<std::string>& ticket, std::vector<WorkspaceInfo>& workspaces);
    Result setLocked(Operation operation, bool locked, const std::string& ticket, const Files& files,
                     const CancelCheck& cancel);

    std::string path;
    DepotOptions options;
    FaultInjector faults;
    // Counted on the thread that runs the operation (a time-out runner's worker), read on any.
    std::atomic<std::uint64_t> roundTrips{0};
    std::unique_ptr<Database> db;
    // Sessions of a read-only depot, which cannot record them: by ticket digest.
    struct LocalSession
    {
        std::string user;
        std::string workspace;
        std::int64_t expiresAt = 0;
    };
    std::map<std::string, LocalSession> localSessions;

private:
    Database& connection();
    // Tries the file steps earlier operations left; those that still fail. A failure here never
    // fails the operation: it is another workspace's, or this one's, told as a remark.
    std::vector<FailedStep> finishEarlierSteps(Database& database) const;
    void waitLatency(const Call& call);
    void authenticate(Call& call, const std::string& ticket) const;
};

}  // namespace hbrc::depot
