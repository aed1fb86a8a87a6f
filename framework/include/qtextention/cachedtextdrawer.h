#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QString>

#include <list>
#include <unordered_map>

class QPainter;

/// Paints short texts that repeat (status words, counts, badges in item views) from pixmaps
/// rendered once per text, font, colours and device pixel ratio. The cache holds at most
/// capacity entries and forgets the least recently used first.
class QTEXTENTION_EXPORT CachedTextDrawer
{
public:
    struct Look
    {
        QFont font;
        QColor text;
        QColor background = Qt::transparent;  // a badge: rounded rectangle behind the text
    };

    explicit CachedTextDrawer(int capacity = 256);

    /// Draws text with its top left corner at topLeft; returns the size it took.
    QSize draw(QPainter& painter, const QPoint& topLeft, const QString& text, const Look& look);
    /// The size text takes when drawn with look.
    QSize size(const QString& text, const Look& look);

    int cachedCount() const { return int(m_entries.size()); }
    /// Texts rendered so far (each miss renders once).
    int renderCount() const { return m_renders; }

private:
    const QPixmap& pixmap(const QString& text, const Look& look, qreal pixelRatio);

    struct Entry
    {
        QString key;
        QPixmap pixmap;
    };
    int m_capacity;
    int m_renders = 0;
    std::list<Entry> m_entries;  // most recently used first
    std::unordered_map<QString, std::list<Entry>::iterator> m_index;
};
