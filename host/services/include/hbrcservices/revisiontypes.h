#pragma once

// The vocabulary of the revision-server contract (hbrcservices/revisionserver.h): what the services
// hand a server and what it answers, whichever backend serves. Includes neither backend; each
// backend converts its own types to these at its edge.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace hbrc::revision {

// Result codes: 0 is success, every negative value a failure.
namespace code {
constexpr int Ok = 0;
constexpr int Failed = -1;            // refused: files in the wrong state, bad input, wrong password
constexpr int Cancelled = -2;         // the caller's cancel check asked to stop; nothing changed
constexpr int IoError = -3;           // a workspace file could not be read or written
constexpr int SessionUnusable = -34;  // no session, an ended one, or a server that cannot be reached
constexpr int Skipped = 1;            // done, except for files that needed nothing (the text names them)
}  // namespace code

struct Result
{
    int code = code::Ok;
    std::string error;  // on failure why; on success possibly a remark (files skipped)

    bool ok() const { return code >= 0; }
};

// Bits of a file's status word, seen from the session's workspace ("me") against every other one
// ("others"). The values are the host SDK's status bits.
namespace status {
constexpr std::uint32_t OpenedForEdit = 0x1;
constexpr std::uint32_t OpenedByOthers = 0x2;
constexpr std::uint32_t OpenedForAdd = 0x4;
constexpr std::uint32_t AddedByOthers = 0x8;
constexpr std::uint32_t OpenedForDelete = 0x10;
constexpr std::uint32_t DeletedByOthers = 0x20;
constexpr std::uint32_t NotAtHead = 0x40;
constexpr std::uint32_t NotInDepot = 0x80;
constexpr std::uint32_t IoError = 0x8000;
constexpr std::uint32_t LockedByOthers = 0x20000;
}  // namespace status

enum class FileAction { Edit, Add, Delete };

// Pending changelists are named by their number as text; the empty string is the default one.
using ChangelistId = std::string;

// Another workspace's hold on a file: what it has the file open for, in which of its changelists,
// and whether it locked it. A server that cannot see other workspaces leaves those empty.
struct FileHolder
{
    std::string user;
    std::string workspace;
    FileAction action = FileAction::Edit;
    ChangelistId changelist;
    bool locked = false;
};

struct FileStatus
{
    std::uint32_t word = 0;
    ChangelistId changelist;           // where this workspace has the file open ("" = default)
    std::vector<std::string> holders;  // users of other workspaces that have it open or locked, sorted
    std::vector<FileHolder> heldBy;    // the same holds in detail, by user
    std::int64_t haveRevision = 0;     // the revision in this workspace; 0 for none
    std::int64_t headRevision = 0;     // the latest revision (also a deletion); 0 for none
};

// A file open in a workspace, by both of its names.
struct OpenedFile
{
    std::string depotPath;  // the server's name: "//depot/..." or "^/..." in a Subversion repository
    std::string localPath;  // in the workspace that has it open
    FileAction action = FileAction::Edit;
    ChangelistId changelist;
    std::string user;
    std::string workspace;
    bool locked = false;
};

struct ChangelistFile
{
    std::string depotPath;
    FileAction action = FileAction::Edit;
    int revision = 0;  // the revision a submitted change created; 0 while pending
};

enum class ChangelistState { Pending, Submitted };

struct Changelist
{
    ChangelistId id;
    std::string description;
    std::string user;
    std::string workspace;
    ChangelistState state = ChangelistState::Pending;
    std::vector<ChangelistFile> files;  // filled by describe only
    // Seconds since the epoch: when it was submitted, else when it was created; 0 for the default
    // changelist.
    std::int64_t time = 0;
};

// A pending changelist of a session's workspace with the files open in it.
struct PendingChangelist
{
    Changelist changelist;          // id "" for the default changelist
    std::vector<OpenedFile> files;  // in path order
};

// One revision of a file, as its history lists it.
struct FileRevision
{
    std::string depotPath;
    std::int64_t revision = 0;
    ChangelistId changelist;               // the submitted change that made it
    FileAction action = FileAction::Edit;  // Add (also an add after a deletion), Edit or Delete
    std::string user;
    std::string workspace;  // empty where the server does not record it
    std::int64_t time = 0;  // seconds since the epoch
    std::string description;
};

// A file named with a revision: 0 is the head revision.
struct FileAtRevision
{
    std::string file;
    std::int64_t revision = 0;
};

// Which submitted changes to list; every filter left empty lets all through.
struct ChangeFilter
{
    std::string user;                // only this user's changes
    std::vector<std::string> paths;  // only changes to files at or below these local paths
    std::int64_t since = 0;          // submitted at or after (seconds since the epoch); 0: no bound
    std::int64_t until = 0;          // submitted at or before; 0: no bound
    std::size_t limit = 0;           // the newest N; 0: all
};

// A workspace known to the server.
struct WorkspaceRecord
{
    std::string name;
    std::string owner;
    std::string root;  // the local folder; empty where the server does not record it
};

// A workspace file that differs from the revision the workspace has without being open in it: its
// content changed (Edit; also a file made writable by another tool and changed), it is not in the
// depot (Add), or it is gone from the disk (Delete).
struct WorkspaceChange
{
    std::string localPath;
    std::string depotPath;  // empty for a file not in the depot
    FileAction action = FileAction::Edit;
    std::int64_t haveRevision = 0;  // 0 for a file not in the depot
};

// The refusal of a call made without a session (code::SessionUnusable).
inline constexpr const char* kNotLoggedInText = "Not logged in; please log in.";

// Polled between the steps of an operation; returning true cancels it and rolls it back.
using CancelCheck = std::function<bool()>;

// How expensive the hashes of the passwords a server stores are. Minimal is for throw-away servers
// (tests, benchmarks): log-ins get fast and guesses cheap.
enum class PasswordHashCost { Interactive, Minimal };

// How a server is opened; a backend ignores what it has no use for.
struct ServerOptions
{
    PasswordHashCost passwordHashCost = PasswordHashCost::Interactive;
    // How long a read from a server whose protocol has a time-out of its own (http, https) waits
    // before the call fails as one that cannot reach the server.
    std::chrono::seconds networkTimeout{30};
};

// What a backend can do. Callers ask these instead of looking at the server setting.
enum class Capability : std::uint32_t {
    // A session's ticket works on any connection to the server; otherwise a session belongs to the
    // connection that opened it, and another connection logs in itself.
    SharedSessions = 0x1,
    // Workspaces are named on the server; otherwise a workspace is the folder of a working copy.
    NamedWorkspaces = 0x2,
    // Check-out takes a lock that other users see as a hold on the file.
    Locks = 0x4,
    // Pending changelists are numbered by the server, once for every workspace; otherwise per
    // working copy.
    ServerNumberedChangelists = 0x8,
    // Submitted changes are listed (changelists of ChangelistState::Submitted).
    SubmittedChangesListed = 0x10,
    // Files other users opened without locking them (and their adds and deletes) are seen.
    OthersOpenFilesSeen = 0x20,
    // A log-in can be kept for later processes (keep, resumeKept).
    KeptLogIns = 0x40,
};

class Capabilities
{
public:
    constexpr Capabilities(std::initializer_list<Capability> capabilities)
    {
        for (Capability capability : capabilities)
            m_bits |= static_cast<std::uint32_t>(capability);
    }
    constexpr bool has(Capability capability) const { return (m_bits & static_cast<std::uint32_t>(capability)) != 0; }

private:
    std::uint32_t m_bits = 0;
};

}  // namespace hbrc::revision
