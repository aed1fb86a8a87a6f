#include <qtextention/qsplitterhandlewithbutton.h>

#include <QPushButton>
#include <QResizeEvent>
#include <QSplitter>
#include <QStyle>

namespace {

// The buttons are 20 pixels wider than the handle and hang over its start (left button) or end
// (right button); the padding keeps the icon inside the part that the handle shows.
constexpr int kButtonOverhang = 20;

QStyle::StandardPixmap arrowPixmap(Qt::Orientation orientation, bool towardsStart)
{
    if (orientation == Qt::Horizontal)
        return towardsStart ? QStyle::SP_ArrowLeft : QStyle::SP_ArrowRight;
    return towardsStart ? QStyle::SP_ArrowUp : QStyle::SP_ArrowDown;
}

}  // namespace

QSplitterHandleWithButton::QSplitterHandleWithButton(Qt::Orientation orientation, QSplitter* parent,
                                                     bool withRightButton)
    : QSplitterHandle(orientation, parent)
{
    m_leftButton = makeButton(&QSplitterHandleWithButton::onLeftClicked, QStringLiteral("leftButton"));
    m_leftButton->setStyleSheet(QStringLiteral("QPushButton { border: none; padding-left: %1px; }").arg(kButtonOverhang));
    if (withRightButton) {
        m_rightButton = makeButton(&QSplitterHandleWithButton::onRightClicked, QStringLiteral("rightButton"));
        m_rightButton->setStyleSheet(
            QStringLiteral("QPushButton { border: none; padding-right: %1px; }").arg(kButtonOverhang));
    }
    updateArrows(false, false);
}

QPushButton* QSplitterHandleWithButton::makeButton(void (QSplitterHandleWithButton::*slot)(), const QString& objectName)
{
    auto* button = new QPushButton(this);
    button->setObjectName(objectName);
    button->setCursor(Qt::ArrowCursor);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QPushButton::clicked, this, slot);
    return button;
}

void QSplitterHandleWithButton::updateArrows(bool paneBeforeCollapsed, bool paneAfterCollapsed)
{
    m_leftButton->setIcon(style()->standardIcon(arrowPixmap(orientation(), !paneBeforeCollapsed)));
    if (m_rightButton)
        m_rightButton->setIcon(style()->standardIcon(arrowPixmap(orientation(), paneAfterCollapsed)));
}

void QSplitterHandleWithButton::onLeftClicked()
{
    emit onLeftClick(this);
}

void QSplitterHandleWithButton::onRightClicked()
{
    emit onRightClick(this);
}

void QSplitterHandleWithButton::resizeEvent(QResizeEvent* event)
{
    QSplitterHandle::resizeEvent(event);
    const int w = event->size().width();
    const int h = event->size().height();
    const QSize buttonSize(w + kButtonOverhang, h / 5);
    const QSize iconSize(w, qMin(w, h / 5));

    m_leftButton->resize(buttonSize);
    m_leftButton->setIconSize(iconSize);
    m_leftButton->move(w - m_leftButton->width(), h / 9);
    if (m_rightButton) {
        m_rightButton->resize(buttonSize);
        m_rightButton->setIconSize(iconSize);
        m_rightButton->move(0, h - h / 9 - h / 5);
    }
}
