#include "studiostatusbar.h"

#include "account.h"

#include <qtextention/qhyperlink.h>

#include <QLabel>

namespace hbrc::studio {

namespace {
constexpr int kMessageTimeoutMs = 5000;
}  // namespace

StudioStatusBar::StudioStatusBar(QWidget* parent) : QStatusBar(parent)
{
    for (QLabel** label : {&m_server, &m_user, &m_workspace}) {
        *label = new QLabel(this);
        addPermanentWidget(*label);
    }
    m_session = new QHyperlink(QString(), this);
    m_session->setObjectName(QStringLiteral("sessionState"));
    addPermanentWidget(m_session);
    connect(m_session, &QHyperlink::clicked, this,
            [this] { emit sessionClicked(m_session->mapToGlobal(QPoint(0, 0))); });
}

void StudioStatusBar::showSession(const Account& account, const QString& workspace, const QString& sessionState)
{
    m_server->setText(tr("Server: %1").arg(account.server.empty() ? tr("none") : QString::fromStdString(account.server)));
    m_user->setText(tr("User: %1").arg(QString::fromStdString(account.userName)));
    m_workspace->setText(tr("Workspace: %1").arg(workspace.isEmpty() ? tr("none") : workspace));
    m_session->setLinkText(tr("Session: %1").arg(sessionState));
}

void StudioStatusBar::showBriefly(const QString& text)
{
    showMessage(text, kMessageTimeoutMs);
}

}  // namespace hbrc::studio
