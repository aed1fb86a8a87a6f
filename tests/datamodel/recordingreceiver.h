#pragma once

#include <borax/datamodel/iitemlibrarynotification.h>

#include <functional>
#include <string>
#include <vector>

// An item-library receiver that records what it is told, as "event" or "event:item:state" texts,
// and cancels the save when told to. onPostCommit runs inside OnPostCommit.
class RecordingReceiver final : public borax::datamodel::IItemLibraryNotification
{
public:
    using Accessor = borax::datamodel::ItemLibraryAccessor;
    using ItemID = borax::datamodel::ItemID;

    void OnBeginChanges(Accessor&) override { events.push_back("begin"); }
    void OnEndChanges(Accessor&) override { events.push_back("end"); }
    void LibraryInvalidated(Accessor&) override { events.push_back("invalidated"); }
    void ItemNameChanged(Accessor&, const ItemID& item) override
    {
        events.push_back("name:" + std::to_string(item.GetValue()));
    }
    void ItemTagsChanged(Accessor&, const ItemID&, const char*) override { events.push_back("tags"); }
    void ItemAccessStateChanged(Accessor& library, const ItemID& item, long state) override
    {
        lastLibrary = library;
        events.push_back("access:" + std::to_string(item.GetValue()) + ":" + std::to_string(state));
    }
    void OnPreCommit(Accessor& library, bool* cancel) override
    {
        lastLibrary = library;
        events.push_back("pre");
        if (cancel && cancelSave)
            *cancel = true;
    }
    void OnPostCommit(Accessor& library) override
    {
        events.push_back("post");
        if (onPostCommit)
            onPostCommit(library);
    }

    bool cancelSave = false;
    std::function<void(Accessor&)> onPostCommit;
    std::vector<std::string> events;
    Accessor lastLibrary;
};
