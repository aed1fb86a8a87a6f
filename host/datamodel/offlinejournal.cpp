#include <hbrcdatamodel/offlinejournal.h>

#include <hbrcdatamodel/workspacestatefile.h>

#include "durablewrites.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace hbrc::host {

namespace {

constexpr char kLetters[] = {'W', 'C', 'D'};

QByteArray lineOf(const std::string& path, OfflineJournal::Change change)
{
    return kLetters[static_cast<int>(change)] + QByteArray(" ") +
           QByteArray::fromStdString(path).toPercentEncoding("/ ", "\r\n") + '\n';
}

// The change a line's letter stands for; -1 for none.
int changeOf(char letter)
{
    for (int change = 0; change < int(sizeof kLetters); ++change)
        if (kLetters[change] == letter)
            return change;
    return -1;
}

// Writes content to a descriptor and flushes it; closes it in any case.
bool writeDurably(int descriptor, const QByteArray& content)
{
    const bool durable = DurableWrites::WriteAll(descriptor, content) && ::fsync(descriptor) == 0;
    return ::close(descriptor) == 0 && durable;
}

void flushFolderOf(const QByteArray& file)
{
    DurableWrites::Flush(QFile::encodeName(QFileInfo(QFile::decodeName(file)).absolutePath()));
}

std::string failure(const char* what, const QString& file)
{
    return std::string(what) + " the offline journal " + QFile::encodeName(file).toStdString() + ": " +
           std::strerror(errno);
}

}  // namespace

OfflineJournal::OfflineJournal(QString file) : m_file(std::move(file))
{
    QFile journal(m_file);
    if (!journal.open(QIODevice::ReadOnly))
        return;
    // A line cut short by a crash has no end: its file had not changed yet.
    const QList<QByteArray> lines = journal.readAll().split('\n');
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        const QByteArray& line = lines[i];
        const int change = line.size() < 3 || line[1] != ' ' ? -1 : changeOf(line[0]);
        if (change >= 0)
            m_entries[QByteArray::fromPercentEncoding(line.mid(2)).toStdString()] = static_cast<Change>(change);
    }
}

QString OfflineJournal::FileFor(const QString& folder, const QString& root)
{
    return WorkspaceStateFile(folder, root, QStringLiteral("journal"));
}

bool OfflineJournal::Record(const std::string& path, Change change, std::string& errorText)
{
    const auto known = m_entries.find(path);
    if (known != m_entries.end() && known->second == change)
        return true;
    if (!QDir().mkpath(QFileInfo(m_file).absolutePath())) {
        errorText = "Cannot create the folder of the offline journal " + QFile::encodeName(m_file).toStdString();
        return false;
    }
    const QByteArray file = QFile::encodeName(m_file);
    const bool created = !QFileInfo::exists(m_file);
    const int descriptor = ::open(file.constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0 || !writeDurably(descriptor, lineOf(path, change))) {
        errorText = failure("Cannot write", m_file);
        return false;
    }
    if (created)
        flushFolderOf(file);
    m_entries[path] = change;
    return true;
}

bool OfflineJournal::Forget(const std::vector<std::string>& paths, std::string& errorText)
{
    std::map<std::string, Change> kept = m_entries;
    for (const std::string& path : paths)
        kept.erase(path);
    if (kept.size() == m_entries.size())
        return true;
    QByteArray content;
    for (const auto& [path, change] : kept)
        content += lineOf(path, change);
    if (!DurableWrites::Replace(QFile::encodeName(m_file), content)) {
        errorText = failure("Cannot rewrite", m_file);
        return false;
    }
    m_entries = std::move(kept);
    return true;
}

}  // namespace hbrc::host
