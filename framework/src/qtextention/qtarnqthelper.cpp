#include <qtextention/qtarnqthelper.h>

#include <QPixmapCache>

#include <memory>

QPixmap QtarnQtHelper::getCachedPixmap(const char* name)
{
    const QString key = QString::fromLatin1(name);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    const std::unique_ptr<QPixmap> created(createPixmap(name));
    if (!created)
        return QPixmap();
    QPixmapCache::insert(key, *created);
    return *created;
}

QPixmap* QtarnQtHelper::createPixmap(const char* /*name*/)
{
    return nullptr;
}
