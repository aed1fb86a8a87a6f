#pragma once

#include <functional>

namespace nrk::fwk {
class ICommandManager;
}

namespace hbrc::studio {

// Runs work as a command that stays out of the undo history together with every command it runs.
// The plug-in runs its revision commands through the command manager, and a command left to itself
// becomes an undo step that undoes nothing; a check-out that the user asked for from a menu, or
// that a save needed, is no edit to take back.
bool RunOutsideHistory(nrk::fwk::ICommandManager& commands, std::function<bool()> work);

}  // namespace hbrc::studio
