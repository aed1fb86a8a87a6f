// Checking assets out into a pending changelist: the changelist is the one kept in the settings,
// one the user picks, or the default one; each asset is checked out by a command of its own (one
// undo step each), and each failure is shown with the choice to retry, or logged in a batch run.
#include "revisioncontroluihelper.h"

#include "errorreporting.h"
#include "hbchangelistselectiondialog.h"
#include "hbcheckoutcommand.h"
#include "hostservices.h"
#include "interactivemode.h"
#include "objectlisthelpers.h"
#include "revisioncommandrun.h"

#include <QMessageBox>

using hbrc::internal::DataControlOf;

namespace {

using ObjectList = CRevisionControlUIHelper::ObjectList;

// The changelist the check-out goes to, or nothing when the user cancelled.
struct ChangeListChoice {
    bool cancelled = false;
    std::string changelist;
};

// The changelist dialog over the objects and their related objects, files hidden.
ChangeListChoice askForChangeList(const KELPtr<kel4::IDataControl>& dataControl, const ObjectList& objects,
                                  bool includeExternalFiles, IRevisionControlPropertiesMgr& settings)
{
    const ObjectList shown = hbrc::internal::WithRelatedObjects(dataControl.GetPointeeNotNull(), objects);
    kel4::Set<std::string> files;
    kel4::List<kel4::Set<std::string>> filesPerObject;
    dataControl->GetFiles(shown, includeExternalFiles, kel4::closureId::Persistence, std::string(), files,
                          filesPerObject);
    QString names;
    hbrc::internal::GetAssetListPrettyNames(dataControl, shown, false, names);

    hbChangeListSelectionDialog dialog(dataControl, names, files, false, true, nullptr);
    if (dialog.exec() == hbChangeListSelectionDialog::Cancelled)
        return {true, {}};
    ChangeListChoice choice{false, dialog.getChangeList()};
    if (dialog.getDontShowThisDialogAgainCheckBox()) {
        settings.SetPromptForChangeListWhenCheckingOut(false);
        settings.SetChangeListToUseWhenAutoCheckingOut(choice.changelist);
    }
    return choice;
}

// The kept changelist while it still exists and prompting is off; otherwise the user's choice in
// an interactive run and the default changelist in a batch run. A kept changelist that has gone
// (submitted or deleted meanwhile) switches prompting back on for good.
ChangeListChoice chooseChangeList(const KELPtr<kel4::IDataControl>& dataControl, const ObjectList& objects,
                                  bool includeExternalFiles, IRevisionControlPropertiesMgr& settings)
{
    bool prompt = false;
    settings.GetPromptForChangeListWhenCheckingOut(prompt);
    if (!prompt) {
        std::string kept;
        settings.GetChangeListToUseWhenAutoCheckingOut(kept);
        if (dataControl.GetPointeeNotNull().ChangeListExists(kept))
            return {false, kept};
        settings.SetPromptForChangeListWhenCheckingOut(true);
    }
    if (!hbrc::internal::InteractiveMode())
        return {};
    return askForChangeList(dataControl, objects, includeExternalFiles, settings);
}

// "Checkout Error" with Ok and Retry; true when the user chose Retry.
bool askRetryCheckOut(const std::string& message, const std::string& details)
{
    QMessageBox box(QMessageBox::Critical, QObject::tr("Checkout Error"), QString::fromStdString(message),
                    QMessageBox::Ok | QMessageBox::Retry);
    box.setDefaultButton(QMessageBox::Retry);
    box.setEscapeButton(QMessageBox::Ok);
    box.setDetailedText(QString::fromStdString(details));
    box.setSizeGripEnabled(true);
    return box.exec() == QMessageBox::Retry;
}

}  // namespace

bool CRevisionControlUIHelper::CheckOutObject(const KELHandle<IDbObject>& object, bool& cancelled,
                                              bool includeExternalFiles)
{
    return CheckOutObjects(ObjectList{object}, cancelled, includeExternalFiles);
}

bool CRevisionControlUIHelper::CheckOutObjects(const ObjectList& objects, bool& cancelled, bool includeExternalFiles)
{
    if (objects.empty())
        return true;
    const KELPtr<kel4::IDataControl> dataControl = DataControlOf(objects.front());
    IRevisionControlPropertiesMgr* settings = hbrc::internal::FindPropertiesMgr();
    bool enabled = false;
    if (!settings || !settings->GetUseSourceDataControl(enabled) || !enabled) {
        cancelled = true;
        return false;
    }
    const ChangeListChoice choice = chooseChangeList(dataControl, objects, includeExternalFiles, *settings);
    if (choice.cancelled) {
        cancelled = true;
        return false;
    }

    bool allCheckedOut = true;
    cancelled = false;
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        for (;;) {
            std::string errorString, message, details;
            const kelResult result = CheckOutObjectsInChangelist(dataControl, ObjectList{*object}, includeExternalFiles,
                                                                 choice.changelist, errorString, message, details);
            if (result.IsSuccess())
                break;
            // The session could not be re-opened: the other assets would fail the same way.
            if (result.GetCode() == kel4::kResultSessionUnusable && object == objects.begin())
                return false;
            if (!hbrc::internal::InteractiveMode()) {
                hbrc::internal::LogFailure(message, details);
                allCheckedOut = false;
                break;
            }
            if (!askRetryCheckOut(message, details)) {
                allCheckedOut = false;
                break;
            }
        }
    }
    return allCheckedOut;
}

kelResult CRevisionControlUIHelper::CheckOutObjectsInChangelist(KELPtr<kel4::IDataControl> dataControl,
                                                                const ObjectList& objects, bool includeExternalFiles,
                                                                const std::string& changelist, std::string& errorString,
                                                                std::string& message, std::string& details)
{
    if (objects.empty())
        return kel4::kResultSuccess;
    const hbrc::internal::RevisionCommandOutcome outcome = hbrc::internal::RunRevisionCommand(
        *this, dataControl, objects,
        [&](const borax::datamodel::ItemLibraryAccessor& library, const BaseScsCommand::AccessorList& assets) {
            return new ScsCheckOutCommand(library, changelist.c_str(), assets, includeExternalFiles);
        });
    const std::string heading = QObject::tr("Cannot checkout the assets\n").toStdString();
    return hbrc::internal::ExplainRevisionCommandOutcome(outcome, dataControl, objects, includeExternalFiles, heading,
                                                         hbrc::internal::kCheckOutErrorFlags, errorString, message,
                                                         details);
}
