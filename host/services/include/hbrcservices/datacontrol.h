#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/serverconnection.h>

#include <hbrcdatamodel/datamodelmgr.h>

#include <kel4/idatacontrol.h>

#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// The object-level revision-control service of an open workspace: answers about objects through
// their files (from the data model) and their depot status (from the depot, for the session the
// host installed). Questions about a list are one round trip whatever its length; per-object
// questions answer from the status cache. A related-objects question names the objects a caller
// is about to ask about one by one (the work list of an editability question): when a per-object
// question about one of them misses the cache, one round trip fetches every file of theirs whose
// status is not known, so that the whole series costs one round trip. A miss about any other
// object asks about that object's files only.
class HBRC_SERVICES_EXPORT DataControl final : public kel4::RefCounted<kel4::IDataControl>
{
public:
    DataControl(KELPtr<DataModelMgr> model, std::shared_ptr<ServerConnection> connection);

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

    ServerConnection& Connection() const { return *m_connection; }

private:
    using Files = std::vector<std::string>;

    Files FilesOf(const KELHandleBase& object, bool includeExternalFiles, kel4::closureId closure) const;
    // The union of the objects' files, in first-seen order.
    Files FilesOf(const ObjectList& objects, bool includeExternalFiles, kel4::closureId closure) const;
    // The files of object to ask the depot about on a miss: its own, then those of the objects in
    // question whose status the cache does not know, when object is one of them.
    Files FilesToAsk(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles, kel4::closureId closure,
                     const Files& objectFiles) const;
    // The statuses of the object's files from the cache; on a miss one round trip (see FilesToAsk).
    kelResult KnownStatuses(const KELHandle<kel4::IDbObject>& object, bool includeExternalFiles, kel4::closureId closure,
                            const Files& files, std::vector<revision::FileStatus>& statuses, std::string& errorText);
    kelResult ChangeFiles(const Files& files, const ServerConnection::Operation& change, std::string& errorText);
    // True (with errorText) while the workspace keeps an offline journal: status questions then
    // fail at once with kResultSessionUnusable.
    bool Offline(std::string& errorText) const;

    KELPtr<DataModelMgr> m_model;
    std::shared_ptr<ServerConnection> m_connection;
    KELPtr<kel4::IUserParameters> m_session;
    // The objects of the last related-objects question and their related objects.
    ObjectSet m_objectsInQuestion;
};

}  // namespace hbrc::host
