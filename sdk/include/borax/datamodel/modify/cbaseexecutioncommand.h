#pragma once

#include <borax/datamodel/accessors.h>
#include <kel4/sdkglobal.h>
#include <nrk/fwk/cbasecommand.h>
#include <nrk/fwk/icommandmanager.h>

#include <vector>

namespace borax::datamodel {
/// A parameter holding the accessors of several items.
using UnspecifiedAccessorListParam = nrk::fwk::TypedParam<std::vector<UnspecifiedAccessor>>;
}  // namespace borax::datamodel

namespace borax::datamodel::modify {

/// Base of the commands that act on an item library. Executing the command (DoAction) runs
/// BuildExecutionCommands with the command manager given by SetCommandManager. A command may leave
/// an integer return value on itself for its caller.
class KEL_RUNTIME_API CBaseExecutionCommand : public nrk::fwk::CBaseCommand
{
public:
    explicit CBaseExecutionCommand(const ItemLibraryAccessor& library, const char* name = "");

    const ItemLibraryAccessor& GetItemLibrary() const { return m_library; }
    void SetCommandManager(nrk::fwk::ICommandManager* manager) { m_manager = manager; }
    nrk::fwk::ICommandManager* GetCommandManager() const { return m_manager; }

    /// Does the command's work; false when it could not run.
    virtual bool BuildExecutionCommands(nrk::fwk::ICommandManager* manager) = 0;

    bool DoAction() override;
    /// The host keeps what an execution command changed in the item library's own history;
    /// undoing the command restores the library, not the outside world.
    bool UndoAction() override;

    /// The integer return value (an IntParam named "ReturnValue").
    void SetReturnValue(int value);
    bool GetReturnValue(int& value) const;

private:
    ItemLibraryAccessor m_library;
    nrk::fwk::ICommandManager* m_manager = nullptr;
};

}  // namespace borax::datamodel::modify
