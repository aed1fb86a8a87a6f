#include <hbrcdatamodel/assetfiles.h>

#include <QFile>

namespace hbrc::host {

namespace AssetFiles {

bool Remove(const QString& path, SaveReport& report)
{
    QFile file(path);
    if (!file.exists())
        return true;
    if (!file.remove()) {
        report.Fail(QFile::encodeName(path).toStdString(),
                    "the file cannot be removed (" + file.errorString().toStdString() + ")");
        return false;
    }
    report.deletedFiles.push_back(QFile::encodeName(path).toStdString());
    return true;
}

}  // namespace AssetFiles
}  // namespace hbrc::host
