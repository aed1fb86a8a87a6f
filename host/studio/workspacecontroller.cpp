#include "workspacecontroller.h"

#include "demodepot.h"
#include "sessioncontroller.h"
#include "studiosession.h"

#include <log/log.h>

#include <QElapsedTimer>

namespace hbrc::studio {

namespace {
// A slice adds files until it has taken this long, so that the window paints and answers between
// slices; the files are taken from the reader a few at a time.
constexpr qint64 kSliceMs = 8;
constexpr std::size_t kFilesPerTake = 64;
}  // namespace

WorkspaceController::WorkspaceController(StudioSession& session, SessionController& sessionController,
                                         QObject* parent)
    : QObject(parent), m_session(session), m_sessionController(sessionController)
{
    m_slices = new QTimer(this);
    m_slices->setInterval(0);
    connect(m_slices, &QTimer::timeout, this, &WorkspaceController::addSlice);
    connect(&m_reader, &WorkspaceReader::readable, m_slices, qOverload<>(&QTimer::start));
    connect(&sessionController, &SessionController::logInAtOpenDone, this, &WorkspaceController::loggedInAtOpen);
}

bool WorkspaceController::open(const QString& folder)
{
    emit aboutToLeave();
    m_reader.cancel();
    m_slices->stop();
    m_opening = nullptr;
    m_sessionController.workspaceClosed();
    std::string error;
    host::Workspace* workspace = m_session.beginOpening(folder, error);
    if (!workspace) {
        emit message(Log::eError, tr("Cannot open the workspace %1: %2").arg(folder, QString::fromStdString(error)));
        return false;
    }
    m_opening = workspace;
    m_added = 0;
    emit opening(workspace);
    m_reader.start(workspace->Root());
    return true;
}

void WorkspaceController::addSlice()
{
    if (!m_opening) {
        m_slices->stop();
        return;
    }
    QElapsedTimer spent;
    spent.start();
    std::vector<std::uint32_t> added;
    for (;;) {
        WorkspaceReader::Batch files = m_reader.take(kFilesPerTake);
        if (files.empty()) {
            m_slices->stop();  // until the reader has more
            break;
        }
        if (m_added == 0)
            m_opening->Reserve(std::size_t(m_reader.total()));
        m_added += int(files.size());
        const std::vector<std::uint32_t> assetSlots = m_opening->AddRead(std::move(files));
        added.insert(added.end(), assetSlots.begin(), assetSlots.end());
        if (spent.hasExpired(kSliceMs))
            break;
    }
    if (!added.empty())
        emit assetsRead(added, m_added, m_reader.total());
    if (!m_reader.isReading()) {
        m_slices->stop();
        finishOpening();
    }
}

// The log-in runs on a worker and may end in the Log In prompt: still opening until it is done.
void WorkspaceController::finishOpening()
{
    m_opening->LogLoaded();
    m_session.finishOpening();
    m_sessionController.workspaceOpened();
}

void WorkspaceController::loggedInAtOpen()
{
    if (!m_opening || m_reader.isReading())
        return;  // a retry's log-in
    host::Workspace* workspace = m_session.currentWorkspace();
    m_opening = nullptr;
    emit opened(workspace);
}

void WorkspaceController::close()
{
    emit aboutToLeave();
    m_reader.cancel();
    m_slices->stop();
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
