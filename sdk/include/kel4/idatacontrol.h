#pragma once

#include "containers.h"
#include "dbobjectid.h"
#include "iservice.h"
#include "iuserparameters.h"
#include "kelhandle.h"
#include "kelptr.h"
#include "kelresult.h"

#include <string>

namespace kel4 {

/// Revision-aware access to the objects of a database instance: their status, their files, and the
/// revision operations on them. Questions about a list of objects are one server round trip.
/// A changelist identifier of "" names the default changelist. An operation that cannot reach the
/// server or whose session has expired returns kResultSessionUnusable (-34).
class KEL_INTERFACE IDataControl : public IService
{
public:
    static InterfaceId GetIID() { return {"kel4.IDataControl"}; }
    using ObjectList = List<KELHandle<IDbObject>>;
    using ObjectSet = Set<KELHandle<IDbObject>>;

    // --- status and editability -------------------------------------------------------------
    /// One status word per object (the OR of its files' words), in the order of objects.
    /// refresh: ask the server even when a cached answer is at hand.
    virtual kelResult GetStatus(const ObjectList& objects, bool includeExternalFiles, closureId closure,
                                bool refresh, List<unsigned>& statuses, std::string& errorText) = 0;
    /// True when the object is under revision control and not editable yet.
    virtual bool NeedsAction(const KELHandle<IDbObject>& object, bool includeExternalFiles, closureId closure) = 0;
    virtual kelResult CanCheckOut(const KELHandle<IDbObject>& object, bool includeExternalFiles,
                                  closureId closure, bool& canCheckOut) = 0;
    virtual bool CanMakeWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles,
                                 closureId closure) = 0;
    /// True when a file of the object is read-only on disk.
    virtual bool IsReadOnly(const KELHandle<IDbObject>& object, bool includeExternalFiles, closureId closure) = 0;
    /// The other users that hold the object's files (opened or locked).
    virtual kelResult GetUsersOfObject(const KELHandle<IDbObject>& object, closureId closure,
                                       List<std::string>& users) = 0;

    // --- revision operations ------------------------------------------------------------------
    virtual kelResult CheckOut(const ObjectList& objects, bool includeExternalFiles, closureId closure,
                               const std::string& changelist, std::string& errorText) = 0;
    virtual kelResult MarkForAdd(const ObjectList& objects, bool includeExternalFiles, closureId closure,
                                 const std::string& changelist, std::string& errorText) = 0;
    /// Clears the read-only state of the object's files without opening them.
    virtual kelResult MakeWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles,
                                   closureId closure, std::string& errorText) = 0;

    // --- changelists --------------------------------------------------------------------------
    virtual bool ChangeListExists(const std::string& changelist) = 0;
    /// The pending changelists of the session's workspace, oldest first.
    virtual kelResult GetPendingChangeLists(List<std::string>& changelists, std::string& errorText) = 0;
    virtual kelResult GetChangeListDescription(const std::string& changelist, std::string& description,
                                               std::string& errorText) = 0;
    virtual kelResult CreateChangeList(const std::string& description, std::string& changelist,
                                       std::string& errorText) = 0;

    // --- files and objects --------------------------------------------------------------------
    /// The files of the objects (filter: keep only names ending in it; "" keeps all): their union
    /// and one set per object, in the order of objects.
    virtual kelResult GetFiles(const ObjectList& objects, bool includeExternalFiles, closureId closure,
                               const std::string& filter, Set<std::string>& allFiles,
                               List<Set<std::string>>& filesPerObject) = 0;
    virtual kelResult GetFiles(const KELHandle<IDbObject>& object, bool includeExternalFiles, closureId closure,
                               const std::string& filter, Set<std::string>& files) = 0;
    virtual kelResult GetExternalFiles(const KELHandle<IDbObject>& object, closureId closure,
                                       Set<std::string>& files) = 0;
    virtual bool HasExternalFile(const KELHandle<IDbObject>& object, closureId closure) = 0;
    /// The further objects that an edit or save of these objects involves.
    virtual kelResult GetRelatedObjects(const ObjectList& objects, ObjectSet& related) = 0;
    /// The assets that own the files of these objects.
    virtual kelResult GetOwningAssets(closureId closure, const ObjectList& objects, ObjectSet& assets,
                                      int options) = 0;
    /// The database identifiers of the items that the objects stand for (an asset and its parts).
    virtual kelResult GetDbObjectIds(const ObjectList& objects, List<DbObjectId>& ids) = 0;
    /// The asset's name as users see it.
    virtual std::string GetAssetDisplayName(const KELHandle<IDbObject>& object) = 0;

    // --- account and session ------------------------------------------------------------------
    /// Installs the account the service acts for (null: none).
    virtual void SetUserParameters(const KELPtr<IUserParameters>& user) = 0;
    virtual KELPtr<IUserParameters> GetUserParameters() const = 0;
    /// Installs a session opened by IFileVersionControl::Login.
    virtual void SetSession(const KELPtr<IUserParameters>& session) = 0;
};

}  // namespace kel4
