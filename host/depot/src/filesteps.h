#pragma once

// The changes an operation makes to workspace files, and the journal that makes them survive a
// crash. An operation records its steps in the journal table in the same transaction as the new
// depot state; the files are changed only after that commit, and the journal rows are removed once
// they are done. Every step is idempotent, so a journal left by a process that died midway is
// simply applied again by the next process that opens the depot (see the depot's README).

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace hbrc::depot {

class Database;

struct FileStep
{
    enum class Kind { WriteRevision, Remove, MakeWritable, MakeReadOnly };

    Kind kind = Kind::MakeReadOnly;
    std::string workspace;
    std::string key;                 // the depot path below the workspace root
    std::filesystem::path local;
    std::int64_t revision = 0;       // WriteRevision: the stored revision written, read-only
    std::int64_t journalId = 0;      // the step's journal row, once recorded
    bool applied = false;            // done to the file (apply sets it)
};

// A step that could not be done, as its workspace and the reason naming the file.
struct FailedStep
{
    std::string workspace;
    std::string reason;
};

namespace journal {

// Inserts one journal row per step (inside the caller's transaction) and notes their ids.
void record(Database& db, std::vector<FileStep>& steps);
// Applies the steps to the files, reading revisions from the depot, and marks those done; the steps
// that failed (their rows stay).
std::vector<FailedStep> apply(Database& db, std::vector<FileStep>& steps, std::vector<std::int64_t>& done);
// Removes the rows of finished steps, in a transaction of its own.
void forget(Database& db, const std::vector<std::int64_t>& done);
// True when an operation left steps behind: it died after its commit, or a step failed.
bool pending(Database& db);
// Applies every step left in the journal and forgets those that succeeded; the steps that still
// fail. Only call it while holding the depot's writer lock, so that no live operation is still
// working on those rows.
std::vector<FailedStep> replay(Database& db);

}  // namespace journal

}  // namespace hbrc::depot
