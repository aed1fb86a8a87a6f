// After a save: the files it deleted leave revision control (a pending add is reverted, a
// checked-out file is reverted and marked for delete in its changelist, any other file is marked
// for delete in a changelist the settings or the user choose) and the assets it created join it
// (marked for add in the changelist their files are already open in, or in one chosen as above).
#include "revisioncontroluihelper.h"

#include "errorreporting.h"
#include "hbchangelistselectiondialog.h"
#include "hostservices.h"
#include "interactivemode.h"
#include "objectlisthelpers.h"
#include "revisioncommandrun.h"

#include <kel4/idatasource.h>
#include <kel4/ifileversioncontrol.h>
#include <kel4/revisionstatus.h>

#include <QObject>

#include <map>
#include <set>
#include <vector>

namespace {

using FileList = kel4::List<std::string>;
using ObjectList = CRevisionControlUIHelper::ObjectList;
using hbrc::internal::HandleError;
using hbrc::internal::kSessionExpiredReason;

// Shown in the password dialog, translated there.
constexpr const char* kDeletePrefix = QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Post-Save Mark-for-Delete: ");
constexpr const char* kAddPrefix = QT_TRANSLATE_NOOP("CRevisionControlUIHelper", "Post-Save Mark-for-Add: ");
constexpr const char* kDeletedFilesStatusReason =
    QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                      "Revision control system needs to be queried for file status but\n"
                      "session was lost. Enter a password to re-connect, or cancel the mark-for-delete.");
constexpr const char* kAddedAssetsStatusReason =
    QT_TRANSLATE_NOOP("CRevisionControlUIHelper",
                      "Revision control system needs to be queried for file status but\n"
                      "session was lost. Enter a password to re-connect, or cancel the mark-for-add.");

std::string fileListText(const FileList& files)
{
    std::string text;
    hbrc::internal::CookUpFileListString(files.begin(), files.end(), text);
    return text;
}

// What the saves since the last call left for revision control to follow.
struct SavedChanges {
    FileList deletedFiles;
    ObjectList addedObjects;  // objects written for the first time (no ancestor version)
};

// Takes what every multi-file data source tracked and makes it forget it, whatever comes of it.
SavedChanges takeSavedChanges(const kel4::IDataModelMgr& manager)
{
    SavedChanges changes;
    for (const KELPtr<kel4::IDataSource>& source : manager.GetDataSources()) {
        const KELPtr<kel4::IMultiFileDataSource> tracking(source);
        if (!tracking)
            continue;
        FileList deleted;
        kel4::List<DbObjectId> ids;
        ObjectList added;
        tracking->GetDeletedFiles(deleted);
        tracking->GetAddedObjects(ids, added);
        tracking->ResetTracking();
        changes.deletedFiles.splice(changes.deletedFiles.end(), deleted);
        for (KELHandle<IDbObject>& object : added) {
            if (object.GetAncestorId().IsNull())
                changes.addedObjects.push_back(std::move(object));
        }
    }
    return changes;
}

// The revision-control side of one run of the hook: the services, the session (which follows a
// re-connection), the settings, and the two rules every operation follows.
class PostSaveRevisionControl
{
public:
    PostSaveRevisionControl(CRevisionControlUIHelper& helper, IRevisionControlPropertiesMgr& settings,
                            KELPtr<kel4::IDataControl> dataControl,
                            KELPtr<kel4::IFileVersionControl> fileVersionControl)
        : m_helper(helper), m_settings(settings), m_dataControl(std::move(dataControl)),
          m_fileVersionControl(std::move(fileVersionControl)), m_session(m_dataControl->GetUserParameters())
    {
    }

    CRevisionControlUIHelper& Helper() { return m_helper; }
    IRevisionControlPropertiesMgr& Settings() { return m_settings; }
    const KELPtr<kel4::IDataControl>& DataControl() const { return m_dataControl; }
    kel4::IFileVersionControl& Files() { return *m_fileVersionControl; }
    const KELPtr<kel4::IFileVersionControl>& FileVersionControl() const { return m_fileVersionControl; }
    const kel4::IUserParameters* Session() const { return m_session.Get(); }

    // Re-opens the expired session (asking for the password with prefix and reason); true when
    // the session is back and the failed call may be repeated.
    bool Reconnect(const char* prefix, const char* reason)
    {
        if (!m_helper.AttemptReconnect(m_dataControl, prefix, reason))
            return false;
        m_session = m_dataControl->GetUserParameters();
        return true;
    }

