#include <qtextention/qhyperlink.h>

#include <QKeyEvent>
#include <QMouseEvent>

QHyperlink::QHyperlink(const QString& text, QWidget* parent) : QLabel(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setForegroundRole(QPalette::Link);
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
