#pragma once

// When a workspace may open a file for edit, add or delete. Files open exclusively: content
// assets cannot be merged, so a file open in one workspace cannot be opened in another.

#include <string>

#include <depot/types.h>

namespace hbrc::depot {

struct FileState;

struct OpenDecision
{
    enum class Kind { Open, AlreadyOpen, Refuse };
    Kind kind = Kind::Open;
    std::string reason;  // why not, for Refuse
};

OpenDecision decideOpen(FileAction action, const FileState& state);

}  // namespace hbrc::depot