    // The reconnect rule: a call answering -34 is repeated once the session is re-opened.
    template <class Call>
    kelResult WithReconnect(const char* prefix, const char* reason, const Call& call)
    {
        kelResult result = call();
        if (result.GetCode() == kel4::kResultSessionUnusable && Reconnect(prefix, reason))
            result = call();
        return result;
    }

    // The status word and the changelist each file is open in, with the reconnect rule.
    kelResult FileStatus(const char* prefix, const char* reason, const FileList& files, kel4::List<unsigned>& statuses,
                         FileList& changelists)
    {
        std::string error;
        return WithReconnect(prefix, reason, [&] {
            statuses.clear();
            changelists.clear();
            return m_fileVersionControl->GetStatus(Session(), files, statuses, changelists, error, 0);
        });
    }

    // The retry rule: operation (which explains a failure in its message) runs again for as long
    // as it fails and the user asks to retry. The last outcome.
    template <class Operation>
    static kelResult WithRetry(const QString& title, const Operation& operation)
    {
        for (;;) {
            std::string message;
            const kelResult result = operation(message);
            if (result.IsSuccess() || !HandleError(title.toStdString(), message))
                return result;
        }
    }

private:
    CRevisionControlUIHelper& m_helper;
    IRevisionControlPropertiesMgr& m_settings;
    KELPtr<kel4::IDataControl> m_dataControl;
    KELPtr<kel4::IFileVersionControl> m_fileVersionControl;
    KELPtr<kel4::IUserParameters> m_session;
};

// --- the changelist the post-save work uses -------------------------------------------------------

// The stored changelist, or a question to the user: when prompting is stored, or the stored
// changelist is gone (prompting is then stored from now on). A batch run never asks: it uses the
// default changelist.
struct ChangelistChoice {
    std::string changelist;
    bool prompt = false;
};

ChangelistChoice storedChangelistChoice(PostSaveRevisionControl& rc)
{
    ChangelistChoice choice;
    rc.Settings().GetPromptForChangeListWhenCheckingOut(choice.prompt);
    if (!choice.prompt) {
        rc.Settings().GetChangeListToUseWhenAutoCheckingOut(choice.changelist);
        if (!rc.DataControl()->ChangeListExists(choice.changelist)) {
            choice.prompt = true;
            rc.Settings().SetPromptForChangeListWhenCheckingOut(true);
        }
    }
    if (choice.prompt && !hbrc::internal::InteractiveMode()) {
        choice.prompt = false;
        choice.changelist.clear();
    }
    return choice;
}

// Runs the configured dialog; false when the user cancelled. Otherwise changelist is the chosen
// one, stored for later saves when the user ticked "Don't show this dialog again".
bool runChangelistDialog(hbChangeListSelectionDialog& dialog, PostSaveRevisionControl& rc, std::string& changelist)
{
    if (dialog.exec() == hbChangeListSelectionDialog::Cancelled)
        return false;
    changelist = dialog.getChangeList();
    if (dialog.getDontShowThisDialogAgainCheckBox()) {
        rc.Settings().SetPromptForChangeListWhenCheckingOut(false);
        rc.Settings().SetChangeListToUseWhenAutoCheckingOut(changelist);
    }
    return true;
}

bool askChangelistForDeletedFiles(PostSaveRevisionControl& rc, const FileList& files, std::string& changelist)
{
    hbChangeListSelectionDialog dialog(rc.DataControl(), QString(), std::set<std::string>(files.begin(), files.end()),
                                       true, true, nullptr);
    dialog.setWindowTitle(QObject::tr("Mark For Delete"));
    dialog.setInfo(QObject::tr("The files below were deleted during the commit\n"
                               "We can now mark them for delete in your revision control"));
    dialog.setCheckOutText(QObject::tr("Mark For Delete"));
    return runChangelistDialog(dialog, rc, changelist);
}

bool askChangelistForNewAssets(PostSaveRevisionControl& rc, const ObjectList& assets,
                               const std::set<std::string>& newFiles, std::string& changelist)
{
    QString names;
    hbrc::internal::GetAssetListPrettyNames(rc.DataControl(), assets, false, names);
    hbChangeListSelectionDialog dialog(rc.DataControl(), names, newFiles, false, true, nullptr);
    dialog.setWindowTitle(QObject::tr("Post-Saving: Mark For Add"));
    dialog.setInfo(QObject::tr("These assets have just been added during the save operation\n"
                               "We can now mark them for add in the revision control"));
    dialog.setCheckOutText(QObject::tr("Mark For Add"));
    return runChangelistDialog(dialog, rc, changelist);
}

