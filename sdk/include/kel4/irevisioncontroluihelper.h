#pragma once

#include "containers.h"
#include "dbobjectid.h"
#include "idatacontrol.h"
#include "idatamodelmgr.h"
#include "kelhandle.h"
#include "kelptr.h"
#include "kelresult.h"
#include "sdkglobal.h"

#include <QStringList>

#include <string>

namespace kel4 {

/// The revision-control helper the host asks before and around edits of assets (the component
/// "RevisionControlUIHelper", provided by a plug-in). Every call comes on the UI thread.
class KEL_INTERFACE IRevisionControlUIHelper
{
public:
    using ObjectList = List<KELHandle<IDbObject>>;

    virtual bool IsRevisionControlEnabled() = 0;
    /// The data control of the manager's database (the proxy's current one when manager is null).
    virtual KELPtr<IDataControl> GetDataControl(const KELPtr<IDataModelMgr>& manager) = 0;
    virtual bool CanCheckOutObject(const KELHandle<IDbObject>& object, bool includeExternalFiles) = 0;
    virtual bool CanMakeObjectWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles) = 0;
    virtual bool ObjectHasExternalFile(const KELHandle<IDbObject>& object) = 0;
    /// Checks the object(s) out, asking for a changelist when the settings say so; cancelled tells
    /// whether nothing was attempted.
    virtual bool CheckOutObject(const KELHandle<IDbObject>& object, bool& cancelled, bool includeExternalFiles) = 0;
    virtual bool CheckOutObjects(const ObjectList& objects, bool& cancelled, bool includeExternalFiles) = 0;
    virtual bool MakeObjectWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles) = 0;
    /// Called before the user edits the objects: true lets the edit go ahead.
    virtual bool CanEditObjects(const ObjectList& objects, bool includeExternalFiles, bool allowMakeWritable,
                                const std::string& info) = 0;
    virtual kelResult GetObjectStatus(const ObjectList& objects, bool includeExternalFiles, bool flag,
                                      List<unsigned int>& statuses) = 0;
    /// Resolves id in manager (the proxy's current manager when null; manager is then updated).
    virtual KELHandle<IDbObject> ResolveObject(DbObjectId id, KELPtr<IDataModelMgr>& manager) = 0;
    virtual KELHandle<IDbObject> ResolveObject(DbObjectId id)
    {
        KELPtr<IDataModelMgr> manager;
        return ResolveObject(std::move(id), manager);
    }
    /// Appends the object's files.
    virtual void GetObjectFiles(const KELHandle<IDbObject>& object, QStringList& files) = 0;
    virtual void ShowObjectFiles(const KELHandle<IDbObject>& object, bool inFileBrowser) = 0;
    virtual ~IRevisionControlUIHelper() = default;
};

}  // namespace kel4
