// Before a save: the dirty assets whose files are read-only are checked out or made writable, as
// the stored setting or the user decides, or the save is cancelled. The hook never writes files.
#include "revisioncontroluihelper.h"

#include "errorreporting.h"
#include "hbchangelistselectiondialog.h"
#include "hbrevisioncontrolpropertiesmgr.h"
#include "hostservices.h"
#include "interactivemode.h"
#include "objectlisthelpers.h"

#include <log/log.h>
#include <qtextention/mainappwindow.h>

#include <QMessageBox>
#include <QObject>

#include <set>

namespace {

using Action = IRevisionControlPropertiesMgr::ActionWhenEditingReadOnlyAsset;
using ObjectList = CRevisionControlUIHelper::ObjectList;

// Every dirty persistable object that is metadata or a value asset.
constexpr const char* kDirtyAssetsQuery =
    "select object where OR(AND(IS_PERSISTABLE,AND(IS_METADATA, IS_DIRTY)),"
    "AND(IS_PERSISTABLE,AND(IS_VALUE_ASSET, IS_DIRTY)))";
constexpr int kQueryUnsavedAndUnloaded = 3;

// The objects the save writes: the query's objects, then the objects saved with them.
ObjectList objectsToSave(const kel4::IDataModelMgr& manager, KELPtr<kel4::IDataControl>& dataControl)
{
    kel4::Vector<CQueryResult> results;
    std::string error;
    manager.Query(kDirtyAssetsQuery, results, kQueryUnsavedAndUnloaded, error);
    if (results.empty())
        return {};
    dataControl = hbrc::internal::DataControlOf(results.front().GetObject());
    ObjectList objects;
    for (const CQueryResult& result : results)
        objects.push_back(result.GetObject());
    kel4::IDataControl::ObjectSet related;
    dataControl.GetPointeeNotNull().GetRelatedObjects(objects, related);
    objects.insert(objects.end(), related.begin(), related.end());
    return objects;
}

// The assets whose files keep objects from being saved, split by whether they have external files
// (those are checked out and made writable with them), and the files of each part.
struct ReadOnlyAssets {
    ObjectList plain;
    ObjectList withExternal;
    kel4::Set<std::string> plainFiles;
    kel4::Set<std::string> externalFiles;  // of the assets with external files, external files included

    bool Empty() const { return plain.empty() && withExternal.empty(); }
    std::set<std::string> AllFiles() const
    {
        std::set<std::string> all(plainFiles.begin(), plainFiles.end());
        all.insert(externalFiles.begin(), externalFiles.end());
        return all;
    }
};

ReadOnlyAssets findReadOnlyAssets(kel4::IDataControl& dataControl, const ObjectList& objects)
{
    constexpr kel4::closureId kPersistence = kel4::closureId::Persistence;
    ReadOnlyAssets found;
    ObjectList readOnly;
    for (const KELHandle<IDbObject>& object : objects) {
        if (dataControl.IsReadOnly(object, dataControl.HasExternalFile(object, kPersistence), kPersistence))
            readOnly.push_back(object);
    }
    if (readOnly.empty())
        return found;
    kel4::IDataControl::ObjectSet owners;
    dataControl.GetOwningAssets(kPersistence, readOnly, owners, 0);
    for (const KELHandle<IDbObject>& asset : owners)
        (dataControl.HasExternalFile(asset, kPersistence) ? found.withExternal : found.plain).push_back(asset);

    kel4::List<kel4::Set<std::string>> perObject;
    if (!found.withExternal.empty())
        dataControl.GetFiles(found.withExternal, true, kPersistence, std::string(), found.externalFiles, perObject);
    if (!found.plain.empty())
        dataControl.GetFiles(found.plain, false, kPersistence, std::string(), found.plainFiles, perObject);
    return found;
}

// The stored action as this save may follow it, and why it is a prompt when it is one.
struct SaveAction {
    Action action = IRevisionControlPropertiesMgr::eActionNone;
    QString promptReason;  // the setting that asks for a decision
};

// A batch run cannot be asked: a stored prompt becomes a check-out into the default changelist
// there. A stored check-out needs revision control switched on and its changelist still pending,
// else the user is asked (and the stored action is reset).
SaveAction normalisedAction(Action action, std::string& changelist, bool useSourceDataControl,
                            kel4::IDataControl& dataControl, IRevisionControlPropertiesMgr& settings)
{
    using Mgr = CHBRevisionControlPropertiesMgr;
    const bool interactive = hbrc::internal::InteractiveMode();
    if (action == IRevisionControlPropertiesMgr::eActionPrompt && !interactive) {
        action = IRevisionControlPropertiesMgr::eActionCheckOut;
        changelist.clear();
    }
    if (action == IRevisionControlPropertiesMgr::eActionNone)
        return {IRevisionControlPropertiesMgr::eActionPrompt,
                QObject::tr("%1 is \"none\"").arg(QString::fromLatin1(Mgr::kActionKey))};
    if (action == IRevisionControlPropertiesMgr::eActionCheckOut) {
        if (!useSourceDataControl)
            return {IRevisionControlPropertiesMgr::eActionPrompt,
                    QObject::tr("%1 is off").arg(QString::fromLatin1(Mgr::kUseSourceDataControlKey))};
        if (!dataControl.ChangeListExists(changelist)) {
            settings.SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionPrompt);
            return {IRevisionControlPropertiesMgr::eActionPrompt,
                    QObject::tr("%1 names the changelist \"%2\", which no longer exists")
                        .arg(QString::fromLatin1(Mgr::kChangeListKey), QString::fromStdString(changelist))};
        }
    }
    return {action, {}};
}