// --- files the save deleted -----------------------------------------------------------------------

struct DeletedFileGroups {
    FileList markedForAdd;                           // only the pending add is undone
    std::map<std::string, FileList> checkedOutByChangelist;  // reverted, then marked for delete there
    FileList toMarkForDelete;                        // in depot, not open: marked for delete
};

DeletedFileGroups groupDeletedFiles(const FileList& files, const kel4::List<unsigned>& statuses,
                                    const FileList& changelists)
{
    DeletedFileGroups groups;
    auto status = statuses.begin();
    auto changelist = changelists.begin();
    for (auto file = files.begin(); file != files.end() && status != statuses.end(); ++file, ++status) {
        const std::string openIn = changelist != changelists.end() ? *changelist++ : std::string();
        if (*status & kel4::eStatusCheckedOut)
            groups.checkedOutByChangelist[openIn].push_back(*file);
        else if (*status & kel4::eStatusMarkedForAdd)
            groups.markedForAdd.push_back(*file);
        else if (!(*status & (kel4::eStatusMarkedForDelete | kel4::eStatusNotInDatabase)))
            groups.toMarkForDelete.push_back(*file);
    }
    return groups;
}

// What the hook could not do for deleted files: what happened, a blank line, the files, a blank
// line, why it could not be followed up, and the service's reason.
std::string failedFollowUp(const QString& happened, const FileList& files, const QString& failure,
                           const std::string& reason)
{
    return happened.toStdString() + "\n" + fileListText(files) + "\n" + failure.toStdString() + reason;
}

void revertPendingAdds(PostSaveRevisionControl& rc, const FileList& files)
{
    PostSaveRevisionControl::WithRetry(QObject::tr("Revert Error"), [&](std::string& message) {
        std::string error;
        const kelResult result = rc.WithReconnect(kDeletePrefix, kSessionExpiredReason, [&] {
            return rc.Files().Revert(rc.Session(), files, error, 0, 0);
        });
        if (result.IsFailure())
            message = failedFollowUp(
                QObject::tr("The following marked-for-add files were deleted during the commit:\n"), files,
                QObject::tr("but we couldn't revert the mark-for-add for the following reason:\n"), error);
        return result;
    });
}

void markCheckedOutFilesForDelete(PostSaveRevisionControl& rc, const std::string& changelist, const FileList& files)
{
    PostSaveRevisionControl::WithRetry(QObject::tr("Mark-For-Delete Error"), [&](std::string& message) {
        std::string error;
        kelResult result = rc.WithReconnect(kDeletePrefix, kSessionExpiredReason, [&] {
            return rc.Files().Revert(rc.Session(), files, error, 0, 0);
        });
        if (result.IsSuccess()) {
            result = rc.WithReconnect(kDeletePrefix, kSessionExpiredReason, [&] {
                return rc.Files().MarkForDeleteInChangelist(rc.Session(), files, changelist, error);
            });
        }
        if (result.IsFailure())  // "couldnt" is the message's own spelling
            message = failedFollowUp(
                QObject::tr("The following checked out files were deleted during the commit:\n"), files,
                QObject::tr("but we couldnt mark them for delete in the same change list for the following reason:\n"),
                error);
        return result;
    });
}

void markFilesForDelete(PostSaveRevisionControl& rc, const FileList& files)
{
    ChangelistChoice choice = storedChangelistChoice(rc);
    PostSaveRevisionControl::WithRetry(QObject::tr("Mark-For-Delete Error"), [&](std::string& message) {
        if (choice.prompt && !askChangelistForDeletedFiles(rc, files, choice.changelist))
            return kelResult(kel4::kResultSuccess);  // cancelled: the files stay as they are
        choice.prompt = false;
        std::string error;
        kelResult result = hbrc::internal::MarkFilesForDeleteInChangelist(rc.FileVersionControl(), rc.Session(), files,
                                                                          choice.changelist, error, message);
        if (result.GetCode() == kel4::kResultSessionUnusable) {
            if (rc.Reconnect(kDeletePrefix, kSessionExpiredReason))
                result = hbrc::internal::MarkFilesForDeleteInChangelist(rc.FileVersionControl(), rc.Session(), files,
                                                                        choice.changelist, error, message);
            else
                choice.prompt = true;  // a retry asks for the changelist again
        }
        return result;
    });
}

