#pragma once

#include "iitemlibrary.h"
#include "itemid.h"

#include <string>

namespace borax::datamodel {

/// What every accessor has: the context it works in and that context's index.
class BaseAccessor
{
public:
    BaseAccessor() = default;
    BaseAccessor(IItemLibraryContext* context, int contextIndex) : m_context(context), m_contextIndex(contextIndex) {}

    IItemLibraryContext* GetContext() const { return m_context; }
    int GetContextIndex() const { return m_contextIndex; }
    /// The library the context is bound to, or null (no context, or a context not bound yet).
    IItemLibrary* GetLibrary() const { return m_context ? m_context->GetLibrary() : nullptr; }

    bool operator==(const BaseAccessor& o) const { return m_context == o.m_context && m_contextIndex == o.m_contextIndex; }
    bool operator!=(const BaseAccessor& o) const { return !(*this == o); }

private:
    IItemLibraryContext* m_context = nullptr;
    int m_contextIndex = 0;
};

/// Access to a whole item library.
class ItemLibraryAccessor : public BaseAccessor
{
public:
    using BaseAccessor::BaseAccessor;
};

/// Access to one item whose kind the holder does not need to know.
class UnspecifiedAccessor : public BaseAccessor
{
public:
    UnspecifiedAccessor() = default;
    UnspecifiedAccessor(const BaseAccessor& context, const ItemID& item) : BaseAccessor(context), m_item(item) {}
    const ItemID& GetItemID() const { return m_item; }

    bool operator==(const UnspecifiedAccessor& o) const { return BaseAccessor::operator==(o) && m_item == o.m_item; }

private:
    ItemID m_item;
};

namespace Internal {

/// Framework-internal access to a library: item lookup by database identifier.
class ItemLibraryInternalAccessor : public ItemLibraryAccessor
{
public:
    explicit ItemLibraryInternalAccessor(const ItemLibraryAccessor& library) : ItemLibraryAccessor(library) {}
    /// The item bound to the database object with this identifier text, or an invalid id.
    ItemID FindItemByDbUid(const std::string& dbUid) const
    {
        ItemID item;
        if (IItemLibrary* library = GetLibrary())
            library->FindItemByDbUid(dbUid, item);
        return item;
    }
};

}  // namespace Internal
}  // namespace borax::datamodel