// A batch save that needs a decision is cancelled; the log says for which assets and why.
void logCancelledSave(const KELPtr<kel4::IDataControl>& dataControl, const ReadOnlyAssets& assets,
                      const QString& reason)
{
    QString names;
    hbrc::internal::GetAssetListPrettyNames(dataControl, assets.plain, false, names);
    hbrc::internal::GetAssetListPrettyNames(dataControl, assets.withExternal, true, names);
    const QString text = QObject::tr("The save was cancelled: these assets have read-only files and need a "
                                     "decision that a batch run cannot make (%1):\n%2")
                             .arg(reason, names);
    Log::Singleton::Instance().Write(Log::eError, text.toStdString());
}

// The user's answer to "Check Out Before Saving".
struct SaveAnswer {
    int choice = hbChangeListSelectionDialog::Cancelled;
    std::string changelist;
    bool remember = false;  // "Don't show this dialog again" was ticked
};

SaveAnswer askBeforeSaving(const KELPtr<kel4::IDataControl>& dataControl, const ReadOnlyAssets& assets,
                           bool selectChangeList)
{
    QString names;
    hbrc::internal::GetAssetListPrettyNames(dataControl, assets.plain, false, names);
    hbrc::internal::GetAssetListPrettyNames(dataControl, assets.withExternal, true, names);
    hbChangeListSelectionDialog dialog(dataControl, names, assets.AllFiles(), false, selectChangeList,
                                       GetMainAppWindow());
    dialog.setWindowTitle(QObject::tr("Check Out Before Saving"));
    dialog.setInfo(QObject::tr("Some of the files of the following assets are read-only\n"
                               "Please select an option before saving continues"));
    dialog.includeMakeWritableButton(true);
    SaveAnswer answer;
    answer.choice = dialog.exec();
    answer.changelist = dialog.getChangeList();
    answer.remember = dialog.getDontShowThisDialogAgainCheckBox();
    return answer;
}

void showCheckoutError(const std::string& message, const std::string& details)
{
    QMessageBox box(QMessageBox::Critical, QObject::tr("Checkout Error"), QString::fromStdString(message),
                    QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    box.setEscapeButton(QMessageBox::Ok);
    box.setDetailedText(QString::fromStdString(details));
    box.setSizeGripEnabled(true);
    box.exec();
}

void makeWritable(kel4::IDataControl& dataControl, const ReadOnlyAssets& assets)
{
    // A file that stays read-only is reported by the save itself, which keeps the asset's edits.
    std::string ignored;
    for (const KELHandle<IDbObject>& asset : assets.plain)
        dataControl.MakeWritable(asset, false, kel4::closureId::Persistence, ignored);
    for (const KELHandle<IDbObject>& asset : assets.withExternal)
        dataControl.MakeWritable(asset, true, kel4::closureId::Persistence, ignored);
}

void setCancel(bool* cancel)
{
    if (cancel)
        *cancel = true;
}

}  // namespace

