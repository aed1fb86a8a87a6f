#pragma once

#include "itemid.h"

#include <kel4/dbobjectid.h>
#include <kel4/sdkglobal.h>

#include <string>

namespace borax::datamodel {
class IItemLibraryNotification;

/// Access state values posted with item-access-state-changed notifications.
enum ItemAccessState : long {
    eItemAccessUnknown = 0,
    eItemAccessReadOnly = 1,
    eItemAccessWritable = 2,
    eItemAccessCheckedOut = 3
};

/// An item library: the items the user works with, each bound to a database object.
class KEL_INTERFACE IItemLibrary
{
public:
    virtual ~IItemLibrary() = default;
    /// The item bound to the database object with this identifier text; false when there is none.
    virtual bool FindItemByDbUid(const std::string& dbUid, ItemID& item) const = 0;
    /// The database object the item is bound to; invalid when the item has none.
    virtual DbObjectId GetItemDbUid(const ItemID& item) const = 0;
    virtual std::string GetItemName(const ItemID& item) const = 0;
    /// Posts an item-access-state-changed notification to every registered receiver, so that
    /// views refresh the lock and writable state of the item.
    virtual void CreateItemAccessStateChanged(const ItemID& item, long accessState) = 0;
};

/// A context in which an item library is accessed; notification receivers register per context.
class KEL_INTERFACE IItemLibraryContext
{
public:
    virtual ~IItemLibraryContext() = default;
    /// The library this context is bound to, or null.
    virtual IItemLibrary* GetLibrary() const = 0;
    /// code selects the notifications wanted (40: changes and commits).
    virtual void RegisterNotification(IItemLibraryNotification* receiver, int code, int contextIndex) = 0;
    virtual void UnregisterNotification(IItemLibraryNotification* receiver, int code, int contextIndex) = 0;
};

}  // namespace borax::datamodel
