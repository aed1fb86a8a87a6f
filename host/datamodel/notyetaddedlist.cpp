#include <hbrcdatamodel/notyetaddedlist.h>

#include "durablewrites.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace hbrc::host {

void NotYetAddedList::KeepIn(const QString& file)
{
    m_file = file;
    QFile kept(file);
    if (!kept.open(QIODevice::ReadOnly))
        return;
    for (const QByteArray& line : kept.readAll().split('\n'))
        if (!line.isEmpty())
            m_ids.insert(DbObjectId(line.toStdString()));
}

void NotYetAddedList::Insert(const std::set<DbObjectId>& ids)
{
    const std::size_t before = m_ids.size();
    m_ids.insert(ids.begin(), ids.end());
    if (m_ids.size() != before)
        Write();
}

void NotYetAddedList::Erase(const std::set<DbObjectId>& ids)
{
    std::size_t erased = 0;
    for (const DbObjectId& id : ids)
        erased += m_ids.erase(id);
    if (erased != 0)
        Write();
}

// A list that cannot be written lasts while the workspace is open, as without a file.
void NotYetAddedList::Write() const
{
    if (m_file.isEmpty())
        return;
    if (m_ids.empty()) {
        QFile::remove(m_file);
        return;
    }
    QByteArray content;
    for (const DbObjectId& id : m_ids)
        content += QByteArray::fromStdString(id.GetStr()) + '\n';
    if (QDir().mkpath(QFileInfo(m_file).absolutePath()))
        DurableWrites::Replace(QFile::encodeName(m_file), content);
}

}  // namespace hbrc::host
