#pragma once

// What the depot knows about one file from one workspace's point of view, read in one go, and
// the status word that follows from it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <depot/types.h>

#include "sqlite.h"

namespace hbrc::depot {

class WorkspaceView;

struct OpenRecord
{
    std::string workspace;
    std::string user;
    FileAction action = FileAction::Edit;
    std::optional<std::int64_t> change;  // none: the default changelist
    bool locked = false;
};

struct FileState
{
    std::optional<std::string> key;  // none: the path lies outside the workspace
    std::optional<std::int64_t> headRevision;
    bool headDeleted = false;
    std::optional<std::int64_t> haveRevision;
    std::optional<OpenRecord> mine;
    std::vector<OpenRecord> others;

    bool live() const { return headRevision && !headDeleted; }
    bool haveIsHead() const { return haveRevision == headRevision; }
};

// Reads files one at a time, each seeing what the operation changed before it.
class FileStateReader
{
public:
    FileStateReader(Database& db, const WorkspaceView& workspace);
    FileState read(const std::string& localPath);

private:
    const WorkspaceView& m_workspace;
    Statement m_revisions;
    Statement m_opened;
};

// The states of many files, in the order given, as one statement over all of them.
std::vector<FileState> readStates(Database& db, const WorkspaceView& workspace, const std::vector<std::string>& localPaths);

// The status bits, without the IO error bit which comes from the disk.
std::uint32_t statusWord(const FileState& state);
// Sorted, without repeats.
std::vector<std::string> holdersOf(const FileState& state);
ChangelistId changelistIdOf(const std::optional<std::int64_t>& change);
FileAction actionFromName(const std::string& name);

}  // namespace hbrc::depot
