#include "sessioncontroller.h"

#include "assetstatusquery.h"
#include "studiosession.h"

#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcservices/revisionserver.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <log/log.h>

namespace hbrc::studio {

namespace {
// True when the user switched revision control off in the settings: only then does a workspace
// with a server open with it off.
constexpr const char* kRevisionControlOffKey = "Studio.RevisionControlOff";

bool isWrongPassword(const std::string& errorText)
{
    return errorText.find("Invalid password") != std::string::npos;
}
}  // namespace

SessionController::SessionController(StudioSession& session, LoginPrompt prompt, QObject* parent)
    : QObject(parent), m_session(session), m_prompt(std::move(prompt))
{
}

bool SessionController::hasServer() const
{
    return m_session.currentWorkspace() && m_session.services().connection;
}

bool SessionController::hasSession() const
{
    const host::RevisionControlServices& services = m_session.services();
    if (!services.dataControl)
        return false;
    const KELPtr<kel4::IUserParameters> session = services.dataControl->GetUserParameters();
    return session && session->HasSession();
}

bool SessionController::revisionControlOn() const
{
    bool on = false;
    IRevisionControlPropertiesMgr* settings = m_session.settings();
    return settings && settings->GetUseSourceDataControl(on) && on;
}

SessionState SessionController::state() const
{
    if (!m_session.currentWorkspace())
        return SessionState::NoWorkspace;
    if (!hasServer())
        return SessionState::NoServer;
    if (m_offline != OfflineReason::None)
        return SessionState::Offline;
    if (!revisionControlOn())
        return SessionState::RevisionControlOff;
    // Never "logged in" without a session, whatever installed or removed it.
    if (m_state == SessionState::LoggedIn && !hasSession())
        return SessionState::NotLoggedIn;
    return m_state;
}

QString SessionController::stateText() const
{
    switch (state()) {
    case SessionState::NoWorkspace: return tr("no workspace");
    case SessionState::NoServer: return tr("no server");
    case SessionState::RevisionControlOff: return tr("revision control off");
    case SessionState::NotLoggedIn: return tr("not logged in");
    case SessionState::LoggedIn:
        return tr("logged in as %1")
            .arg(QString::fromStdString(m_session.services().dataControl->GetUserParameters()->GetUserName()));
    case SessionState::Expired: return tr("expired");
    case SessionState::Unreachable: return tr("unreachable");
    case SessionState::Offline:
        return m_offline == OfflineReason::Chosen ? tr("Offline: working offline by choice")
                                                  : tr("Offline: the server cannot be reached");
    }
    return {};
}

SessionAction SessionController::fittingAction() const
{
    switch (state()) {
    case SessionState::RevisionControlOff: return SessionAction::TurnRevisionControlOn;
    case SessionState::NotLoggedIn:
    case SessionState::Expired: return SessionAction::LogIn;
    case SessionState::Unreachable: return SessionAction::Retry;
    case SessionState::LoggedIn: return SessionAction::LogOut;
    case SessionState::Offline: return SessionAction::WorkOnline;
    default: return SessionAction::None;
    }
}

void SessionController::setState(SessionState state)
{
    m_state = state;
    emit stateChanged();
}

void SessionController::workspaceOpened()
{
    m_state = SessionState::NotLoggedIn;
    if (!hasServer()) {
        emit stateChanged();
        return;
    }
    // A workspace with a server is worked on under revision control; that it starts switched off
    // is the settings' default, not a choice, unless the user made it in the settings.
    bool userTurnedOff = false;
    m_session.host().Preferences().GetBoolPref(kRevisionControlOffKey, false, userTurnedOff, 0);
    if (m_session.settings() && !revisionControlOn() && !userTurnedOff) {
        m_session.settings()->SetUseSourceDataControl(true);
        emit message(Log::eMessage, tr("Revision control is on for the server %1")
                                        .arg(QString::fromStdString(m_session.storedAccount().server)));
    }
    // A workspace the user left working offline opens offline, without a word to the server.
    if (m_session.workOfflineChosen()) {
        setOffline(OfflineReason::Chosen);
        return;
    }
    logInAtOpen();
}

void SessionController::workspaceClosed()
{
    m_offline = OfflineReason::None;
    setState(SessionState::NoWorkspace);
}

void SessionController::retry()
{
    logInAtOpen();
}

// The kept log-in first, so that a log-in in a terminal (hbdepot login) serves the studio too;
// then the password known for this run; the prompt last.
void SessionController::logInAtOpen()
{
    const Account account = m_session.storedAccount();
    const host::RevisionControlServices& services = m_session.services();
    std::string error;
    if (const KELPtr<host::UserParameters> kept =
            services.connection->ResumeKept(account.userName, account.workspaceName, error)) {
        services.dataControl->SetSession(KELPtr<kel4::IUserParameters>(kept));
        emit message(Log::eMessage, tr("Logged in as %1 with the kept log-in").arg(QString::fromStdString(account.userName)));
        setState(SessionState::LoggedIn);
        return;
    }
    if (host::IsUnreachableServerError(error)) {
        setLoginFailure(error);
        return;
    }
    if (!account.password.empty()) {
        if (!logInWith(account.userName, account.password, false, error))
            setLoginFailure(error);
        return;
    }
    logInThroughPrompt({});
}

bool SessionController::logIn()
{
    return hasServer() && logInThroughPrompt({});
}

bool SessionController::logInThroughPrompt(QString reason)
{
    for (;;) {
        const Account account = m_session.storedAccount();
        const std::optional<LoginAnswer> answer = m_prompt(
            {QString::fromStdString(account.server), QString::fromStdString(account.userName), reason});
        if (!answer) {
            if (!hasSession())
                setState(SessionState::NotLoggedIn);
            return false;
        }
        std::string error;
        if (logInWith(answer->userName.toStdString(), answer->password.toStdString(), answer->keep, error))
            return true;
        setLoginFailure(error);
        if (!isWrongPassword(error))
            return false;
        reason = QString::fromStdString(error);
    }
}

bool SessionController::logInWith(const std::string& userName, const std::string& password, bool keep,
                                  std::string& errorText)
{
    Account account = m_session.storedAccount();
    const host::RevisionControlServices& services = m_session.services();
    const KELPtr<host::UserParameters> session =
        services.connection->Login(userName, password, account.workspaceName, account.server, errorText);
    if (!session)
        return false;
    if (account.userName != userName) {
        account.userName = userName;
        m_session.storeAccount(account);
    }
    // Kept in memory for this run only: a Subversion connection of a worker thread logs in with it.
    m_session.setPassword(password);
    services.dataControl->SetSession(KELPtr<kel4::IUserParameters>(session));
    std::string notKept;
    if (keep && services.connection->Keep(session.Get(), notKept).IsFailure())
        emit message(Log::eWarning, tr("Logged in, but the log-in is not kept: %1").arg(QString::fromStdString(notKept)));
    emit message(Log::eMessage, tr("Logged in as %1").arg(QString::fromStdString(userName)));
    setState(SessionState::LoggedIn);
    return true;
}

void SessionController::setLoginFailure(const std::string& errorText)
{
    emit message(Log::eWarning, tr("Not logged in: %1").arg(QString::fromStdString(errorText)));
    setState(host::IsUnreachableServerError(errorText) ? SessionState::Unreachable : SessionState::NotLoggedIn);
}

void SessionController::logOut()
{
    const host::RevisionControlServices& services = m_session.services();
    if (!services.dataControl)
        return;
    std::string error;
    const KELPtr<kel4::IUserParameters> session = services.dataControl->GetUserParameters();
    const kelResult ended = services.connection->Logout(session.Get(), error);
    services.dataControl->SetSession({});
    m_session.setPassword({});
    if (ended.IsFailure())
        emit message(Log::eWarning, tr("Logged out; the server said: %1").arg(QString::fromStdString(error)));
    else
        emit message(Log::eMessage, tr("Logged out"));
    setState(SessionState::NotLoggedIn);
}

void SessionController::turnRevisionControlOn()
{
    m_session.host().Preferences().SetBoolPref(kRevisionControlOffKey, false, 1);
    if (m_session.settings() && m_session.currentWorkspace())
        m_session.settings()->SetUseSourceDataControl(true);
    emit stateChanged();
}

void SessionController::revisionControlChosen(bool wasOn)
{
    const bool on = revisionControlOn();
    if (on != wasOn)
        m_session.host().Preferences().SetBoolPref(kRevisionControlOffKey, !on, 1);
    emit stateChanged();
}

// Without a session the answers cannot tell a live session: a refusal says that there is none,
// an empty workspace's answer says nothing.
void SessionController::statusAnswered(const StatusAnswer& answer)
{
    const SessionState before = m_state;
    if (answer.unreachable())
        m_state = SessionState::Unreachable;
    else if (!hasSession())
        m_state = answer.code < 0 ? SessionState::NotLoggedIn : m_state;
    else
        m_state = answer.code >= 0 ? SessionState::LoggedIn : SessionState::Expired;
    if (m_state != before)
        emit stateChanged();
}

void SessionController::setOffline(OfflineReason reason)
{
    if (reason == m_offline)
        return;
    m_offline = reason;
    emit stateChanged();
}

}  // namespace hbrc::studio
