#pragma once

#include "dbobjectid.h"
#include "kelptr.h"

#include <cstdint>
#include <string>

class KELHandleBase;

namespace kel4 {
class IDataModelMgr;

/// What a handle asks of the manager that made it (IDataModelMgr derives from this).
class KEL_INTERFACE IObjectHandleOwner : public IRefCounted
{
public:
    virtual bool IsHandleValid(const KELHandleBase& object) const = 0;
    virtual DbObjectId GetObjectId(const KELHandleBase& object) const = 0;
    virtual std::string GetObjectName(const KELHandleBase& object) const = 0;
    virtual VersionId GetAncestorId(const KELHandleBase& object) const = 0;
    virtual bool IsObjectOfType(const KELHandleBase& object, const char* typeId) const = 0;
};

/// Object type tags used with KELHandle.
struct IDbObject
{
    static constexpr const char* GetTypeId() { return "IDbObject"; }
};
/// An asset: an object stored in files of its own (an object of another kind is part of one).
struct IAsset : IDbObject
{
    static constexpr const char* GetTypeId() { return "IAsset"; }
};
}  // namespace kel4

/// Handle of a database object: the object's slot in its manager's cache and the instance number
/// of the object in that slot. Handles are ordered by cache index, then instance number. The
/// member functions that ask the manager are defined in <kel4/idatamodelmgr.h>.
class KELHandleBase
{
public:
    KELHandleBase() = default;
    KELHandleBase(kel4::IObjectHandleOwner* manager, std::uint32_t cacheIndex, std::uint32_t instanceNumber)
        : m_manager(manager), m_cacheIndex(cacheIndex), m_instanceNumber(instanceNumber)
    {
        if (m_manager)
            m_manager->AddRef();
    }
    KELHandleBase(const KELHandleBase& other)
        : KELHandleBase(other.m_manager, other.m_cacheIndex, other.m_instanceNumber) {}
    KELHandleBase& operator=(const KELHandleBase& other)
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
    ~KELHandleBase()
    {
        if (m_manager)
            m_manager->Release();
    }

    bool IsNull() const { return m_manager == nullptr; }
    std::uint32_t GetCacheIndex() const { return m_cacheIndex; }
    std::uint32_t GetInstanceNumber() const { return m_instanceNumber; }

    /// The object's data-model manager (include <kel4/idatamodelmgr.h> to use it).
    template <class Manager = kel4::IDataModelMgr>
    KELPtr<Manager> GetManager() const
    {
        return KELPtr<Manager>(static_cast<Manager*>(m_manager));
    }
    DbObjectId GetDbObjectId() const { return m_manager ? m_manager->GetObjectId(*this) : DbObjectId(); }
    std::string GetName() const { return m_manager ? m_manager->GetObjectName(*this) : std::string(); }
    VersionId GetAncestorId() const { return m_manager ? m_manager->GetAncestorId(*this) : VersionId(); }

    friend bool operator<(const KELHandleBase& a, const KELHandleBase& b)
    {
        return a.m_cacheIndex != b.m_cacheIndex ? a.m_cacheIndex < b.m_cacheIndex
                                                : a.m_instanceNumber < b.m_instanceNumber;
    }
    friend bool operator==(const KELHandleBase& a, const KELHandleBase& b)
    {
        return a.m_cacheIndex == b.m_cacheIndex && a.m_instanceNumber == b.m_instanceNumber;
    }
    friend bool operator!=(const KELHandleBase& a, const KELHandleBase& b) { return !(a == b); }

    /// True when the object is of the given type (see the type tags above).
    bool IsOfType(const char* typeId) const { return m_manager && m_manager->IsObjectOfType(*this, typeId); }

private:
    kel4::IObjectHandleOwner* m_manager = nullptr;  // counted: the handle holds a reference
    std::uint32_t m_cacheIndex = 0;
    std::uint32_t m_instanceNumber = 0;
};

template <class T>
class KELHandle : public KELHandleBase
{
public:
    KELHandle() = default;
    KELHandle(kel4::IObjectHandleOwner* manager, std::uint32_t cacheIndex, std::uint32_t instanceNumber)
        : KELHandleBase(manager, cacheIndex, instanceNumber) {}

    /// Narrows (or widens) a handle: the result is null when the object is not a T.
    static KELHandle AssignCast(const KELHandleBase& other)
    {
        KELHandle result;
        if (!other.IsNull() && other.IsOfType(T::GetTypeId()))
            static_cast<KELHandleBase&>(result) = other;
        return result;
    }
    template <class U>
    KELHandle(const KELHandle<U>& other, std::enable_if_t<std::is_base_of_v<T, U>, int> = 0)
        : KELHandleBase(other) {}
};

using kel4::IAsset;
using kel4::IDbObject;
