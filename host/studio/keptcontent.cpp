#include "keptcontent.h"

#include <hbrcdatamodel/offlinejournal.h>

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <vector>

namespace hbrc::studio {

std::optional<QByteArray> KeptContent::read(const QString& file)
{
    QFile content(file);
    if (!content.open(QIODevice::ReadOnly))
        return std::nullopt;
    return content.readAll();
}

bool KeptContent::write(const std::string& file, const QByteArray& content)
{
    const QString path = QFile::decodeName(QByteArray::fromStdString(file));
    if (QFileInfo::exists(path))
        QFile::setPermissions(path, QFile::permissions(path) | QFileDevice::WriteOwner);
    QSaveFile written(path);
    return written.open(QIODevice::WriteOnly) && written.write(content) == content.size() && written.commit();
}

QStringList KeptContent::recover(host::OfflineJournal& journal)
{
    std::vector<std::string> kept;
    for (const auto& [file, change] : journal.Entries())
        if (change == host::OfflineJournal::Change::Kept)
            kept.push_back(file);
    QStringList problems;
    for (const std::string& file : kept) {
        const QString path = QFile::decodeName(QByteArray::fromStdString(file));
        const std::optional<QByteArray> copy = read(journal.KeptCopyOf(file));
        const std::optional<QByteArray> present = read(path);
        const QFileInfo onDisk(path);
        const bool holdsNothingOfHers = !onDisk.exists() || !(onDisk.permissions() & QFileDevice::WriteOwner);
        bool backInPlace = !copy || copy == present;
        if (!backInPlace && holdsNothingOfHers)
            backInPlace = write(file, *copy);
        std::string error;
        if (backInPlace && !journal.Unkeep(file, error))
            problems << QString::fromStdString(error);
        else if (!backInPlace)
            problems << tr("%1 changed after an interrupted reconcile kept your content of it in %2: compare "
                           "the two, and remove the copy to reconcile the file")
                            .arg(path, journal.KeptCopyOf(file));
    }
    return problems;
}

}  // namespace hbrc::studio
