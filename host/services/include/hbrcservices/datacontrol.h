#pragma once

#include <hbrcservices/depotconnection.h>

#include <hbrcdatamodel/datamodelmgr.h>

#include <kel4/idatacontrol.h>

#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// The object-level revision-control service of an open workspace: answers about objects through
// their files (from the data model) and their depot status (from the depot, for the session the
// host installed). Questions about a list are one round trip whatever its length; per-object
// questions answer from the status cache and, when it lacks a file, fill it with one round trip
// for every file of the workspace, so that a series of them costs one round trip in all.
class DataControl final : public kel4::RefCounted<kel4::IDataControl>
{
public:
    DataControl(KELPtr<DataModelMgr> model, std::shared_ptr<DepotConnection> connection);

    void* QueryInterface(const kel4::InterfaceId& iid) override;

    kelResult GetStatus(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure, bool refresh,
                        kel4::List<unsigned>& statuses, std::string& errorText) override;
    bool NeedsAction(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                     kel4::closureId closure) override;
    kelResult CanCheckOut(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                          kel4::closureId closure, bool& canCheckOut) override;
    bool CanMakeWritable(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                         kel4::closureId closure) override;
    bool IsReadOnly(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                    kel4::closureId closure) override;
    kelResult GetUsersOfObject(const KELHandle<kel4::IDbObject>& object, kel4::closureId closure,
                               kel4::List<std::string>& users) override;

    kelResult CheckOut(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure,
                       const std::string& changelist, std::string& errorText) override;
    kelResult MarkForAdd(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure,
                         const std::string& changelist, std::string& errorText) override;
    kelResult MakeWritable(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles,
                           kel4::closureId closure, std::string& errorText) override;

    bool ChangeListExists(const std::string& changelist) override;
    kelResult GetPendingChangeLists(kel4::List<std::string>& changelists, std::string& errorText) override;
    kelResult GetChangeListDescription(const std::string& changelist, std::string& description,
                                       std::string& errorText) override;
    kelResult CreateChangeList(const std::string& description, std::string& changelist,
                               std::string& errorText) override;

    kelResult GetFiles(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure,
                       const std::string& filter, kel4::Set<std::string>& allFiles,
                       kel4::List<kel4::Set<std::string>>& filesPerObject) override;
    kelResult GetFiles(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles, kel4::closureId closure,
                       const std::string& filter, kel4::Set<std::string>& files) override;
    kelResult GetExternalFiles(const KELHandle<kel4::IDbObject>& object, kel4::closureId closure,
                               kel4::Set<std::string>& files) override;
    bool HasExternalFile(const KELHandle<kel4::IDbObject>& object, kel4::closureId closure) override;
    kelResult GetRelatedObjects(const ObjectList& objects, ObjectSet& related) override;
    kelResult GetOwningAssets(kel4::closureId closure, const ObjectList& objects, ObjectSet& assets,
                              int options) override;
    kelResult GetDbObjectIds(const ObjectList& objects, kel4::List<DbObjectId>& ids) override;
    std::string GetAssetDisplayName(const KELHandle<kel4::IDbObject>& object) override;

    void SetUserParameters(const KELPtr<kel4::IUserParameters>& user) override;
    KELPtr<kel4::IUserParameters> GetUserParameters() const override;
    void SetSession(const KELPtr<kel4::IUserParameters>& session) override;

    DepotConnection& Connection() const { return *m_connection; }

private:
    using Files = std::vector<std::string>;

    Files FilesOf(const KELHandleBase& object, bool includeExternalFiles, kel4::closureId closure) const;
    // The union of the objects' files, in first-seen order.
    Files FilesOf(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure) const;
    // Every file of every asset of the workspace, external files included.
    Files WorkspaceFiles() const;
    // The statuses of files from the cache; on a miss one round trip for files and the workspace's.
    kelResult KnownStatuses(const Files& files, std::vector<depot::FileStatus>& statuses, std::string& errorText);
    kelResult ChangeFiles(const Files& files, const DepotConnection::Operation& change, std::string& errorText);

    KELPtr<DataModelMgr> m_model;
    std::shared_ptr<DepotConnection> m_connection;
    KELPtr<kel4::IUserParameters> m_session;
};

}  // namespace hbrc::host
