#include <hbrcdatamodel/multifiledatasource.h>

#include <kel4/idatamodelmgr.h>

#include <QFile>

namespace hbrc::host {

void* MultiFileDataSource::QueryInterface(const kel4::InterfaceId& iid)
{
    if (iid == kel4::IMultiFileDataSource::GetIID())
        return static_cast<kel4::IMultiFileDataSource*>(this);
    if (iid == kel4::IDataSource::GetIID())
        return static_cast<kel4::IDataSource*>(this);
    return nullptr;
}

std::string MultiFileDataSource::GetDescription() const
{
    return "Workspace folder " + QFile::encodeName(m_root).toStdString();
}

void MultiFileDataSource::GetDeletedFiles(kel4::List<std::string>& files) const
{
    files.insert(files.end(), m_deleted.begin(), m_deleted.end());
}

void MultiFileDataSource::GetAddedObjects(kel4::List<DbObjectId>& ids,
                                          kel4::List<KELHandle<kel4::IDbObject>>& objects) const
{
    for (const Added& added : m_added) {
        ids.push_back(added.id);
        KELHandle<kel4::IDbObject> handle;
        if (m_manager) {
            handle = KELHandle<kel4::IDbObject>(m_manager, added.slot, added.instance);
            if (!m_manager->IsHandleValid(handle))
                handle = KELHandle<kel4::IDbObject>();
        }
        objects.push_back(handle);
    }
}

void MultiFileDataSource::ResetTracking()
{
    m_deleted.clear();
    m_added.clear();
}

void MultiFileDataSource::RecordAddedObject(const DbObjectId& id, std::uint32_t slot, std::uint32_t instance)
{
    m_added.push_back({id, slot, instance});
}

}  // namespace hbrc::host
