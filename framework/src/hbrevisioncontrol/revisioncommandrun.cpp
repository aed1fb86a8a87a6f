#include "revisioncommandrun.h"

#include "errorreporting.h"
#include "hostservices.h"
#include "itemaccessorlisting.h"
#include "revisioncontroluihelper.h"

#include <nrk/fwk/icommandmanager.h>
#include <nrk/isystem.h>

#include <QObject>

namespace {

using hbrc::internal::RevisionCommandOutcome;

// Executes one command built by makeCommand; the manager keeps it for undo when it ran.
RevisionCommandOutcome executeOnce(nrk::fwk::ICommandManager& manager,
                                   const borax::datamodel::ItemLibraryAccessor& library,
                                   const BaseScsCommand::AccessorList& assets,
                                   const hbrc::internal::RevisionCommandFactory& makeCommand)
{
    const KELPtr<BaseScsCommand> command(makeCommand(library, assets));
    command->SetCommandManager(&manager);
    RevisionCommandOutcome outcome;
    if (!manager.ExecuteCommand(command.Get(), true))
        return outcome;
    outcome.executed = true;
    command->GetReturnValue(outcome.code);
    if (const auto* error = nrk::fwk::GetParamAs<nrk::fwk::StringParam>(*command, BaseScsCommand::kErrorStringParam))
        outcome.errorString = error->GetValue();
    return outcome;
}

}  // namespace

HBRC_INTERNAL_NAMESPACE_BEGIN

RevisionCommandOutcome RunRevisionCommand(const CRevisionControlUIHelper& helper,
                                          const KELPtr<kel4::IDataControl>& dataControl,
                                          const kel4::List<KELHandle<IDbObject>>& objects,
                                          const RevisionCommandFactory& makeCommand)
{
    auto* manager = nrk::GetSingletonAs<nrk::fwk::ICommandManager>(nrk::fwk::ICommandManager::GetSingletonName());
    const nrk::fwk::IKELDBProxy* proxy = FindDBProxy();
    if (!manager || !proxy)
        return {};
    const borax::datamodel::ItemLibraryAccessor library = proxy->GetItemLibraryAccessor();
    BaseScsCommand::AccessorList assets;
    GetListOfUnspecifiedAccessors(borax::datamodel::Internal::ItemLibraryInternalAccessor(library), objects, assets);

    RevisionCommandOutcome outcome = executeOnce(*manager, library, assets, makeCommand);
    if (outcome.executed && outcome.code == kel4::kResultSessionUnusable &&
        helper.AttemptReconnect(dataControl, "", kSessionExpiredReason))
        outcome = executeOnce(*manager, library, assets, makeCommand);
    return outcome;
}

kelResult ExplainRevisionCommandOutcome(const RevisionCommandOutcome& outcome,
                                        const KELPtr<kel4::IDataControl>& dataControl,
                                        const kel4::List<KELHandle<IDbObject>>& objects, bool includeExternalFiles,
                                        const std::string& failureHeading, const std::set<unsigned>& flags,
                                        std::string& errorString, std::string& message, std::string& details)
{
    if (!outcome.executed) {
        message = QObject::tr("Could not execute command: Unknown error").toStdString();
        return kel4::kResultCommandRefused;
    }
    if (kelResult(outcome.code).IsSuccess())
        return kel4::kResultSuccess;
    errorString = outcome.errorString.value_or(std::string());
    message = failureHeading;
    GetErrorStrings(dataControl, objects, includeExternalFiles, flags, errorString, message, details);
    return outcome.code;
}

HBRC_INTERNAL_NAMESPACE_END
