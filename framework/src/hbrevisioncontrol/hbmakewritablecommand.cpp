#include "hbmakewritablecommand.h"

namespace {
constexpr const char* kDisplayName = "MakeWritable Command";
}

ScsMakeWritableCommand::ScsMakeWritableCommand(const borax::datamodel::ItemLibraryAccessor& library)
    : BaseScsCommand(library, kDisplayName)
{
}

ScsMakeWritableCommand::ScsMakeWritableCommand(const borax::datamodel::ItemLibraryAccessor& library,
                                               const AccessorList& assets, bool includeExternalFiles)
    : BaseScsCommand(library, kDisplayName, "", assets, includeExternalFiles)
{
}

bool ScsMakeWritableCommand::BuildExecutionCommands(nrk::fwk::ICommandManager*)
{
    Inputs inputs;
    if (!ResolveInputs(inputs))
        return false;
    kelResult result;
    std::string errorText;
    for (const KELHandle<IDbObject>& object : inputs.objects) {
        errorText.clear();
        result = inputs.dataControl->MakeWritable(object, inputs.includeExternalFiles, kel4::closureId::Persistence,
                                                  errorText);
        if (result.GetCode() != kel4::kResultSuccess)
            break;
    }
    RecordResult(result, errorText);
    NotifyDataModel(inputs.dataControl, inputs.objects);
    return true;
}
