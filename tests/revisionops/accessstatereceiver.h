#pragma once

#include <borax/datamodel/iitemlibrarynotification.h>

#include <vector>

// Records the items whose access state an item library says changed.
class AccessStateReceiver final : public borax::datamodel::IItemLibraryNotification
{
public:
    using Accessor = borax::datamodel::ItemLibraryAccessor;
    using ItemID = borax::datamodel::ItemID;

    void OnBeginChanges(Accessor&) override {}
    void OnEndChanges(Accessor&) override {}
    void LibraryInvalidated(Accessor&) override {}
    void ItemNameChanged(Accessor&, const ItemID&) override {}
    void ItemTagsChanged(Accessor&, const ItemID&, const char*) override {}
    void ItemAccessStateChanged(Accessor&, const ItemID& item, long) override { items.push_back(item); }
    void OnPreCommit(Accessor&, bool*) override {}
    void OnPostCommit(Accessor&) override {}

    std::vector<ItemID> items;
};
