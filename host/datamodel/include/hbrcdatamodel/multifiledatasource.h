#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/notyetaddedlist.h>

#include <kel4/idatasource.h>

#include <QString>

#include <cstdint>
#include <functional>
#include <set>
#include <vector>

namespace hbrc::host {

// The workspace folder as a data source. Each save reports here the files it removed and the
// objects it wrote for the first time; the record lasts until ResetTracking. Once revision-control
// services follow the workspace (KeepNewObjectsUntilAdded), an object written for the first time
// stays "not yet added" until they report that it was marked for add (ConfirmAdded): every later
// save reports it again as written for the first time, so that a save whose adds failed (the
// server died) leaves no asset out of the depot for good. The list of those is kept per workspace
// on disk when the host gives it a file (KeepNotYetAddedIn), so that it outlives a restart. An
// object that a save reported and that was not marked for add while every server call succeeded
// was declined by the user (or had nothing to add): it is not reported again (SettleReported). It
// names objects by slot and instance, or by id, so it holds no reference to the data model (which
// owns it).
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
    // Called by the revision-control services: when they start following the workspace (with the
    // count of their server calls that failed so far), and once objects are marked for add.
    void KeepNewObjectsUntilAdded(std::function<std::uint64_t()> failedServerCalls);
    void ConfirmAdded(const kel4::List<DbObjectId>& ids);
    // Called by the host when it opens the workspace: the file that keeps the "not yet added"
    // list, with what an earlier run left there.
    void KeepNotYetAddedIn(const QString& file) { m_notYetAdded.KeepIn(file); }
    // Called by the save once the post-save work has run on what ResetTracking reset: drops from
    // the "not yet added" list what was reported then and is neither marked for add nor met a
    // failed server call since.
    void SettleReported();
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
    std::function<std::uint64_t()> m_failedServerCalls;  // set while the services keep objects
    // Written by an earlier save, not confirmed as added since.
    NotYetAddedList m_notYetAdded;
    // Reported before the last ResetTracking and not settled yet, with the failed calls until then.
    std::set<DbObjectId> m_reported;
    std::uint64_t m_failedCallsWhenReset = 0;
};

}  // namespace hbrc::host
