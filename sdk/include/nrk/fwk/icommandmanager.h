#pragma once

#include "icommand.h"

#include <kel4/sdkglobal.h>

#include <cstddef>

namespace nrk::fwk {

/// The host's command manager (the singleton "UndoManager"): executes commands and keeps the undo
/// history.
class KEL_INTERFACE ICommandManager
{
public:
    virtual ~ICommandManager() = default;
    static const char* GetSingletonName() { return "UndoManager"; }

    /// Runs the command's DoAction; with undoable true a command that ran (and is not transient)
    /// joins the undo history. Returns whether the command ran.
    virtual bool ExecuteCommand(ICommand* command, bool undoable) = 0;
    virtual bool Undo() = 0;
    virtual bool Redo() = 0;
    virtual bool CanUndo() const = 0;
    virtual bool CanRedo() const = 0;
    virtual std::size_t GetUndoCount() const = 0;
    /// The command that Undo would undo next, or null.
    virtual const ICommand* GetUndoCommand() const = 0;
};

}  // namespace nrk::fwk
