#include <hbrcdatamodel/stagedwrites.h>

#include "durablewrites.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hbrc::host {

namespace {

void fail(const QString& path, const std::string& reason, SaveReport& report)
{
    report.Fail(QFile::encodeName(path).toStdString(), reason);
}

std::string lastError()
{
    return std::strerror(errno);
}

// Creates a new file beside target with target's permissions (a new target gets the usual
// permissions for new files); -1 when none can be created.
int createTemporary(const QByteArray& target, QByteArray& temporary)
{
    struct stat existing {};
    const bool exists = ::stat(target.constData(), &existing) == 0;
    for (int attempt = 0; attempt < 100; ++attempt) {
        temporary = target + '.' + QByteArray::number(QRandomGenerator::global()->generate(), 36);
        const int descriptor = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor < 0 && errno == EEXIST)
            continue;
        if (descriptor >= 0 && exists)
            ::fchmod(descriptor, existing.st_mode & 07777);
        return descriptor;
    }
    return -1;
}

}  // namespace

StagedWrites::~StagedWrites()
{
    for (const Staged& staged : m_staged) {
        if (!staged.renamed)
            ::unlink(staged.temporary.constData());
    }
}

std::optional<StagedWrites::Ticket> StagedWrites::Stage(const QString& path, const QByteArray& content,
                                                        SaveReport& report, const std::vector<Ticket>& renameAfter)
{
    const QFileInfo info(path);
    constexpr auto anyWrite = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    if (info.exists() && !info.isFile()) {
        fail(path, "a folder or other non-file is in its place", report);
        return std::nullopt;
    }
    if (info.exists() && !(info.permissions() & anyWrite)) {
        fail(path, "the file is read-only", report);
        return std::nullopt;
    }
    if (!QDir().mkpath(info.absolutePath())) {
        fail(path, "its folder cannot be created", report);
        return std::nullopt;
    }
    Staged staged{path, {}, renameAfter};
    const int descriptor = createTemporary(QFile::encodeName(path), staged.temporary);
    if (descriptor < 0) {
        fail(path, "a temporary file cannot be created beside it (" + lastError() + ")", report);
        return std::nullopt;
    }
    const bool written = DurableWrites::WriteAll(descriptor, content);
    const std::string reason = written ? std::string() : lastError();
#ifdef __linux__
    // Start the write-back now so that the flush pass of Commit() finds the data on its way.
    if (written)
        ::sync_file_range(descriptor, 0, 0, SYNC_FILE_RANGE_WRITE);
#endif
    ::close(descriptor);
    if (!written) {
        ::unlink(staged.temporary.constData());
        fail(path, "it cannot be written (" + reason + ")", report);
        return std::nullopt;
    }
    m_staged.push_back(std::move(staged));
    return m_staged.size() - 1;
}

std::set<QString> StagedWrites::Commit(SaveReport& report)
{
    // Each temporary file is flushed before any rename, so that no rename can reach the disk
    // ahead of the content it puts in place.
    std::vector<bool> durable(m_staged.size());
    for (std::size_t i = 0; i < m_staged.size(); ++i)
        durable[i] = DurableWrites::Flush(m_staged[i].temporary);

    std::set<QString> written;
    std::set<QByteArray> folders;
    for (std::size_t i = 0; i < m_staged.size(); ++i) {
        Staged& staged = m_staged[i];
        const bool ready = std::all_of(staged.renameAfter.begin(), staged.renameAfter.end(),
                                       [this](Ticket before) { return m_staged[before].renamed; });
        if (!ready)
            continue;  // what it depends on was reported
        if (!durable[i]) {
            fail(staged.target, "it cannot be flushed to the disk", report);
            continue;
        }
        const QByteArray target = QFile::encodeName(staged.target);
        if (::rename(staged.temporary.constData(), target.constData()) != 0) {
            fail(staged.target, "the new content cannot be put in place (" + lastError() + ")", report);
            continue;
        }
        staged.renamed = true;
        folders.insert(QFile::encodeName(QFileInfo(staged.target).absolutePath()));
        report.writtenFiles.push_back(target.toStdString());
        written.insert(staged.target);
    }
    // The renames are durable once their folders are.
    for (const QByteArray& folder : folders)
        DurableWrites::Flush(folder);
    return written;
}

}  // namespace hbrc::host
