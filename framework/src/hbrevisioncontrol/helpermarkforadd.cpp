// Marking the files of new assets for add in a pending changelist, by one undoable command.
#include "revisioncontroluihelper.h"

#include "errorreporting.h"
#include "hbmarkforaddcommand.h"
#include "hostservices.h"
#include "itemaccessorlisting.h"
#include "revisioncommandrun.h"

#include <QObject>

namespace {

// True when some object is bound to an item of the current item library: only those can be
// named to a command.
bool knownToTheItemLibrary(const CRevisionControlUIHelper::ObjectList& objects)
{
    const nrk::fwk::IKELDBProxy* proxy = hbrc::internal::FindDBProxy();
    if (!proxy)
        return true;  // the command cannot run: the runner says so
    BaseScsCommand::AccessorList items;
    hbrc::internal::GetListOfUnspecifiedAccessors(
        borax::datamodel::Internal::ItemLibraryInternalAccessor(proxy->GetItemLibraryAccessor()), objects, items);
    return !items.empty();
}

}  // namespace

kelResult CRevisionControlUIHelper::MarkForAddObjectsInChangelist(KELPtr<kel4::IDataControl> dataControl,
                                                                  const ObjectList& objects, bool includeExternalFiles,
                                                                  const std::string& changelist,
                                                                  std::string& errorString, std::string& message,
                                                                  std::string& details)
{
    if (objects.empty() || !knownToTheItemLibrary(objects))
        return kel4::kResultSuccess;
    const hbrc::internal::RevisionCommandOutcome outcome = hbrc::internal::RunRevisionCommand(
        *this, dataControl, objects,
        [&](const ItemLibraryAccessor& library, const BaseScsCommand::AccessorList& assets) -> BaseScsCommand* {
            return new ScsMarkForAddCommand(library, changelist.c_str(), assets, includeExternalFiles);
        });
    const std::string heading = QObject::tr("Cannot mark-for-add the assets\n").toStdString();
    return hbrc::internal::ExplainRevisionCommandOutcome(outcome, dataControl, objects, includeExternalFiles, heading,
                                                         hbrc::internal::kMarkForAddErrorFlags, errorString, message,
                                                         details);
}
