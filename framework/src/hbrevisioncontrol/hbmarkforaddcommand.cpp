#include "hbmarkforaddcommand.h"

namespace {
constexpr const char* kDisplayName = "MarkForAdd Command";
}

ScsMarkForAddCommand::ScsMarkForAddCommand(const borax::datamodel::ItemLibraryAccessor& library)
    : BaseScsCommand(library, kDisplayName)
{
}

ScsMarkForAddCommand::ScsMarkForAddCommand(const borax::datamodel::ItemLibraryAccessor& library,
                                           const char* changelist, const AccessorList& assets,
                                           bool includeExternalFiles)
    : BaseScsCommand(library, kDisplayName, changelist, assets, includeExternalFiles)
{
}

bool ScsMarkForAddCommand::BuildExecutionCommands(nrk::fwk::ICommandManager*)
{
    return RunOnAllObjectsInChangelist(&kel4::IDataControl::MarkForAdd);
}
