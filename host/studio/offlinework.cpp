#include "offlinework.h"

#include "sessioncontroller.h"
#include "studiosession.h"

#include <hbrcdatamodel/offlinejournal.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <log/log.h>

namespace hbrc::studio {

OfflineWork::OfflineWork(StudioSession& session, SessionController& sessionController, QObject* parent)
    : QObject(parent), m_session(session), m_sessionController(sessionController)
{
    connect(&m_sessionController, &SessionController::stateChanged, this, &OfflineWork::followSession);
}

OfflineWork::~OfflineWork() = default;

void OfflineWork::workspaceOpened()
{
    m_journal = std::make_unique<host::OfflineJournal>(m_session.offlineJournalFile());
    m_offerWhenAnswered = !m_journal->IsEmpty();
    // The session opened it offline when the user had switched it so.
    if (m_sessionController.offlineReason() == OfflineReason::Chosen)
        goOffline(OfflineReason::Chosen);
    else
        followSession();
}

void OfflineWork::workspaceClosed()
{
    if (host::Workspace* workspace = m_session.currentWorkspace())
        workspace->Model().SetJournal(nullptr);
    m_journal.reset();
    if (isOffline())
        goOnline();
    m_offerWhenAnswered = false;
}

bool OfflineWork::isOffline() const
{
    return m_sessionController.offlineReason() != OfflineReason::None;
}

void OfflineWork::setWorkingOffline(bool offline)
{
    if (offline == isOffline() || !m_journal)
        return;
    m_session.setWorkOfflineChosen(offline);
    if (offline) {
        goOffline(OfflineReason::Chosen);
        return;
    }
    // Opened offline, the studio never logged in.
    if (!m_sessionController.hasSession())
        m_sessionController.retry();
    goOnline();
}

void OfflineWork::goOffline(OfflineReason reason)
{
    IRevisionControlPropertiesMgr* settings = m_session.settings();
    m_restoreRevisionControl = m_sessionController.revisionControlOn();
    m_session.currentWorkspace()->Model().SetJournal(m_journal.get());
    m_sessionController.setOffline(reason);
    if (m_restoreRevisionControl && settings)
        settings->SetUseSourceDataControl(false);
    emit message(Log::eWarning, reason == OfflineReason::Chosen
                                    ? tr("Working offline: edits go ahead without the server; the files they change are "
                                         "recorded for reconciling")
                                    : tr("The server cannot be reached: working offline; the files edits change are "
                                         "recorded for reconciling"));
    emit offlineChanged(true);
}

void OfflineWork::goOnline()
{
    if (host::Workspace* workspace = m_session.currentWorkspace())
        workspace->Model().SetJournal(nullptr);
    if (m_restoreRevisionControl && m_session.settings())
        m_session.settings()->SetUseSourceDataControl(true);
    m_restoreRevisionControl = false;
    m_offerWhenAnswered = m_journal && !m_journal->IsEmpty();
    m_sessionController.setOffline(OfflineReason::None);
    if (isOffline())  // at once again: the server cannot be reached
        return;
    emit message(Log::eMessage, tr("Working online again"));
    emit offlineChanged(false);
}

void OfflineWork::followSession()
{
    if (!m_journal)
        return;
    const SessionState server = m_sessionController.serverState();
    const OfflineReason offline = m_sessionController.offlineReason();
    if (offline == OfflineReason::None && server == SessionState::Unreachable && m_sessionController.revisionControlOn()) {
        goOffline(OfflineReason::ServerUnreachable);
        return;
    }
    // Any answer but "cannot reach" (a refused session included) says that the server is back.
    if (offline == OfflineReason::ServerUnreachable && server != SessionState::Unreachable) {
        goOnline();
        return;
    }
    if (offline != OfflineReason::None)
        return;
    journalWhileRevisionControlOff();
    if (m_offerWhenAnswered && m_sessionController.state() == SessionState::LoggedIn) {
        m_offerWhenAnswered = false;
        emit reconcileOffered();
    }
}

void OfflineWork::journalWhileRevisionControlOff()
{
    host::Workspace* workspace = m_session.currentWorkspace();
    if (!workspace)
        return;
    const bool off = m_sessionController.hasServer() && !m_sessionController.revisionControlOn();
    if (off == (workspace->Model().Journal() != nullptr))
        return;
    workspace->Model().SetJournal(off ? m_journal.get() : nullptr);
    if (off)
        emit message(Log::eMessage, tr("Revision control is off: the files edits change are recorded for reconciling"));
    else
        m_offerWhenAnswered = !m_journal->IsEmpty();
}

void OfflineWork::forget(const std::vector<std::string>& files)
{
    std::string error;
    if (m_journal && !m_journal->Forget(files, error))
        emit message(Log::eError, QString::fromStdString(error));
}

}  // namespace hbrc::studio
