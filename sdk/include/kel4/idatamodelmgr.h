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

// One result of an object query.
class CQueryResult
{
public:
    CQueryResult() = default;
    explicit CQueryResult(KELHandle<IDbObject> object) : m_object(std::move(object)) {}
    const KELHandle<IDbObject>& GetObject() const { return m_object; }

private:
    KELHandle<IDbObject> m_object;
};

// The data-model manager of an open workspace: its database instance, its objects and queries.
class KEL_INTERFACE IDataModelMgr : public IRefCounted
{
public:
    // The database instance whose services (data control, file version control) work on the objects.
    virtual KELPtr<IKELInstance> GetInstance() const = 0;
    // The object with this identifier, or a null handle.
    virtual KELHandle<IDbObject> ResolveObject(const DbObjectId& id) const = 0;

    // Runs an object query ("select object where EXPR"). Options: bit 0 includes unsaved objects,
    // bit 1 includes objects not loaded yet. A malformed query fails with a message naming the
    // position of the fault.
    virtual kelResult Query(const std::string& queryText, Vector<CQueryResult>& results, int options,
                            std::string& errorText) const = 0;

    // The data sources that objects are loaded from and saved to.
    virtual Vector<KELPtr<IDataSource>> GetDataSources() const = 0;

    // Questions about one object, asked through KELHandleBase.
    virtual bool IsHandleValid(const KELHandleBase& object) const = 0;
    virtual DbObjectId GetObjectId(const KELHandleBase& object) const = 0;
    virtual std::string GetObjectName(const KELHandleBase& object) const = 0;
    virtual VersionId GetAncestorId(const KELHandleBase& object) const = 0;
    virtual bool IsObjectOfType(const KELHandleBase& object, const char* typeId) const = 0;
};

}  // namespace kel4

inline KELHandleBase::KELHandleBase(kel4::IDataModelMgr* manager, std::uint32_t cacheIndex,
                                    std::uint32_t instanceNumber)
    : m_manager(manager), m_cacheIndex(cacheIndex), m_instanceNumber(instanceNumber)
{
    if (m_manager)
        m_manager->AddRef();
}

inline KELHandleBase::KELHandleBase(const KELHandleBase& other)
    : KELHandleBase(other.m_manager, other.m_cacheIndex, other.m_instanceNumber)
{
}

inline KELHandleBase& KELHandleBase::operator=(const KELHandleBase& other)
{
    if (this != &other) {
        if (other.m_manager)
            other.m_manager->AddRef();
        if (m_manager)
            m_manager->Release();
        m_manager = other.m_manager;
        m_cacheIndex = other.m_cacheIndex;
        m_instanceNumber = other.m_instanceNumber;
    }
    return *this;
}

inline KELHandleBase::~KELHandleBase()
{
    if (m_manager)
        m_manager->Release();
}

inline KELPtr<kel4::IDataModelMgr> KELHandleBase::GetManager() const { return KELPtr<kel4::IDataModelMgr>(m_manager); }
inline DbObjectId KELHandleBase::GetDbObjectId() const { return m_manager ? m_manager->GetObjectId(*this) : DbObjectId(); }
inline std::string KELHandleBase::GetName() const { return m_manager ? m_manager->GetObjectName(*this) : std::string(); }
inline VersionId KELHandleBase::GetAncestorId() const { return m_manager ? m_manager->GetAncestorId(*this) : VersionId(); }
inline bool KELHandleBase::IsOfType(const char* typeId) const { return m_manager && m_manager->IsObjectOfType(*this, typeId); }

using kel4::CQueryResult;
using kel4::IDataModelMgr;
