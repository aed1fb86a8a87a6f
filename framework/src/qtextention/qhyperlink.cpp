#include <qtextention/qhyperlink.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

QHyperlink::QHyperlink(const QString& text, QWidget* parent) : QLabel(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setForegroundRole(QPalette::Link);
    setMargin(2);  // room for the focus frame
    setLinkText(text);
}

void QHyperlink::setLinkText(const QString& text)
{
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
    setText(text);
    setAccessibleName(text);
}

void QHyperlink::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        emit clicked();
    QLabel::mouseReleaseEvent(event);
}

void QHyperlink::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        emit clicked();
        return;
    default:
        QLabel::keyPressEvent(event);
    }
}

// The dark styles draw no focus frame around a label, so the link draws its own.
void QHyperlink::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    if (!hasFocus())
        return;
    QPainter painter(this);
    painter.setPen(QPen(palette().color(foregroundRole()), 1, Qt::DotLine));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void QHyperlink::focusInEvent(QFocusEvent* event)
{
    QLabel::focusInEvent(event);
    update();
}

void QHyperlink::focusOutEvent(QFocusEvent* event)
{
    QLabel::focusOutEvent(event);
    update();
}
