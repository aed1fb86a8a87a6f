// The editability decision: before the host lets the user change assets it asks whether they may
// be edited now. Assets that need no revision-control action may; for the others the user's
// setting says what happens: nothing, ask, check out, or make writable. Failures are shown with
// Retry, Ignore and Cancel; a batch run logs them and tries again until the action succeeds or the
// host's batch retry deadline has passed.
#include "revisioncontroluihelper.h"

#include "errorreporting.h"
#include "hbchangelistselectiondialog.h"
#include "hbrevisioncontrolpropertiesmgr.h"
#include "hostservices.h"
#include "interactivemode.h"
#include "objectlisthelpers.h"
#include "retrybackoff.h"

#include <QMessageBox>

#include <optional>
#include <thread>

namespace {

using ObjectList = CRevisionControlUIHelper::ObjectList;
using Settings = IRevisionControlPropertiesMgr;
using Action = Settings::ActionWhenEditingReadOnlyAsset;

// What is done about the assets that need action; check-outs go to changelist.
struct EditAction {
    Action action = Settings::eActionNone;
    std::string changelist;
};

// What the question is about.
struct EditRequest {
    KELPtr<kel4::IDataControl> dataControl;
    ObjectList needingAction;  // in the order of the work list
    bool includeExternalFiles = false;
    bool allowMakeWritable = false;
    std::string info;
};

// The user's answer to the prompt: the question answered, or the action to run now.
struct PromptAnswer {
    std::optional<bool> answer;
    bool rememberContinue = false;  // answered Continue without "don't show again"
    EditAction next;
};

// How a check-out or make-writable attempt ended: code 0 is success.
struct ActionResult {
    int code = kel4::kResultSuccess;
    std::string message;
    std::string details;
};

enum class FailureChoice { Retry, Ignore, Cancel };

ObjectList objectsNeedingAction(kel4::IDataControl& dataControl, const ObjectList& workList,
                                bool includeExternalFiles)
{
    ObjectList needing;
    for (const KELHandle<IDbObject>& object : workList) {
        if (dataControl.NeedsAction(object, includeExternalFiles, kel4::closureId::Persistence))
            needing.push_back(object);
    }
    return needing;
}

bool revisionControlEnabled(Settings* settings)
{
    bool enabled = false;
    return settings && settings->GetUseSourceDataControl(enabled) && enabled;
}

// The action the settings ask for, corrected: a kept changelist that no longer exists and a
// make-writable the host does not allow both turn into the prompt.
EditAction storedAction(Settings& settings, kel4::IDataControl& dataControl, bool allowMakeWritable)
{
    EditAction stored;
    settings.GetActionWhenEditingReadOnlyAsset(stored.action);
    if (stored.action == Settings::eActionCheckOut) {
        settings.GetChangeListToUseWhenAutoCheckingOut(stored.changelist);
        if (!dataControl.ChangeListExists(stored.changelist)) {
            stored = {Settings::eActionPrompt, {}};
            settings.SetActionWhenEditingReadOnlyAsset(Settings::eActionPrompt);
        }
    }
    if (stored.action == Settings::eActionMakeWritable && !allowMakeWritable)
        stored.action = Settings::eActionPrompt;
    return stored;
}

// "Check Out": the assets that need action and their files, the pending changelists, Continue,
// and Make Writable when the host allows it.
PromptAnswer askWhatToDo(const EditRequest& request, Settings& settings)
{
    QString names;
    hbrc::internal::GetAssetListPrettyNames(request.dataControl, request.needingAction, false, names);
    kel4::Set<std::string> files;
    kel4::List<kel4::Set<std::string>> filesPerObject;
    request.dataControl->GetFiles(request.needingAction, request.includeExternalFiles, kel4::closureId::Persistence,
                                  std::string(), files, filesPerObject);

    hbChangeListSelectionDialog dialog(request.dataControl, names, files, false, true, nullptr);
    dialog.setWindowTitle(QObject::tr("Check Out"));
    dialog.includeContinueButton(true);
    dialog.includeMakeWritableButton(request.allowMakeWritable);
    dialog.setInfo(QObject::tr(request.info.c_str()));
    const int result = dialog.exec();
    const bool always = dialog.getDontShowThisDialogAgainCheckBox();
    switch (result) {
    case hbChangeListSelectionDialog::ContinueWithoutAction:
        if (always)
            settings.SetActionWhenEditingReadOnlyAsset(Settings::eActionNone);
        return {true, !always, {}};
    case hbChangeListSelectionDialog::MakeWritable:
        if (always)
            settings.SetActionWhenEditingReadOnlyAsset(Settings::eActionMakeWritable);
        return {std::nullopt, false, {Settings::eActionMakeWritable, {}}};
    case hbChangeListSelectionDialog::UseChangeList:
        if (always) {
            settings.SetActionWhenEditingReadOnlyAsset(Settings::eActionCheckOut);
            settings.SetChangeListToUseWhenAutoCheckingOut(dialog.getChangeList());
            settings.SetPromptForChangeListWhenCheckingOut(false);
        }
        return {std::nullopt, false, {Settings::eActionCheckOut, dialog.getChangeList()}};
    default:
        return {false, false, {}};
    }
}

// Makes each asset writable in turn; the first failure stops with its message.
ActionResult makeWritable(const EditRequest& request)
{
    ActionResult result;
    for (const KELHandle<IDbObject>& object : request.needingAction) {
        result.code = request.dataControl->MakeWritable(object, request.includeExternalFiles,
                                                        kel4::closureId::Persistence, result.message)
                          .GetCode();
        if (result.code != kel4::kResultSuccess)
            break;
    }
    return result;
}

// "Checkout Error" with Retry (the default), Ignore and Cancel.
FailureChoice askAfterFailure(const ActionResult& failure)
{
    QMessageBox box(QMessageBox::Critical, QObject::tr("Checkout Error"), QString::fromStdString(failure.message),
                    QMessageBox::Retry | QMessageBox::Ignore | QMessageBox::Cancel);
    box.setDetailedText(QString::fromStdString(failure.details));
    box.setDefaultButton(QMessageBox::Retry);
    // The box has no Ok button: Escape keeps the box's own choice, Cancel.
    box.setEscapeButton(QMessageBox::Ok);
    box.setSizeGripEnabled(true);
    switch (box.exec()) {
    case QMessageBox::Retry:
        return FailureChoice::Retry;
    case QMessageBox::Ignore:
        return FailureChoice::Ignore;
    default:
        return FailureChoice::Cancel;
    }
}

// Why a batch run stopped retrying: the deadline and the preference that sets it.
std::string gaveUpNote()
{
    return QObject::tr("Gave up after retrying for %1 seconds (the host preference %2).")
        .arg(CHBRevisionControlPropertiesMgr::BatchRetryDeadline().count())
        .arg(QString::fromLatin1(CHBRevisionControlPropertiesMgr::kBatchRetryDeadlineKey))
        .toStdString();
}

void sleepFor(std::chrono::milliseconds wait)
{
    std::this_thread::sleep_for(wait);
}

}  // namespace

