#include "hostimages.h"

#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QPolygon>

namespace {

QPixmap arrow(bool pointingUp)
{
    QPixmap pixmap(9, 5);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(200, 200, 200));
    const QPolygon triangle = pointingUp ? QPolygon({QPoint(0, 5), QPoint(9, 5), QPoint(4, 0)})
                                         : QPolygon({QPoint(0, 0), QPoint(9, 0), QPoint(4, 5)});
    painter.drawPolygon(triangle);
    return pixmap;
}

}  // namespace

void supplyHostImages()
{
    QPixmapCache::insert(QStringLiteral("arrowUp.png"), arrow(true));
    QPixmapCache::insert(QStringLiteral("arrowDown.png"), arrow(false));
}