// False when the status of the files could not be had: then nothing more is done by the hook.
bool followDeletedFiles(PostSaveRevisionControl& rc, const FileList& files)
{
    kel4::List<unsigned> statuses;
    FileList changelists;
    if (rc.FileStatus(kDeletePrefix, kDeletedFilesStatusReason, files, statuses, changelists).IsFailure())
        return false;

    const DeletedFileGroups groups = groupDeletedFiles(files, statuses, changelists);
    if (!groups.markedForAdd.empty())
        revertPendingAdds(rc, groups.markedForAdd);
    for (const auto& [changelist, checkedOut] : groups.checkedOutByChangelist)
        markCheckedOutFilesForDelete(rc, changelist, checkedOut);
    if (!groups.toMarkForDelete.empty())
        markFilesForDelete(rc, groups.toMarkForDelete);
    return true;
}

// --- assets the save created ----------------------------------------------------------------------

struct NewAssetGroups {
    std::map<std::string, ObjectList> byChangelist;  // files already open there: added to it
    ObjectList toPrompt;                             // unknown to revision control: the user decides
    std::set<std::string> promptFiles;               // their new files, as the dialog lists them
};

// Where one new asset goes, from the status of its files: statuses[first + i] and
// changelists[first + i] are those of files[i].
void groupNewAsset(const KELHandle<IDbObject>& asset, const std::vector<std::string>& files,
                   const std::vector<unsigned>& statuses, const std::vector<std::string>& changelists,
                   std::size_t first, NewAssetGroups& groups)
{
    constexpr unsigned kOpened = kel4::eStatusMarkedForDelete | kel4::eStatusMarkedForAdd | kel4::eStatusCheckedOut;
    bool known = false;
    bool hasMarkedForDelete = false;
    std::string changelist;
    std::vector<std::string> newFiles;
    for (std::size_t i = 0; i < files.size() && first + i < statuses.size(); ++i) {
        const unsigned status = statuses[first + i];
        if (status & kel4::eStatusNotInDatabase) {
            newFiles.push_back(files[i]);
        } else if (status & kOpened) {
            if (!known && first + i < changelists.size())
                changelist = changelists[first + i];
            known = true;
            hasMarkedForDelete = hasMarkedForDelete || (status & kel4::eStatusMarkedForDelete);
        }
    }
    if (!known && !newFiles.empty()) {
        groups.toPrompt.push_back(asset);
        groups.promptFiles.insert(newFiles.begin(), newFiles.end());
    } else if (known && (!newFiles.empty() || hasMarkedForDelete)) {
        groups.byChangelist[changelist].push_back(asset);
    }
}

// Groups the assets that own the new objects by the revision state of their files. The files of
// all assets are asked about in one status question. False when a question failed.
bool groupNewAssets(PostSaveRevisionControl& rc, const ObjectList& objects, NewAssetGroups& groups)
{
    kel4::IDataControl::ObjectSet assets;
    const kelResult owners = rc.WithReconnect(kAddPrefix, kAddedAssetsStatusReason, [&] {
        assets.clear();
        return rc.DataControl()->GetOwningAssets(kel4::closureId::Persistence, objects, assets, 0);
    });
    if (owners.IsFailure())
        return false;

    std::vector<std::vector<std::string>> filesPerAsset;
    FileList allFiles;
    for (const KELHandle<IDbObject>& asset : assets) {
        kel4::Set<std::string> files;
        const kelResult listed = rc.WithReconnect(kAddPrefix, kAddedAssetsStatusReason, [&] {
            files.clear();
            return rc.DataControl()->GetFiles(asset, true, kel4::closureId::Persistence, std::string(), files);
        });
        if (listed.IsFailure())
            return false;
        filesPerAsset.emplace_back(files.begin(), files.end());
        allFiles.insert(allFiles.end(), files.begin(), files.end());
    }

    kel4::List<unsigned> statuses;
    FileList changelists;
    if (rc.FileStatus(kAddPrefix, kAddedAssetsStatusReason, allFiles, statuses, changelists).IsFailure())
        return false;

    const std::vector<unsigned> statusOfFile(statuses.begin(), statuses.end());
    const std::vector<std::string> changelistOfFile(changelists.begin(), changelists.end());
    std::size_t first = 0;
    auto files = filesPerAsset.begin();
    for (const KELHandle<IDbObject>& asset : assets) {
        groupNewAsset(asset, *files, statusOfFile, changelistOfFile, first, groups);
        first += files->size();
        ++files;
    }
    return true;
}