bool CRevisionControlUIHelper::CanEditObjects(const ObjectList& objects, bool includeExternalFiles,
                                              bool allowMakeWritable, const std::string& info)
{
    if (objects.empty()) {
        m_lastPromptedObjects.clear();
        return true;
    }
    const KELPtr<kel4::IDataControl> dataControl = hbrc::internal::DataControlOf(objects.front());
    kel4::IDataControl& control = dataControl.GetPointeeNotNull();
    // The objects asked about and those an edit of them involves.
    const ObjectList workList = hbrc::internal::WithRelatedObjects(control, objects);
    const EditRequest request{dataControl, objectsNeedingAction(control, workList, includeExternalFiles),
                              includeExternalFiles, allowMakeWritable, info};
    Settings* settings = hbrc::internal::FindPropertiesMgr();
    if (request.needingAction.empty() || !revisionControlEnabled(settings)) {
        m_lastPromptedObjects.clear();
        return true;
    }

    EditAction action = storedAction(*settings, control, allowMakeWritable);
    if (action.action == Settings::eActionPrompt) {
        // The user already chose Continue for exactly this work list.
        if (hbrc::internal::DbObjectListsAreEqual(workList, m_lastPromptedObjects))
            return true;
        // Nobody to ask: check out into the default changelist.
        if (!hbrc::internal::InteractiveMode())
            action = {Settings::eActionCheckOut, {}};
    }
    m_lastPromptedObjects.clear();

    hbrc::internal::RetryBackoff backoff(CHBRevisionControlPropertiesMgr::BatchRetryDeadline());
    for (;;) {
        if (action.action == Settings::eActionPrompt) {
            const PromptAnswer prompt = askWhatToDo(request, *settings);
            if (prompt.answer) {
                if (prompt.rememberContinue)
                    m_lastPromptedObjects = workList;
                return *prompt.answer;
            }
            action = prompt.next;
        }

        ActionResult result;
        if (action.action == Settings::eActionCheckOut) {
            std::string errorString;
            result.code = CheckOutObjectsInChangelist(dataControl, request.needingAction, includeExternalFiles,
                                                      action.changelist, errorString, result.message, result.details)
                              .GetCode();
        } else if (action.action == Settings::eActionMakeWritable) {
            result = makeWritable(request);
        } else {
            return true;
        }
        if (result.code == kel4::kResultSuccess)
            return true;

        if (!hbrc::internal::InteractiveMode()) {
            // Nobody can answer: log, wait, and try the same action again until it succeeds or the
            // host's deadline has passed; then the last failure says why the edit was refused.
            if (backoff.PastDeadline()) {
                hbrc::internal::LogFailure(result.message + '\n' + gaveUpNote(), result.details);
                return false;
            }
            hbrc::internal::LogFailure(result.message, result.details);
            (m_batchRetryWait ? m_batchRetryWait : sleepFor)(backoff.Next());
            continue;
        }
        // The server could not be reached or the session not re-opened: let the user decide anew.
        if (result.code == kel4::kResultSessionUnusable) {
            action = {Settings::eActionPrompt, {}};
            continue;
        }
        switch (askAfterFailure(result)) {
        case FailureChoice::Retry:
            continue;
        case FailureChoice::Ignore:
            return true;
        case FailureChoice::Cancel:
            return false;
        }
    }
}
