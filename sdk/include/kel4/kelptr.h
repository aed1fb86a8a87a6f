#pragma once

#include "exbase.h"
#include "sdkglobal.h"

#include <atomic>
#include <cstring>
#include <type_traits>
#include <utility>

namespace kel4 {

/// Identifies an interface in an interface query; compared by name.
struct InterfaceId
{
    const char* name;
    bool operator==(const InterfaceId& other) const { return std::strcmp(name, other.name) == 0; }
    bool operator!=(const InterfaceId& other) const { return !(*this == other); }
};

/// Reference-counted host object. The last Release destroys it.
class KEL_INTERFACE IRefCounted
{
public:
    virtual void AddRef() const = 0;
    virtual void Release() const = 0;

protected:
    virtual ~IRefCounted() = default;
};

/// Reference-counted object that can be asked for further interfaces. QueryInterface answers the
/// interface's sub-object, or null when the object does not offer it; it does not add a reference.
class KEL_INTERFACE IQueryable : public IRefCounted
{
public:
    virtual void* QueryInterface(const InterfaceId& iid) = 0;
};

/// The counting half of an implementation: derive an implementation from RefCounted<Interface>.
template <class Interface>
class RefCounted : public Interface
{
public:
    using Interface::Interface;
    void AddRef() const override { m_refs.fetch_add(1, std::memory_order_relaxed); }
    void Release() const override
    {
        if (m_refs.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

private:
    mutable std::atomic<int> m_refs{0};
};

}  // namespace kel4

/// Counted pointer to a host object. Copying adds a reference. Converting from a pointer to another
/// interface is a static conversion where the types allow it and an interface query (through
/// T::GetIID()) otherwise, which yields null when the object lacks the interface.
template <class T>
class KELPtr
{
public:
    KELPtr() = default;
    KELPtr(std::nullptr_t) {}
    KELPtr(T* p) : m_p(p) { if (m_p) m_p->AddRef(); }
    KELPtr(const KELPtr& other) : KELPtr(other.m_p) {}
    KELPtr(KELPtr&& other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    template <class U>
    KELPtr(const KELPtr<U>& other) : KELPtr(convert(other.Get())) {}
    ~KELPtr() { if (m_p) m_p->Release(); }

    KELPtr& operator=(KELPtr other) noexcept
    {
        std::swap(m_p, other.m_p);
        return *this;
    }

    T* Get() const { return m_p; }
    T* operator->() const { return &GetPointeeNotNull(); }
    T& operator*() const { return GetPointeeNotNull(); }
    explicit operator bool() const { return m_p != nullptr; }
    bool IsNull() const { return m_p == nullptr; }
    void Reset() { *this = KELPtr(); }

    /// The checked dereference: a null pointer raises kel4::ExBase::NullPtr.
    T& GetPointeeNotNull() const
    {
        if (!m_p)
            kel4::RaiseNullPtr("kel4/kelptr.h");
        return *m_p;
    }

    friend bool operator==(const KELPtr& a, const KELPtr& b) { return a.m_p == b.m_p; }
    friend bool operator!=(const KELPtr& a, const KELPtr& b) { return a.m_p != b.m_p; }

private:
    template <class U>
    static T* convert(U* p)
    {
        if constexpr (std::is_convertible_v<U*, T*>) {
            return p;
        } else {
            return p ? static_cast<T*>(p->QueryInterface(T::GetIID())) : nullptr;
        }
    }

    T* m_p = nullptr;
};
