#include <hbrcdatamodel/multifiledatasource.h>

#include <kel4/idatamodelmgr.h>

#include <QFile>

#include <algorithm>
#include <set>

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
    const auto handleOf = [this](const Added& added) {
        if (!m_manager)
            return KELHandle<kel4::IDbObject>();
        KELHandle<kel4::IDbObject> handle(m_manager, added.slot, added.instance);
        return m_manager->IsHandleValid(handle) ? handle : KELHandle<kel4::IDbObject>();
    };
    std::set<DbObjectId> reported;
    for (const Added& added : m_added) {
        ids.push_back(added.id);
        objects.push_back(handleOf(added));
        reported.insert(added.id);
    }
    // Those of earlier saves only while they still exist: a deleted asset is nothing to add.
    for (const DbObjectId& id : m_notYetAdded.Ids()) {
        const KELHandle<kel4::IDbObject> handle = m_manager ? m_manager->ResolveObject(id) : KELHandle<kel4::IDbObject>();
        if (handle.IsNull() || reported.count(id))
            continue;
        ids.push_back(id);
        objects.push_back(handle);
    }
}

void MultiFileDataSource::ResetTracking()
{
    m_deleted.clear();
    if (m_failedServerCalls) {
        kel4::List<DbObjectId> ids;
        kel4::List<KELHandle<kel4::IDbObject>> objects;
        GetAddedObjects(ids, objects);
        m_reported.clear();
        auto object = objects.begin();
        for (const DbObjectId& id : ids)
            if (!(object++)->IsNull())
                m_reported.insert(id);
        m_failedCallsWhenReset = m_failedServerCalls();
        // What is gone from the workspace is nothing to add.
        std::set<DbObjectId> gone;
        for (const DbObjectId& id : m_notYetAdded.Ids())
            if (!m_reported.count(id))
                gone.insert(id);
        m_notYetAdded.Erase(gone);
        m_notYetAdded.Insert(m_reported);
    }
    m_added.clear();
}

void MultiFileDataSource::SettleReported()
{
    if (m_failedServerCalls && m_failedServerCalls() == m_failedCallsWhenReset)
        m_notYetAdded.Erase(m_reported);
    m_reported.clear();
}

void MultiFileDataSource::KeepNewObjectsUntilAdded(std::function<std::uint64_t()> failedServerCalls)
{
    m_failedServerCalls = std::move(failedServerCalls);
}

void MultiFileDataSource::RecordAddedObject(const DbObjectId& id, std::uint32_t slot, std::uint32_t instance)
{
    m_added.push_back({id, slot, instance});
}

void MultiFileDataSource::ConfirmAdded(const kel4::List<DbObjectId>& ids)
{
    const std::set<DbObjectId> confirmed(ids.begin(), ids.end());
    m_notYetAdded.Erase(confirmed);
    m_added.erase(std::remove_if(m_added.begin(), m_added.end(),
                                 [&](const Added& added) { return confirmed.count(added.id) != 0; }),
                  m_added.end());
}

bool MultiFileDataSource::IsNotYetAdded(const DbObjectId& id) const
{
    return m_notYetAdded.Contains(id);
}

}  // namespace hbrc::host
