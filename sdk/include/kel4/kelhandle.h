#pragma once

#include "dbobjectid.h"
#include "kelptr.h"

#include <cstdint>
#include <string>

namespace kel4 {
class IDataModelMgr;

// Object type tags used with KELHandle.
struct IDbObject
{
    static constexpr const char* GetTypeId() { return "IDbObject"; }
};
// An asset: an object stored in files of its own (an object of another kind is part of one).
struct IAsset : IDbObject
{
    static constexpr const char* GetTypeId() { return "IAsset"; }
};
}  // namespace kel4

// Handle of a database object: the object's slot in its manager's cache and the instance number
// of the object in that slot. Handles are ordered by cache index, then instance number. The
// member functions that ask the manager are defined in <kel4/idatamodelmgr.h>.
class KELHandleBase
{
public:
    KELHandleBase() = default;
    KELHandleBase(kel4::IDataModelMgr* manager, std::uint32_t cacheIndex, std::uint32_t instanceNumber);
    KELHandleBase(const KELHandleBase&);
    KELHandleBase& operator=(const KELHandleBase&);
    ~KELHandleBase();

    bool IsNull() const { return m_manager == nullptr; }
    std::uint32_t GetCacheIndex() const { return m_cacheIndex; }
    std::uint32_t GetInstanceNumber() const { return m_instanceNumber; }

    KELPtr<kel4::IDataModelMgr> GetManager() const;
    DbObjectId GetDbObjectId() const;
    std::string GetName() const;
    VersionId GetAncestorId() const;

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

    // True when the object is of the given type (see the type tags above).
    bool IsOfType(const char* typeId) const;

private:
    kel4::IDataModelMgr* m_manager = nullptr;  // counted: the handle holds a reference
    std::uint32_t m_cacheIndex = 0;
    std::uint32_t m_instanceNumber = 0;
};

template <class T>
class KELHandle : public KELHandleBase
{
public:
    KELHandle() = default;
    KELHandle(kel4::IDataModelMgr* manager, std::uint32_t cacheIndex, std::uint32_t instanceNumber)
        : KELHandleBase(manager, cacheIndex, instanceNumber) {}

    // Narrows (or widens) a handle: the result is null when the object is not a T.
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
