#pragma once

// Value types of the embedded depot's API: result codes, status bits, and what the list
// questions answer.

#include <depot/export.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace hbrc::depot {

// Result codes: 0 is success, every negative value a failure.
namespace code {
constexpr int Ok = 0;
constexpr int Failed = -1;           // the request was refused: files in the wrong state, bad input
constexpr int Cancelled = -2;        // the caller's cancel check asked to stop; nothing changed
constexpr int IoError = -3;          // a workspace file could not be read or written
constexpr int SessionUnusable = -34; // unknown or expired ticket, or the depot cannot be reached
constexpr int Skipped = 1;           // done, except for files that needed nothing (the text names them)
}  // namespace code

struct Result
{
    int code = code::Ok;
    std::string error;  // on failure why; on success possibly a remark (files skipped)

    bool ok() const { return code >= 0; }
};

// Bits of a file's status word, seen from one workspace ("me") against every other one ("others").
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

// Another workspace's hold on a file: what it has the file open for, in which of its
// changelists, and whether it locked it.
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

struct OpenedFile
{
    std::string depotPath;  // "//depot/..."
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
    // Seconds since the epoch: when it was submitted, else when it was created; 0 for the
    // default changelist.
    std::int64_t time = 0;
};

// A pending changelist of a session's workspace with the files open in it.
struct PendingChangelist
{
    Changelist changelist;          // id "" for the default changelist
    std::vector<OpenedFile> files;  // in path order
};

// What a sync did, by depot path: files written ("//depot/ship.kel#3") and files removed.
struct SyncReport
{
    std::vector<std::string> updated;
    std::vector<std::string> deleted;
};

// One revision of a file, as its history lists it.
struct FileRevision
{
    std::string depotPath;
    std::int64_t revision = 0;
    ChangelistId changelist;               // the submitted change that made it
    FileAction action = FileAction::Edit;  // Add (also an add after a deletion), Edit or Delete
    std::string user;
    std::string workspace;
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

struct WorkspaceInfo
{
    std::string name;
    std::string owner;
    std::string root;  // an absolute folder
};

// The operations of the depot, as fault injection names them.
enum class Operation {
    Administer, Login, Logout, Sync, Status, Holders, Edit, Add, Delete, Revert, Lock, Submit,
    Opened, Changelists, Describe, CreateChangelist, ChangelistExists, Session, Reopen, DeleteChangelist,
    SetDescription, RevertUnchanged, Unlock, Workspaces, Pending, History, Content, Files, Users, WorkspaceChanges
};

enum class PasswordHashCost { Interactive, Minimal };

// Whether a sync may overwrite a writable workspace file whose content is not the workspace's
// revision (a local change made after "make writable"): Safe keeps it and refuses that file.
enum class SyncMode { Safe, Force };

// Polled between the steps of an operation; returning true cancels it and rolls it back.
using CancelCheck = std::function<bool()>;

HBRC_DEPOT_EXPORT const char* actionName(FileAction action);

}  // namespace hbrc::depot
