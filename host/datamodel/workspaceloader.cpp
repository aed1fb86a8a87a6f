#include <hbrcdatamodel/workspaceloader.h>

#include <hbrcdatamodel/kelformat.h>
#include <hbrcdatamodel/objectstore.h>

#include <log/log.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hbrc::host {

namespace {

void reportSkipped(const QString& path, const std::string& reason)
{
    Log::Singleton::Instance().GetStream(Log::eError)
        << "Skipping asset file " << QFile::encodeName(path).toStdString() << ": " << reason;
}

// Reads the whole file into text with one read for its size; false with the reason otherwise.
bool readWholeFile(const QString& path, std::string& text, std::string& error)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    struct stat info {};
    if (fd < 0 || ::fstat(fd, &info) != 0) {
        error = std::strerror(errno);
        if (fd >= 0)
            ::close(fd);
        return false;
    }
    text.resize(std::size_t(info.st_size));
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t got = ::read(fd, text.data() + done, text.size() - done);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            error = got < 0 ? std::strerror(errno) : "the file shrank while it was read";
            ::close(fd);
            return false;
        }
        done += std::size_t(got);
    }
    ::close(fd);
    return true;
}

}  // namespace

WorkspaceLoader::Outcome WorkspaceLoader::Load(const QString& root, ObjectStore& store)
{
    Outcome outcome;
    const QDir rootDir(root);
    const QString prefix = rootDir.path() + QLatin1Char('/');
    // Sorted, so that which of two files claiming one id is loaded does not depend on the disk.
    QStringList paths;
    QDirIterator files(root, {QStringLiteral("*.kel")}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();
    store.Reserve(std::size_t(paths.size()));
    std::string text;  // one buffer for every file
    for (const QString& path : std::as_const(paths)) {
        std::string error;
        if (!readWholeFile(path, text, error)) {
            reportSkipped(path, "cannot be read (" + error + ")");
            ++outcome.skipped;
            continue;
        }
        AssetRecord record;
        if (!KelFormat::Parse(text, record, error)) {
            reportSkipped(path, error);
            ++outcome.skipped;
            continue;
        }
        if (record.version == 0)
            record.version = 1;  // a hand-written file that was never saved still exists on disk
        const std::string relative = QFile::encodeName(
            path.startsWith(prefix) ? path.mid(prefix.size()) : rootDir.relativeFilePath(path)).toStdString();
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
