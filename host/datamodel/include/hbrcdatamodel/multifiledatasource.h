#pragma once

#include <hbrcdatamodel/export.h>

#include <kel4/idatasource.h>

#include <QString>

#include <cstdint>
#include <map>
#include <vector>

namespace hbrc::host {

// The workspace folder as a data source. Each save reports here the files it removed and the
// objects it wrote for the first time; the record lasts until ResetTracking. Once revision-control
// services follow the workspace (KeepNewObjectsUntilAdded), an object written for the first time
// stays "not yet added" until they report that it was marked for add (ConfirmAdded): every later
// save reports it again as written for the first time, so that a save whose adds failed (the
// server died) leaves no asset out of the depot for good. It names objects by slot and instance
// only, so it holds no reference to the data model (which owns it).
class HBRC_DATAMODEL_EXPORT MultiFileDataSource final : public kel4::RefCounted<kel4::IMultiFileDataSource>
{
public:
    explicit MultiFileDataSource(QString root) : m_root(std::move(root)) {}

    void* QueryInterface(const kel4::InterfaceId& iid) override;
    std::string GetDescription() const override;
    void GetDeletedFiles(kel4::List<std::string>& files) const override;
    void GetAddedObjects(kel4::List<DbObjectId>& ids, kel4::List<KELHandle<kel4::IDbObject>>& objects) const override;
    void ResetTracking() override;

    // Called by the save and by the data model.
    void RecordDeletedFile(const std::string& path) { m_deleted.push_back(path); }
    void RecordAddedObject(const DbObjectId& id, std::uint32_t slot, std::uint32_t instance);
    // Called by the revision-control services: when they start following the workspace, and once
    // objects are marked for add.
    void KeepNewObjectsUntilAdded() { m_keepUntilAdded = true; }
    void ConfirmAdded(const kel4::List<DbObjectId>& ids);
    // True for an object written by an earlier save (whose tracking was reset since) that has
    // not been confirmed as added.
    bool IsNotYetAdded(const DbObjectId& id) const;
    // The data model that handles are made for; null once it is gone.
    void SetManager(kel4::IDataModelMgr* manager) { m_manager = manager; }

private:
    struct Added
    {
        DbObjectId id;
        std::uint32_t slot;
        std::uint32_t instance;
    };

    QString m_root;
    kel4::IDataModelMgr* m_manager = nullptr;
    std::vector<std::string> m_deleted;
    std::vector<Added> m_added;
    bool m_keepUntilAdded = false;
    // Written by an earlier save, not confirmed as added since.
    std::map<DbObjectId, Added> m_notYetAdded;
};

}  // namespace hbrc::host
