#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/revisiontypes.h>

#include <functional>
#include <string>
#include <vector>

namespace hbrc::host {

// The per-object answers that follow from the server status of an object's files.
namespace StatusRules {

using ReadOnlyTest = std::function<bool(const std::string& file)>;

// The object's status word: the OR of its files' words.
HBRC_SERVICES_EXPORT unsigned ObjectWord(const std::vector<revision::FileStatus>& statuses);
// True when a file is in the depot, not open in this workspace and read-only on disk: the user
// must check it out (or make it writable) before editing.
HBRC_SERVICES_EXPORT bool NeedsAction(const std::vector<std::string>& files, const std::vector<revision::FileStatus>& statuses,
                 const ReadOnlyTest& isReadOnly);
// True when a check-out would open something and nothing refuses it: every file not yet open in
// this workspace is in the depot at the head revision, readable, and held by no other user.
HBRC_SERVICES_EXPORT bool CanCheckOut(const std::vector<revision::FileStatus>& statuses);

}  // namespace StatusRules
}  // namespace hbrc::host
