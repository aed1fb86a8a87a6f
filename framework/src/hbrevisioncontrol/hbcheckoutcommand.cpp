#include "hbcheckoutcommand.h"

namespace {
constexpr const char* kDisplayName = "CheckOut Command";
}

ScsCheckOutCommand::ScsCheckOutCommand(const borax::datamodel::ItemLibraryAccessor& library)
    : BaseScsCommand(library, kDisplayName)
{
}

ScsCheckOutCommand::ScsCheckOutCommand(const borax::datamodel::ItemLibraryAccessor& library, const char* changelist,
                                       const AccessorList& assets, bool includeExternalFiles)
    : BaseScsCommand(library, kDisplayName, changelist, assets, includeExternalFiles)
{
}

bool ScsCheckOutCommand::BuildExecutionCommands(nrk::fwk::ICommandManager*)
{
    return RunOnAllObjectsInChangelist(&kel4::IDataControl::CheckOut);
}
