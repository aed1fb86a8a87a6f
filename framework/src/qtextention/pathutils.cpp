#include <qtextention/pathutils.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace {

QString decoded(const char* path)
{
    return QFile::decodeName(path);
}

// Qt takes a path that starts with ':' for one of its resources; these helpers deal with files, so
// such a name is handed to Qt as what it is, a name relative to the current folder.
QString onDisk(const QString& path)
{
    return path.startsWith(QLatin1Char(':')) ? QStringLiteral("./") + path : path;
}

QString onDisk(const char* path)
{
    return onDisk(decoded(path));
}

// visited holds the canonical folders already searched, so that a link back up the tree cannot
// make an unlimited (negative depth) search run forever.
bool findFileBelow(const QString& dir, const QString& name, int depth, QSet<QString>& visited)
{
    if (depth == 0)
        return false;
    const QDir directory(dir);
    const QString canonical = directory.canonicalPath();
    if (!canonical.isEmpty() && visited.contains(canonical))
        return false;
    visited.insert(canonical);
    const QFileInfoList entries = directory.entryInfoList(directory.filter() | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& entry : entries) {
        if (entry.isFile() && entry.filePath().indexOf(name) != -1)
            return true;
        if (entry.isDir() && findFileBelow(entry.absoluteFilePath(), name, depth - 1, visited))
            return true;
    }
    return false;
}

}  // namespace

bool ArePathEqual(const char* a, const char* b)
{
    return QFileInfo(onDisk(a)) == QFileInfo(onDisk(b));
}

QString MakePathRelative(const char* base, const char* path)
{
    const QString target = decoded(path);
    if (QDir::isRelativePath(onDisk(target)))
        return target;
    return QDir(onDisk(base)).relativeFilePath(target);
}

QString MakePathAbsolute(const char* base, const char* path)
{
    const QString target = onDisk(path);
    if (QDir::isAbsolutePath(target))
        return CleanPath(path);
    return QDir::cleanPath(QDir(onDisk(base)).absoluteFilePath(target));
}

QString CleanPath(const char* path)
{
    return QDir::cleanPath(decoded(path));
}

bool PathExists(const char* path)
{
    return QFileInfo(onDisk(path)).exists();
}

QString MakePath(const char* a, const char* b, const char* c, const char* d)
{
    QString joined = decoded(a) + QLatin1Char('/') + decoded(b);
    if (c)
        joined += QLatin1Char('/') + decoded(c);
    if (d)
        joined += QLatin1Char('/') + decoded(d);
    return QDir::cleanPath(joined);
}

bool FindFileRecursive(const char* dir, const char* name, int depth)
{
    QSet<QString> visited;
    return findFileBelow(onDisk(dir), decoded(name), depth, visited);
}

bool IsSubDirectory(const QString& directory, const QString& path)
{
    const QStringList outer = QDir::cleanPath(directory).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    const QStringList inner = QDir::cleanPath(path).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (outer.size() > inner.size())
        return false;
    for (int i = 0; i < outer.size(); ++i) {
        if (outer.at(i).compare(inner.at(i), Qt::CaseInsensitive) != 0)
            return false;
    }
    return true;
}

bool IsDirectoryPathValid(const QString& path)
{
    static const QRegularExpression pattern(QStringLiteral(R"re(^([a-zA-Z]:)?(\\[^<>:"/\\|?*]+)+\\?$)re"));
    return pattern.match(path).hasMatch() || QFileInfo(onDisk(path)).isDir();
}

bool IsFilePathValid(const QString& path)
{
    static const QRegularExpression pattern(QStringLiteral(R"re(^([a-zA-Z]:[/\\])?[^<>:"|?*]+([^/\\]+)$)re"));
    return pattern.match(path).hasMatch() && !QFileInfo(onDisk(path)).isDir();
}
