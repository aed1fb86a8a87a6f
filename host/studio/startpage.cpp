#include "startpage.h"

#include <qtextention/qhyperlink.h>

#include <QLabel>
#include <QVBoxLayout>

namespace hbrc::studio {

StartPage::StartPage(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("startPage"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 48, 48, 48);
    auto* title = new QLabel(tr("Start"), this);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    title->setFont(large);
    layout->addWidget(title);
    auto* open = new QHyperlink(tr("Open a workspace folder..."), this);
    open->setObjectName(QStringLiteral("openFolderLink"));
    connect(open, &QHyperlink::clicked, this, &StartPage::openFolderRequested);
    layout->addWidget(open, 0, Qt::AlignLeft);
    auto* demo = new QHyperlink(tr("Create a demo depot"), this);
    demo->setObjectName(QStringLiteral("createDemoLink"));
    demo->setToolTip(tr("A depot with the users alice and bob and a sample workspace of about twenty assets"));
    connect(demo, &QHyperlink::clicked, this, &StartPage::createDemoRequested);
    layout->addWidget(demo, 0, Qt::AlignLeft);
    layout->addSpacing(24);
    layout->addWidget(new QLabel(tr("Recent workspaces"), this));
    m_recent = new QVBoxLayout;
    layout->addLayout(m_recent);
    layout->addStretch(1);
}

void StartPage::setRecentWorkspaces(const QStringList& folders)
{
    while (QLayoutItem* item = m_recent->takeAt(0)) {
        if (QWidget* old = item->widget())
            old->deleteLater();  // may be the link whose click led here
        delete item;
    }
    if (folders.isEmpty())
        m_recent->addWidget(new QLabel(tr("(none yet)"), this));
    for (const QString& folder : folders) {
        auto* link = new QHyperlink(folder, this);
        connect(link, &QHyperlink::clicked, this, [this, folder] { emit openRecentRequested(folder); });
        m_recent->addWidget(link, 0, Qt::AlignLeft);
    }
}

}  // namespace hbrc::studio
