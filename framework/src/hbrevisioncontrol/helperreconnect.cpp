// Re-opening an expired revision-control session, asking for the password when the server wants one.
#include "revisioncontroluihelper.h"

#include "hbpasswordrequireddialog.h"
#include "hostservices.h"
#include "interactivemode.h"

#include <kel4/ifileversioncontrol.h>
#include <qtextention/guards.h>

#include <QCoreApplication>
#include <QMessageBox>

#include <algorithm>
#include <memory>

namespace {

constexpr const char* kInvalidPassword = "Invalid password";

bool isInvalidPassword(const std::string& errorText)
{
    return errorText.find(kInvalidPassword) != std::string::npos;
}

void showConnectionError(const QString& text)
{
    QMessageBox box(QMessageBox::Critical, QObject::tr("Connection Error"), text, QMessageBox::Ok);
    box.exec();
}

struct Account {
    std::string userName;
    std::string server;
    std::string workspace;
};

// Logs in with the wait cursor shown for the duration of the call only.
KELPtr<kel4::IUserParameters> logIn(kel4::IFileVersionControl& service, const Account& account,
                                    const std::string& password, std::string& errorText)
{
    CursorGuard busy;
    return service.Login(account.userName, password, account.workspace, account.server, errorText);
}

// Logs in with the password typed into the dialog. The typed text is wiped once the call is done.
KELPtr<kel4::IUserParameters> logInWithTypedPassword(kel4::IFileVersionControl& service, const Account& account,
                                                     const PasswordRequiredDialog& dialog, std::string& errorText)
{
    std::string password = dialog.GetPassword().toStdString();
    KELPtr<kel4::IUserParameters> session = logIn(service, account, password, errorText);
    std::fill(password.begin(), password.end(), '\0');
    return session;
}

}  // namespace

bool CRevisionControlUIHelper::AttemptReconnect(const KELPtr<kel4::IDataControl>& dataControl,
                                                const char* reasonPrefix, const char* reasonText) const
{
    if (!hbrc::internal::InteractiveMode())
        return false;

    Account account;
    IRevisionControlPropertiesMgr* settings = hbrc::internal::FindPropertiesMgr();
    if (!settings || !settings->GetAccountProperties(account.userName, account.server, account.workspace)) {
        showConnectionError(QObject::tr("Cannot connect to version control"));
        return false;
    }

    nrk::fwk::IKELDBProxy* proxy = hbrc::internal::FindDBProxy();
    if (!proxy)
        return false;
    const KELPtr<kel4::IKELInstance> instance = proxy->GetKELInstance();
    const KELPtr<kel4::IFileVersionControl> service(
        instance.GetPointeeNotNull().GetService(kel4::UID_FileVersionControl()));
    kel4::IFileVersionControl& fileVersionControl = service.GetPointeeNotNull();

    std::string errorText;
    KELPtr<kel4::IUserParameters> session = logIn(fileVersionControl, account, std::string(), errorText);
    if (!session && !isInvalidPassword(errorText)) {
        showConnectionError(QString::fromStdString(errorText));
        return false;
    }

    PasswordRequiredDialog dialog(nullptr);
    // The callers' reasons are marked for translation in the helper's context.
    dialog.SetReason(QCoreApplication::translate("CRevisionControlUIHelper", reasonPrefix) +
                     QCoreApplication::translate("CRevisionControlUIHelper", reasonText));
    while (!session && isInvalidPassword(errorText)) {
        if (dialog.exec() != QDialog::Accepted)
            break;
        session = logInWithTypedPassword(fileVersionControl, account, dialog, errorText);
        if (!session)
            showConnectionError(QString::fromStdString(errorText));
    }

    if (!session)
        return false;
    dataControl.GetPointeeNotNull().SetSession(session);
    return true;
}
