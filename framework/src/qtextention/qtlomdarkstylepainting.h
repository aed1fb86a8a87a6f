#pragma once

// Painting helpers shared by the dark styles. Every hand-painted element goes through
// drawCachedPixmap: it is painted once per key into QPixmapCache and blitted afterwards.

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>
#include <QRect>
#include <QString>

class QStyleOption;

namespace tlomdark {

// The pixmap-cache key of an element: its name, the option's state, active sub-controls (complex
// options only), palette serial number and the size. Any change of these paints the element anew.
QString uniqueName(const QString& key, const QStyleOption* option, const QSize& size);

// Per channel a * factor / 100 + b * (100 - factor) / 100, each quotient truncated; a's alpha.
QColor mergedColors(const QColor& a, const QColor& b, int factor);

// A vertical gradient from top to bottom over rect, taken from (or put into) the pixmap cache.
// The flag does not change the drawing; callers pass false.
void tlomDarkStyleDrawGradient(QPainter* painter, const QRect& rect, const QColor& top, const QColor& bottom,
                               bool);

// Draws the pixmap cached under key at rect's top-left corner. On a miss, a transparent pixmap of
// rect's size is handed to paint(QPainter&, const QRect& pixmapRect) and then cached. The pixmap
// has the painted device's pixel ratio, so that a high-density screen gets every device pixel;
// each ratio other than 1 has its own cache entry (the key with "@<ratio>x" appended). With the
// pixmap cache switched off (a limit of 0) the element is painted straight onto the device.
template <typename Paint>
void drawCachedPixmap(QPainter* painter, const QString& key, const QRect& rect, Paint paint)
{
    if (rect.isEmpty())
        return;
    if (QPixmapCache::cacheLimit() <= 0) {
        painter->save();
        painter->translate(rect.topLeft());
        paint(*painter, QRect(QPoint(0, 0), rect.size()));
        painter->restore();
        return;
    }
    const qreal ratio = painter->device() ? painter->device()->devicePixelRatio() : 1.0;
    const QString keyAtRatio = ratio == 1.0 ? key : key + QStringLiteral("@%1x").arg(ratio);
    QPixmap pixmap;
    if (!QPixmapCache::find(keyAtRatio, &pixmap)) {
        pixmap = QPixmap(rect.size() * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter pixmapPainter(&pixmap);
        paint(pixmapPainter, QRect(QPoint(0, 0), rect.size()));
        pixmapPainter.end();
        QPixmapCache::insert(keyAtRatio, pixmap);
    }
    painter->drawPixmap(rect.topLeft(), pixmap);
}

}  // namespace tlomdark
