#include <hbrcdatamodel/offlinejournal.h>

#include <hbrcdatamodel/workspacestatefile.h>

#include "durablewrites.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace hbrc::host {

namespace {

constexpr char kLetters[] = {'W', 'C', 'D', 'K'};

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
    if (known != m_entries.end() && (known->second == change || known->second == Change::Kept))
        return true;
    return append(path, change, errorText);
}

bool OfflineJournal::append(const std::string& path, Change change, std::string& errorText)
{
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
        if (const auto entry = kept.find(path); entry != kept.end() && entry->second != Change::Kept)
            kept.erase(entry);
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

bool OfflineJournal::Keep(const std::string& path, std::string& errorText)
{
    const QString copy = KeptCopyOf(path);
    const auto known = m_entries.find(path);
    if (known != m_entries.end() && known->second == Change::Kept) {
        errorText = "Cannot keep " + path + " again: its content is kept in " + QFile::encodeName(copy).toStdString();
        return false;
    }
    QFile file(QFile::decodeName(QByteArray::fromStdString(path)));
    if (!file.open(QIODevice::ReadOnly)) {
        errorText = "Cannot read " + path + ": " + file.errorString().toStdString();
        return false;
    }
    const QByteArray content = file.readAll();
    if (!QDir().mkpath(QFileInfo(copy).absolutePath())) {
        errorText = "Cannot create the folder of " + QFile::encodeName(copy).toStdString();
        return false;
    }
    const QByteArray target = QFile::encodeName(copy);
    if (!DurableWrites::Replace(target, content)) {
        errorText = "Cannot keep the content of " + path + " in " + target.toStdString() + ": " + std::strerror(errno);
        return false;
    }
    return append(path, Change::Kept, errorText);
}

bool OfflineJournal::Unkeep(const std::string& path, std::string& errorText)
{
    const auto known = m_entries.find(path);
    if (known == m_entries.end() || known->second != Change::Kept)
        return true;
    if (!append(path, Change::MadeWritable, errorText))
        return false;
    QFile::remove(KeptCopyOf(path));
    return true;
}

QString OfflineJournal::KeptCopyOf(const std::string& path) const
{
    const QByteArray key = QCryptographicHash::hash(QByteArray::fromStdString(path), QCryptographicHash::Sha1);
    return m_file + QStringLiteral(".kept/") + QString::fromLatin1(key.toHex());
}

}  // namespace hbrc::host
