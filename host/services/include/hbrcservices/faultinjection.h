#pragma once

#include <hbrcservices/export.h>

// Faults that tests and benchmarks inject into a revision server (RevisionServer::faults()): a
// delay in every round trip (a slow server) and failures forced onto the next calls or onto one
// operation. A forced failure stands for a round trip that failed: it counts as one.

#include <hbrcservices/revisiontypes.h>

#include <chrono>
#include <string>

namespace hbrc::revision {

// The operations of a server, as fault injection names them.
enum class Operation {
    Login, Logout, Session, Sync, Status, Holders, Edit, Add, Delete, Revert, Submit, Changelists, Describe,
    CreateChangelist, ChangelistExists, Reopen, DeleteChangelist, SetDescription, RevertUnchanged, Pending,
    History, Content, SubmittedChanges, FilesAt, Users, Workspaces, WorkspaceChanges
};

class HBRC_SERVICES_EXPORT FaultInjection
{
public:
    virtual ~FaultInjection() = default;

    virtual void setLatency(std::chrono::milliseconds perRoundTrip) = 0;
    virtual std::chrono::milliseconds latency() const = 0;
    // The next `count` round trips fail with `code` (e.g. code::SessionUnusable or code::IoError).
    virtual void failNextCalls(int count, int code, std::string message = {}) = 0;
    // Every call of `operation` fails with `code` until clear().
    virtual void failOperation(Operation operation, int code, std::string message = {}) = 0;
    virtual void clear() = 0;
};

}  // namespace hbrc::revision
