#include <qtextention/guards.h>
#include <qtextention/qcolorframe.h>

#include <QPainter>

QColorFrame::QColorFrame(QWidget* parent) : QFrame(parent)
{
    setFrameStyle(QFrame::Panel | QFrame::Sunken);
    setMinimumSize(16, 12);
}

void QColorFrame::setColor(const QColor& color)
{
    if (color == m_color)
        return;
    m_color = color;
    update();
}

void QColorFrame::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    const QRect inside = contentsRect();
    if (!m_color.isValid()) {
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(inside.topLeft(), inside.bottomRight());
        painter.drawLine(inside.bottomLeft(), inside.topRight());
        return;
    }
    if (m_color.alpha() < 255) {
        const int cell = 4;
        for (int y = inside.top(); y <= inside.bottom(); y += cell)
            for (int x = inside.left(); x <= inside.right(); x += cell)
                painter.fillRect(QRect(x, y, cell, cell).intersected(inside),
                                 ((x + y) / cell) % 2 ? Qt::lightGray : Qt::darkGray);
    }
    painter.fillRect(inside, m_color);
}
