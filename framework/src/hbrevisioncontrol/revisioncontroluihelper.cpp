// The helper's frame: factory, start and end, the database proxy's connection events, the
// progress box protocol and the small host-facing queries.
#include "revisioncontroluihelper.h"

#include "hostservices.h"
#include "interactivemode.h"

#include <kel4/ifileversioncontrol.h>

#include <QAbstractButton>
#include <QCoreApplication>
#include <QMessageBox>

namespace {

// The code under which the helper asks the item library for its change and commit notifications.
constexpr int kItemLibraryNotificationCode = 40;

}  // namespace

using hbrc::internal::FindDBProxy;

nrk::IBase* CRevisionControlUIHelper::Factory()
{
    return static_cast<nrk::IBase*>(new CRevisionControlUIHelper);
}

CRevisionControlUIHelper::CRevisionControlUIHelper() = default;

// The three connection lists disconnect their connections (reverse order of declaration), then
// the remembered objects are released. A host that never called Term still gets the time-out
// delegate withdrawn and the progress box deleted.
CRevisionControlUIHelper::~CRevisionControlUIHelper()
{
    WithdrawTimeOutDelegate();
}

void CRevisionControlUIHelper::Init()
{
    nrk::fwk::IKELDBProxy* proxy = FindDBProxy();
    if (!proxy)
        kel4::RaiseNullPtr("revisioncontroluihelper.cpp");
    auto* slot = static_cast<nrk::fwk::IKELDBProxy_Slot*>(this);
    m_initialConnectionSlots.emplace_back();
    proxy->Connect_OnInitialConnectionToDB(slot, m_initialConnectionSlots.back().ConnectionAddress());
    m_connectedSlots.emplace_back();
    proxy->Connect_OnConnectedToDB(slot, m_connectedSlots.back().ConnectionAddress());
    m_disconnectedSlots.emplace_back();
    proxy->Connect_OnDisconnectedFromDB(slot, m_disconnectedSlots.back().ConnectionAddress());

    m_progressBox = std::make_unique<QMessageBox>();
    m_progressBox->addButton(QMessageBox::Cancel);
    m_progressBox->setText(
        QCoreApplication::translate("CRevisionControlUIHelper", "Perforce Operation in Progress, press Cancel to abort"));
    m_progressBox->setProperty(hbrc::internal::kNotCountedAsInteractive, true);
}

// After Term the helper answers the service's time-out calls without a box: GetUserInput says
// "go on" and Close does nothing.
void CRevisionControlUIHelper::Term()
{
    WithdrawTimeOutDelegate();
    m_progressBox.reset();
}

void CRevisionControlUIHelper::WithdrawTimeOutDelegate()
{
    if (m_timeOutDelegateHost)
        m_timeOutDelegateHost->SetTimeOutDelegate(nullptr);
    m_timeOutDelegateHost = {};
}

void CRevisionControlUIHelper::OnInitialConnectionToDB()
{
    nrk::fwk::IKELDBProxy* proxy = FindDBProxy();
    if (!proxy)
        kel4::RaiseNullPtr("revisioncontroluihelper.cpp");
    KELPtr<kel4::IFileVersionControl> fileVersionControl = hbrc::internal::ServiceOf<kel4::IFileVersionControl>(
        KELPtr<kel4::IDataModelMgr>(proxy->GetDataModelMgr()), kel4::UID_FileVersionControl());
    fileVersionControl.GetPointeeNotNull().SetTimeOutDelegate(static_cast<kel4::ITimeOutDelegate*>(this));
    m_timeOutDelegateHost = fileVersionControl;
}

void CRevisionControlUIHelper::OnConnectedToDB()
{
    SetItemLibraryRegistration(true);
}

void CRevisionControlUIHelper::OnDisconnectedFromDB()
{
    SetItemLibraryRegistration(false);
}

void CRevisionControlUIHelper::SetItemLibraryRegistration(bool registered)
{
    nrk::fwk::IKELDBProxy* proxy = FindDBProxy();
    if (!proxy)
        return;
    const ItemLibraryAccessor library = proxy->GetItemLibraryAccessor();
    borax::datamodel::IItemLibraryContext* context = library.GetContext();
    if (!context || !library.GetLibrary())
        return;
    auto* receiver = static_cast<borax::datamodel::IItemLibraryNotification*>(this);
    if (registered)
        context->RegisterNotification(receiver, kItemLibraryNotificationCode, library.GetContextIndex());
    else
        context->UnregisterNotification(receiver, kItemLibraryNotificationCode, library.GetContextIndex());
}

bool CRevisionControlUIHelper::GetUserInput()
{
    m_closedByProgram = false;
    if (!m_progressBox)
        return false;
    m_progressBox->exec();
    return !m_closedByProgram;
}

void CRevisionControlUIHelper::Close()
{
    m_closedByProgram = true;
    if (m_progressBox) {
        if (QAbstractButton* cancel = m_progressBox->button(QMessageBox::Cancel))
            cancel->click();
    }
}

bool CRevisionControlUIHelper::IsRevisionControlEnabled()
{
    IRevisionControlPropertiesMgr* settings = hbrc::internal::FindPropertiesMgr();
    if (!settings)
        return false;
    bool enabled = false;
    settings->GetUseSourceDataControl(enabled);
    return enabled;
}

KELPtr<kel4::IDataControl> CRevisionControlUIHelper::GetDataControl(const KELPtr<kel4::IDataModelMgr>& manager)
{
    KELPtr<kel4::IDataModelMgr> used = manager;
    if (!used) {
        nrk::fwk::IKELDBProxy* proxy = FindDBProxy();
        if (!proxy || !proxy->IsConnected())
            return {};
        used = KELPtr<kel4::IDataModelMgr>(proxy->GetDataModelMgr());
        if (!used)
            return {};
    }
    return hbrc::internal::ServiceOf<kel4::IDataControl>(used, kel4::UID_DataControl());
}

KELHandle<IDbObject> CRevisionControlUIHelper::ResolveObject(DbObjectId id, KELPtr<kel4::IDataModelMgr>& manager)
{
    if (!manager) {
        if (nrk::fwk::IKELDBProxy* proxy = FindDBProxy()) {
            manager = KELPtr<kel4::IDataModelMgr>(proxy->GetDataModelMgr());
            if (!manager)
                return {};
        }
    }
    return manager.GetPointeeNotNull().ResolveObject(id);
}
