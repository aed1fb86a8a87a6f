#pragma once

#include <hbrcdatamodel/export.h>

#include <kel4/dbobjectid.h>

#include <QString>

#include <set>

namespace hbrc::host {

// The objects of a workspace that a save wrote for the first time and revision control has not
// marked for add yet, by id. Kept in a file when one is given, so that the list outlives the
// program: every change replaces the file in one rename after flushing it, so a crash leaves the
// old or the new list; an empty list leaves no file. One id per line.
class HBRC_DATAMODEL_EXPORT NotYetAddedList
{
public:
    // Reads what an earlier run left in file, and keeps every change there from now on.
    void KeepIn(const QString& file);

    bool Contains(const DbObjectId& id) const { return m_ids.count(id) != 0; }
    const std::set<DbObjectId>& Ids() const { return m_ids; }
    // Each writes the file when the list changed.
    void Insert(const std::set<DbObjectId>& ids);
    void Erase(const std::set<DbObjectId>& ids);

private:
    void Write() const;

    QString m_file;
    std::set<DbObjectId> m_ids;
};

}  // namespace hbrc::host