// One mark-for-add of assets in changelist, with the reconnect rule; message explains a failure.
kelResult markForAddOnce(PostSaveRevisionControl& rc, const ObjectList& assets, const std::string& changelist,
                         std::string& message)
{
    std::string error;
    std::string details;
    return rc.WithReconnect(kAddPrefix, kSessionExpiredReason, [&] {
        return rc.Helper().MarkForAddObjectsInChangelist(rc.DataControl(), assets, true, changelist, error, message,
                                                         details);
    });
}

bool serverIsGone(const kelResult& result)
{
    return result.GetCode() == kel4::kResultSessionUnusable;
}

// Marks assets for add in changelist, reporting a failure; false when the server is gone
// (unreachable, or the session stayed closed after the reconnect), so that the other assets are
// not tried only to report the same failure once more each.
bool markForAdd(PostSaveRevisionControl& rc, const ObjectList& assets, const std::string& changelist)
{
    return !serverIsGone(PostSaveRevisionControl::WithRetry(
        QObject::tr("Mark-For-Add Error"),
        [&](std::string& message) { return markForAddOnce(rc, assets, changelist, message); }));
}

// The new assets the user agreed to add. Each refusal is reported on its own, asset by asset,
// but asking the server once per asset makes a save of thousands of new assets wait minutes:
// the whole list goes in one call first, and only when the server refuses it for some of its
// assets is each asset asked again on its own, so that the reports stay those of one call per
// asset. A server that is gone is reported once, whether the whole list or one asset found it.
void markPromptedAssetsForAdd(PostSaveRevisionControl& rc, const ObjectList& assets, const std::string& changelist)
{
    for (;;) {
        std::string message;
        const kelResult all = markForAddOnce(rc, assets, changelist, message);
        if (all.IsSuccess())
            return;
        if (!serverIsGone(all))
            break;
        if (!HandleError(QObject::tr("Mark-For-Add Error").toStdString(), message))
            return;
    }
    for (const KELHandle<IDbObject>& asset : assets)
        if (!markForAdd(rc, ObjectList{asset}, changelist))
            return;
}

void followNewAssets(PostSaveRevisionControl& rc, const ObjectList& objects)
{
    NewAssetGroups groups;
    if (!groupNewAssets(rc, objects, groups))
        return;
    for (const auto& [changelist, assets] : groups.byChangelist)
        if (!markForAdd(rc, assets, changelist))
            return;
    if (groups.toPrompt.empty())
        return;

    ChangelistChoice choice = storedChangelistChoice(rc);
    if (choice.prompt && !askChangelistForNewAssets(rc, groups.toPrompt, groups.promptFiles, choice.changelist))
        return;  // cancelled: nothing is marked
    markPromptedAssetsForAdd(rc, groups.toPrompt, choice.changelist);
}

}  // namespace

void CRevisionControlUIHelper::OnPostCommit(ItemLibraryAccessor& library)
{
    IRevisionControlPropertiesMgr* settings = hbrc::internal::FindPropertiesMgr();
    nrk::fwk::IKELDBProxy* proxy = hbrc::internal::FindDBProxy();
    if (!proxy)
        return;
    const KELPtr<kel4::IDataModelMgr> manager(proxy->GetDataModelMgr());
    if (!manager)
        return;
    const KELPtr<kel4::IDataControl> dataControl =
        hbrc::internal::ServiceOf<kel4::IDataControl>(manager, kel4::UID_DataControl());
    bool enabled = false;
    if (!settings || !settings->GetUseSourceDataControl(enabled) || !enabled || !dataControl)
        return;
    if (!dataControl->GetUserParameters() || proxy->GetItemLibraryAccessor() != library)
        return;

    const SavedChanges changes = takeSavedChanges(*manager);
    const KELPtr<kel4::IFileVersionControl> fileVersionControl =
        hbrc::internal::ServiceOf<kel4::IFileVersionControl>(manager, kel4::UID_FileVersionControl());
    if (!fileVersionControl || (changes.deletedFiles.empty() && changes.addedObjects.empty()))
        return;

    PostSaveRevisionControl rc(*this, *settings, dataControl, fileVersionControl);
    if (!changes.deletedFiles.empty() && !followDeletedFiles(rc, changes.deletedFiles))
        return;
    if (!changes.addedObjects.empty())
        followNewAssets(rc, changes.addedObjects);
}
