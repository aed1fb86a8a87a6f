#include <hbrcdatamodel/workspacestatefile.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

namespace hbrc::host {

QString WorkspaceStateFile(const QString& folder, const QString& root, const QString& extension)
{
    const QByteArray key = QCryptographicHash::hash(QFile::encodeName(QDir(root).absolutePath()), QCryptographicHash::Sha1);
    return QDir(folder).filePath(QString::fromLatin1(key.toHex()) + '.' + extension);
}

}  // namespace hbrc::host
