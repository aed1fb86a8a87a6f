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
    connect(&m_reader, &WorkspaceReader::batchRead, this, &WorkspaceController::addBatch);
    connect(&m_reader, &WorkspaceReader::finished, this, &WorkspaceController::finishOpening);
}

bool WorkspaceController::open(const QString& folder)
{
    emit aboutToLeave();
    m_reader.cancel();
    m_opening = nullptr;
    m_sessionController.workspaceClosed();
    std::string error;
    host::Workspace* workspace = m_session.beginOpening(folder, error);
    if (!workspace) {
        emit message(Log::eError, tr("Cannot open the workspace %1: %2").arg(folder, QString::fromStdString(error)));
        return false;
    }
    m_opening = workspace;
    emit opening(workspace);
    m_reader.start(workspace->Root());
    return true;
}

void WorkspaceController::addBatch(const std::shared_ptr<WorkspaceReader::Batch>& batch, int read, int total)
{
    emit assetsRead(m_opening->AddRead(std::move(*batch)), read, total);
}

void WorkspaceController::finishOpening()
{
    m_opening->LogLoaded();
    host::Workspace* workspace = m_session.finishOpening();
    m_sessionController.workspaceOpened();  // may ask for a password: still opening until it is done
    m_opening = nullptr;
    emit opened(workspace);
}

void WorkspaceController::close()
{
    emit aboutToLeave();
    m_reader.cancel();
    m_opening = nullptr;
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
