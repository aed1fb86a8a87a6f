#include "workspacecontroller.h"

#include "demodepot.h"
#include "sessioncontroller.h"
#include "studiosession.h"

#include <log/log.h>

namespace hbrc::studio {

WorkspaceController::WorkspaceController(StudioSession& session, SessionController& sessionController,
                                         QObject* parent)
    : QObject(parent), m_session(session), m_sessionController(sessionController)
{
}

bool WorkspaceController::open(const QString& folder)
{
    emit aboutToLeave();
    std::string error;
    host::Workspace* workspace = m_session.open(folder, error);
    if (!workspace) {
        emit message(Log::eError, tr("Cannot open the workspace %1: %2").arg(folder, QString::fromStdString(error)));
        return false;
    }
    m_sessionController.workspaceOpened();
    emit opened(workspace);
    return true;
}

void WorkspaceController::close()
{
    emit aboutToLeave();
    m_session.close();
    m_sessionController.workspaceClosed();
    m_session.host().Commands().Clear();
    emit closed();
}

bool WorkspaceController::openNewDemo(const QString& parent)
{
    try {
        std::unique_ptr<DemoServer> server;
        const QString folder = CreateDemoDepot(parent, server);
        m_session.storeAccount({server->path(), "alice", server->workspace("alice"), {}});
        m_session.setPassword("alice-pw");
        emit message(Log::eMessage,
                     tr("Created a demo depot in %1 (users alice and bob, passwords alice-pw and bob-pw)").arg(folder));
        return open(server->folder("alice"));
    } catch (const DemoError& error) {
        emit message(Log::eError, tr("Cannot create a demo depot: %1").arg(QString::fromUtf8(error.what())));
        return false;
    }
}

}  // namespace hbrc::studio
