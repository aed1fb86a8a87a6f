#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QPixmap>

/// Named pixmaps (images such as "arrowUp.png") for the dark styles, served from QPixmapCache.
/// The host supplies them by inserting them into QPixmapCache under their names before painting;
/// a name nobody supplied yields a null pixmap, and the styles then draw nothing for it.
class QTEXTENTION_EXPORT QtarnQtHelper final
{
public:
    QtarnQtHelper() = delete;

    /// The cached pixmap of that name; on a miss, one made by createPixmap is cached and returned.
    static QPixmap getCachedPixmap(const char* name);

    /// The pixmap the toolkit itself can make for a name, owned by the caller: none so far, so
    /// always null. The images come from the host through the cache.
    static QPixmap* createPixmap(const char* name);
};