void CRevisionControlUIHelper::OnPreCommit(ItemLibraryAccessor& library, bool* cancel)
{
    if (cancel)
        *cancel = false;
    nrk::fwk::IKELDBProxy* proxy = hbrc::internal::FindDBProxy();
    if (!proxy)
        return;
    const KELPtr<kel4::IDataModelMgr> manager(proxy->GetDataModelMgr());
    if (!manager || proxy->GetItemLibraryAccessor() != library)
        return;
    // Without the settings the feature is absent: the save goes on as the host decides.
    IRevisionControlPropertiesMgr* settings = hbrc::internal::FindPropertiesMgr();
    if (!settings)
        return;
    bool useSourceDataControl = false;
    settings->GetUseSourceDataControl(useSourceDataControl);

    KELPtr<kel4::IDataControl> dataControl;
    const ObjectList objects = objectsToSave(*manager, dataControl);
    if (objects.empty())
        return;
    ReadOnlyAssets assets = findReadOnlyAssets(*dataControl, objects);
    if (assets.Empty())
        return;

    std::string changelist;
    Action action = IRevisionControlPropertiesMgr::eActionNone;
    settings->GetChangeListToUseWhenAutoCheckingOut(changelist);
    settings->GetActionWhenEditingReadOnlyAsset(action);
    const SaveAction normalised = normalisedAction(action, changelist, useSourceDataControl, *dataControl, *settings);
    action = normalised.action;
    const bool interactive = hbrc::internal::InteractiveMode();
    if (action == IRevisionControlPropertiesMgr::eActionPrompt && !interactive) {
        logCancelledSave(dataControl, assets, normalised.promptReason);
        return setCancel(cancel);
    }

    for (;;) {
        if (action == IRevisionControlPropertiesMgr::eActionPrompt) {
            const SaveAnswer answer = askBeforeSaving(dataControl, assets, useSourceDataControl);
            if (answer.choice == hbChangeListSelectionDialog::MakeWritable) {
                action = IRevisionControlPropertiesMgr::eActionMakeWritable;
                if (answer.remember)
                    settings->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionMakeWritable);
            } else if (answer.choice == hbChangeListSelectionDialog::UseChangeList) {
                changelist = answer.changelist;
                action = IRevisionControlPropertiesMgr::eActionCheckOut;
                if (answer.remember) {
                    settings->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
                    settings->SetChangeListToUseWhenAutoCheckingOut(changelist);
                    settings->SetPromptForChangeListWhenCheckingOut(false);
                }
            } else {
                return setCancel(cancel);
            }
        }

        if (action == IRevisionControlPropertiesMgr::eActionMakeWritable) {
            makeWritable(*dataControl, assets);
            return;
        }

        // Check-out: the assets with external files first, then the others.
        kelResult result = kel4::kResultSuccess;
        std::string errorString;
        std::string message;
        std::string details;
        if (!assets.withExternal.empty())
            result = CheckOutObjectsInChangelist(dataControl, assets.withExternal, true, changelist, errorString,
                                                 message, details);
        if (!result.IsFailure() && !assets.plain.empty()) {
            result = CheckOutObjectsInChangelist(dataControl, assets.plain, false, changelist, errorString, message,
                                                 details);
            // The assets with external files are checked out now: a further prompt lists the others' files.
            if (result.IsFailure())
                assets.externalFiles.clear();
        }

        if (interactive && result.GetCode() == kel4::kResultSessionUnusable) {
            action = IRevisionControlPropertiesMgr::eActionPrompt;  // the password was asked for already
            continue;
        }
        if (result.IsSuccess())
            return;
        if (!interactive) {
            hbrc::internal::LogFailure(message, details);
            return setCancel(cancel);
        }
        showCheckoutError(message, details);
        action = IRevisionControlPropertiesMgr::eActionPrompt;
    }
}
