#include <hbrcdatamodel/assetfiles.h>

#include <log/log.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace hbrc::host {

namespace {

bool fail(const QString& path, const std::string& reason, SaveReport& report)
{
    const std::string encoded = QFile::encodeName(path).toStdString();
    Log::Singleton::Instance().GetStream(Log::eError) << "Could not save " << encoded << ": " << reason;
    report.failures.push_back({encoded, reason});
    return false;
}

bool isReadOnly(const QString& path)
{
    constexpr auto anyWrite = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    return QFileInfo::exists(path) && !(QFile::permissions(path) & anyWrite);
}

}  // namespace

namespace AssetFiles {

bool Write(const QString& path, const QByteArray& content, SaveReport& report)
{
    if (isReadOnly(path))
        return fail(path, "the file is read-only", report);
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return fail(path, "its folder cannot be created", report);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(path, file.errorString().toStdString(), report);
    if (file.write(content) != content.size() || !file.commit())
        return fail(path, file.errorString().toStdString(), report);
    report.writtenFiles.push_back(QFile::encodeName(path).toStdString());
    return true;
}

bool Remove(const QString& path, SaveReport& report)
{
    QFile file(path);
    if (!file.exists())
        return true;
    if (!file.remove())
        return fail(path, "the file cannot be removed (" + file.errorString().toStdString() + ")", report);
    report.deletedFiles.push_back(QFile::encodeName(path).toStdString());
    return true;
}

}  // namespace AssetFiles
}  // namespace hbrc::host
