#include "noticebar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace hbrc::studio {

NoticeBar::NoticeBar(QWidget* parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("noticeBar"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    auto* icon = new QLabel(this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(16, 16));
    m_text = new QLabel(this);
    m_text->setObjectName(QStringLiteral("noticeText"));
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    m_action = new QPushButton(this);
    m_action->setObjectName(QStringLiteral("noticeAction"));
    m_dismiss = new QPushButton(tr("&Dismiss"), this);
    m_dismiss->setObjectName(QStringLiteral("noticeDismiss"));
    for (QPushButton* button : {m_action, m_dismiss})
        button->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(icon);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_action);
    layout->addWidget(m_dismiss);
    connect(m_action, &QPushButton::clicked, this, [this] {
        const std::function<void()> act = m_notices.front().act;
        next();
        act();
    });
    connect(m_dismiss, &QPushButton::clicked, this, &NoticeBar::next);
    hide();
}

void NoticeBar::offer(const QString& text, const QString& actionText, std::function<void()> act)
{
    m_notices.push_back({text, actionText, std::move(act)});
    if (m_notices.size() == 1)
        showFirst();
}

void NoticeBar::clear()
{
    m_notices.clear();
    hide();
}

QString NoticeBar::text() const
{
    return m_notices.empty() ? QString() : m_notices.front().text;
}

void NoticeBar::showFirst()
{
    if (m_notices.empty()) {
        hide();
        return;
    }
    m_text->setText(m_notices.front().text);
    m_action->setText(m_notices.front().actionText);
    show();
}

void NoticeBar::next()
{
    if (!m_notices.empty())
        m_notices.pop_front();
    showFirst();
}

}  // namespace hbrc::studio
