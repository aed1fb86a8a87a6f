#pragma once

#include "containers.h"
#include "kelhandle.h"
#include "kelptr.h"

#include <string>

namespace kel4 {

/// A store that the data model loads objects from and saves them to.
class KEL_INTERFACE IDataSource : public IQueryable
{
public:
    static InterfaceId GetIID() { return {"kel4.IDataSource"}; }
    virtual std::string GetDescription() const = 0;
};

/// A data source whose objects live in many files. It remembers, from one reset to the next, which
/// files the saves deleted and which objects they added, so that revision control can follow.
class KEL_INTERFACE IMultiFileDataSource : public IDataSource
{
public:
    static InterfaceId GetIID() { return {"kel4.IMultiFileDataSource"}; }

    /// Files removed from disk by the saves since the last reset.
    virtual void GetDeletedFiles(List<std::string>& files) const = 0;
    /// Objects written for the first time by the saves since the last reset.
    virtual void GetAddedObjects(List<DbObjectId>& ids, List<KELHandle<IDbObject>>& objects) const = 0;
    /// Forgets what was tracked.
    virtual void ResetTracking() = 0;
};

}  // namespace kel4
