#pragma once

#include "containers.h"
#include "dbobjectid.h"
#include "idatasource.h"
#include "ikelinstance.h"
#include "kelhandle.h"
#include "kelptr.h"
#include "kelresult.h"

#include <string>

namespace kel4 {

/// One result of an object query.
class CQueryResult
{
public:
    CQueryResult() = default;
    explicit CQueryResult(KELHandle<IDbObject> object) : m_object(std::move(object)) {}
    const KELHandle<IDbObject>& GetObject() const { return m_object; }

private:
    KELHandle<IDbObject> m_object;
};

/// The data-model manager of an open workspace: its database instance, its objects and queries.
class KEL_INTERFACE IDataModelMgr : public IObjectHandleOwner
{
public:
    /// The database instance whose services (data control, file version control) work on the objects.
    virtual KELPtr<IKELInstance> GetInstance() const = 0;
    /// The object with this identifier, or a null handle.
    virtual KELHandle<IDbObject> ResolveObject(const DbObjectId& id) const = 0;

    /// Runs an object query ("select object where EXPR"). Options: bit 0 includes unsaved objects,
    /// bit 1 includes objects not loaded yet. A malformed query fails with a message naming the
    /// position of the fault.
    virtual kelResult Query(const std::string& queryText, Vector<CQueryResult>& results, int options,
                            std::string& errorText) const = 0;

    /// The data sources that objects are loaded from and saved to.
    virtual Vector<KELPtr<IDataSource>> GetDataSources() const = 0;
    // The questions about one object that handles ask come from IObjectHandleOwner.
};

}  // namespace kel4

using kel4::CQueryResult;
using kel4::IDataModelMgr;
