#pragma once

#include "hbtrackedslot.h"

#include <borax/datamodel/iitemlibrarynotification.h>
#include <kel4/idatacontrol.h>
#include <kel4/ifileversioncontrol.h>
#include <kel4/irevisioncontroluihelper.h>
#include <kel4/itimeoutdelegate.h>
#include <nrk/fwk/ikeldbproxy.h>
#include <nrk/ibase.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

class QMessageBox;

// The revision-control helper: the plug-in's component "RevisionControlUIHelper". It answers the
// host's editability questions, checks assets out or makes them writable, hooks into the item
// library's commits, and shows the progress box while the file version control service works.
// Its implementation is split by concern over several source files of this folder.
class CRevisionControlUIHelper : public kel4::IRevisionControlUIHelper,
                                 public borax::datamodel::IItemLibraryNotification,
                                 public nrk::ISingleton,
                                 public nrk::IBase,
                                 public nrk::IDestroy,
                                 public nrk::fwk::IKELDBProxy_Slot,
                                 public kel4::ITimeOutDelegate
{
public:
    using ObjectList = kel4::List<KELHandle<IDbObject>>;
    using ItemLibraryAccessor = borax::datamodel::ItemLibraryAccessor;
    using ItemID = borax::datamodel::ItemID;

    static constexpr const char* kFactoryName = "RevisionControlUIHelper";
    static nrk::IBase* Factory();

    CRevisionControlUIHelper();
    ~CRevisionControlUIHelper() override;

    // kel4::IRevisionControlUIHelper
    bool IsRevisionControlEnabled() override;
    KELPtr<kel4::IDataControl> GetDataControl(const KELPtr<kel4::IDataModelMgr>& manager) override;
    bool CanCheckOutObject(const KELHandle<IDbObject>& object, bool includeExternalFiles) override;
    bool CanMakeObjectWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles) override;
    bool ObjectHasExternalFile(const KELHandle<IDbObject>& object) override;
    bool CheckOutObject(const KELHandle<IDbObject>& object, bool& cancelled, bool includeExternalFiles) override;
    bool CheckOutObjects(const ObjectList& objects, bool& cancelled, bool includeExternalFiles) override;
    bool MakeObjectWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles) override;
    bool CanEditObjects(const ObjectList& objects, bool includeExternalFiles, bool allowMakeWritable,
                        const std::string& info) override;
    kelResult GetObjectStatus(const ObjectList& objects, bool includeExternalFiles, bool flag,
                              kel4::List<unsigned int>& statuses) override;
    KELHandle<IDbObject> ResolveObject(DbObjectId id, KELPtr<kel4::IDataModelMgr>& manager) override;
    using kel4::IRevisionControlUIHelper::ResolveObject;
    void GetObjectFiles(const KELHandle<IDbObject>& object, QStringList& files) override;
    void ShowObjectFiles(const KELHandle<IDbObject>& object, bool inFileBrowser) override;

    // borax::datamodel::IItemLibraryNotification: only the commit hooks act.
    void OnBeginChanges(ItemLibraryAccessor&) override {}
    void OnEndChanges(ItemLibraryAccessor&) override {}
    void LibraryInvalidated(ItemLibraryAccessor&) override {}
    void ItemNameChanged(ItemLibraryAccessor&, const ItemID&) override {}
    void ItemTagsChanged(ItemLibraryAccessor&, const ItemID&, const char*) override {}
    void ItemAccessStateChanged(ItemLibraryAccessor&, const ItemID&, long) override {}
    void OnPreCommit(ItemLibraryAccessor& library, bool* cancel) override;
    void OnPostCommit(ItemLibraryAccessor& library) override;

    // nrk::ISingleton, nrk::IBase
    void Init() override;
    void Term() override;
    const char* GetClsName() const override { return "Korvex.NRK.RevisionControlUIHelper"; }

    // nrk::fwk::IKELDBProxy_Slot
    void OnInitialConnectionToDB() override;
    void OnConnectedToDB() override;
    void OnDisconnectedFromDB() override;

    // kel4::ITimeOutDelegate: the progress box protocol.
    void Close() override;
    bool GetUserInput() override;

    // Opens a new session for dataControl after asking for the password when needed; true when a
    // session was installed. The reason shown is reasonPrefix followed by reasonText.
    bool AttemptReconnect(const KELPtr<kel4::IDataControl>& dataControl, const char* reasonPrefix,
                          const char* reasonText) const;

    // Checks the objects out into changelist ("" for the default one) by one undoable command,
    // re-opening an expired session once. On failure fills the command's error text, a message
    // that explains it (who holds the files) and the details (the files), and returns the failure.
    kelResult CheckOutObjectsInChangelist(KELPtr<kel4::IDataControl> dataControl, const ObjectList& objects,
                                          bool includeExternalFiles, const std::string& changelist,
                                          std::string& errorString, std::string& message, std::string& details);

    // Waits before a batch run tries a failed edit action again. Unset, the thread sleeps; tests
    // install one that returns at once.
    using BatchRetryWait = std::function<void(std::chrono::milliseconds wait)>;
    void SetBatchRetryWait(BatchRetryWait wait) { m_batchRetryWait = std::move(wait); }

    // Marks the files of objects for add in changelist ("" for the default changelist) by one
    // undoable command, re-opening an expired session once. Success also when no object is known
    // to the item library (nothing is run). On failure errorString is the service's error text,
    // message and details explain it for the caller's "Mark-For-Add Error" report, and the result
    // is negative (-1: the command manager refused the command; -34: the session stayed closed).
    kelResult MarkForAddObjectsInChangelist(KELPtr<kel4::IDataControl> dataControl, const ObjectList& objects,
                                            bool includeExternalFiles, const std::string& changelist,
                                            std::string& errorString, std::string& message, std::string& details);

private:
    // Registers (true) or unregisters the helper with the proxy's current item library.
    void SetItemLibraryRegistration(bool registered);
    // Stops being the time-out delegate of the service that OnInitialConnectionToDB gave it to.
    void WithdrawTimeOutDelegate();

    // The work list of the last editability question that the user answered with Continue.
    kel4::List<KELHandle<IDbObject>> m_lastPromptedObjects;
    BatchRetryWait m_batchRetryWait;
    HBTrackedSlotList m_initialConnectionSlots;
    HBTrackedSlotList m_connectedSlots;
    HBTrackedSlotList m_disconnectedSlots;
    bool m_closedByProgram = false;
    std::unique_ptr<QMessageBox> m_progressBox;
    // The service that has the helper as its time-out delegate; held so that Term can withdraw it
    // and a late call of the service never reaches a destroyed helper.
    KELPtr<kel4::IFileVersionControl> m_timeOutDelegateHost;
};
