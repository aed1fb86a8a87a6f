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
    const QStringList paths = AssetFiles(root);
    store.Reserve(std::size_t(paths.size()));
    std::string text;  // one buffer for every file
    for (const QString& path : paths)
        Add(Read(root, path, text), store, outcome);
    return outcome;
}

QStringList WorkspaceLoader::AssetFiles(const QString& root)
{
    QStringList paths;
    QDirIterator files(root, {QStringLiteral("*.kel")}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();
    return paths;
}

WorkspaceLoader::ReadFile WorkspaceLoader::Read(const QString& root, const QString& path, std::string& buffer)
{
    ReadFile file;
    file.path = path;
    if (!readWholeFile(path, buffer, file.error)) {
        file.error = "cannot be read (" + file.error + ")";
        return file;
    }
    if (!KelFormat::Parse(buffer, file.record, file.error))
        return file;
    if (file.record.version == 0)
        file.record.version = 1;  // a hand-written file that was never saved still exists on disk
    const QDir rootDir(root);
    const QString prefix = rootDir.path() + QLatin1Char('/');
    file.kelPath = QFile::encodeName(path.startsWith(prefix) ? path.mid(prefix.size()) : rootDir.relativeFilePath(path))
                       .toStdString();
    return file;
}

std::uint32_t WorkspaceLoader::Add(ReadFile file, ObjectStore& store, Outcome& outcome)
{
    if (!file.error.empty()) {
        reportSkipped(file.path, file.error);
        ++outcome.skipped;
        return ObjectStore::kNoSlot;
    }
    const std::string id = file.record.id;
    const std::uint32_t slot = store.AddAsset(std::move(file.record), std::move(file.kelPath));
    if (slot == ObjectStore::kNoSlot) {
        reportSkipped(file.path, "its id \"" + id + "\" or the id of one of its parts is used by another asset");
        ++outcome.skipped;
        return slot;
    }
    ++outcome.loaded;
    return slot;
}

}  // namespace hbrc::host
