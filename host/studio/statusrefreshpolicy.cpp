#include "statusrefreshpolicy.h"

#include "assetbrowsermodel.h"
#include "revisionoperations.h"
#include "studiosession.h"

#include <QTimer>

#include <chrono>

namespace hbrc::studio {

namespace {
constexpr qint64 kActivationRefreshGapMs = 3000;
}  // namespace

StatusRefreshPolicy::StatusRefreshPolicy(StudioSession& session, AssetBrowserModel& model,
                                         RevisionOperations& operations, std::function<bool()> paused,
                                         QObject* parent)
    : QObject(parent), m_session(session), m_model(model), m_operations(operations), m_paused(std::move(paused)),
      m_timer(new QTimer(this))
{
    connect(m_timer, &QTimer::timeout, this, &StatusRefreshPolicy::refreshUnlessPaused);
    applyInterval();
}

void StatusRefreshPolicy::refresh()
{
    askStatus();
    if (m_session.currentWorkspace() && !m_held)
        m_operations.refreshPending();
}

void StatusRefreshPolicy::askStatus()
{
    if (m_held || !m_session.currentWorkspace() || !m_session.services().dataControl)
        return;
    m_lastRefresh.start();
    m_model.refreshStatus(m_session.sessionAccount());
}

void StatusRefreshPolicy::applyInterval()
{
    const int seconds = m_session.statusRefreshSeconds();
    if (seconds > 0)
        m_timer->start(std::chrono::seconds(seconds));
    else
        m_timer->stop();
}

void StatusRefreshPolicy::windowActivated()
{
    if (!m_lastRefresh.isValid() || m_lastRefresh.hasExpired(kActivationRefreshGapMs))
        refreshUnlessPaused();
}

void StatusRefreshPolicy::refreshUnlessPaused()
{
    if (!m_paused())
        refresh();
}

}  // namespace hbrc::studio
