#pragma once

#include "accessors.h"
#include "itemid.h"

#include <kel4/sdkglobal.h>

namespace borax::datamodel {

/// Receiver of an item library's notifications, registered through the library's context.
class KEL_INTERFACE IItemLibraryNotification
{
public:
    virtual ~IItemLibraryNotification() = default;
    virtual void OnBeginChanges(ItemLibraryAccessor& library) = 0;
    virtual void OnEndChanges(ItemLibraryAccessor& library) = 0;
    virtual void LibraryInvalidated(ItemLibraryAccessor& library) = 0;
    virtual void ItemNameChanged(ItemLibraryAccessor& library, const ItemID& item) = 0;
    virtual void ItemTagsChanged(ItemLibraryAccessor& library, const ItemID& item, const char* tags) = 0;
    virtual void ItemAccessStateChanged(ItemLibraryAccessor& library, const ItemID& item, long accessState) = 0;
    /// Called before the library commits (saves); setting *cancel to true stops the save, nothing
    /// is written. cancel may be null.
    virtual void OnPreCommit(ItemLibraryAccessor& library, bool* cancel) = 0;
    /// Called after the library has committed.
    virtual void OnPostCommit(ItemLibraryAccessor& library) = 0;
};

}  // namespace borax::datamodel
