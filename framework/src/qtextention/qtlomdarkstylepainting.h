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
// rect's size is handed to paint(QPainter&, const QRect& pixmapRect) and then cached.
template <typename Paint>
void drawCachedPixmap(QPainter* painter, const QString& key, const QRect& rect, Paint paint)
{
    if (rect.isEmpty())
        return;
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = QPixmap(rect.size());
        pixmap.fill(Qt::transparent);
        QPainter pixmapPainter(&pixmap);
        paint(pixmapPainter, QRect(QPoint(0, 0), rect.size()));
        pixmapPainter.end();
        QPixmapCache::insert(key, pixmap);
    }
    painter->drawPixmap(rect.topLeft(), pixmap);
}

}  // namespace tlomdark
