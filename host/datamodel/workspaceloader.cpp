#include <hbrcdatamodel/workspaceloader.h>

#include <hbrcdatamodel/kelformat.h>
#include <hbrcdatamodel/objectstore.h>

#include <log/log.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>

namespace hbrc::host {

namespace {

void reportSkipped(const QString& path, const std::string& reason)
{
    Log::Singleton::Instance().GetStream(Log::eError)
        << "Skipping asset file " << QFile::encodeName(path).toStdString() << ": " << reason;
}

}  // namespace

WorkspaceLoader::Outcome WorkspaceLoader::Load(const QString& root, ObjectStore& store)
{
    Outcome outcome;
    const QDir rootDir(root);
    // Sorted, so that which of two files claiming one id is loaded does not depend on the disk.
    QStringList paths;
    QDirIterator files(root, {QStringLiteral("*.kel")}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();
    for (const QString& path : std::as_const(paths)) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            reportSkipped(path, "cannot be read (" + file.errorString().toStdString() + ")");
            ++outcome.skipped;
            continue;
        }
        AssetRecord record;
        std::string error;
        if (!KelFormat::Parse(file.readAll().toStdString(), record, error)) {
            reportSkipped(path, error);
            ++outcome.skipped;
            continue;
        }
        if (record.version == 0)
            record.version = 1;  // a hand-written file that was never saved still exists on disk
        const std::string relative = QFile::encodeName(rootDir.relativeFilePath(path)).toStdString();
        const std::string id = record.id;
        if (store.AddAsset(std::move(record), relative) == ObjectStore::kNoSlot) {
            reportSkipped(path, "its id \"" + id + "\" or the id of one of its parts is used by another asset");
            ++outcome.skipped;
            continue;
        }
        ++outcome.loaded;
    }
    return outcome;
}

}  // namespace hbrc::host
