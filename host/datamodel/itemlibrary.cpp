#include <hbrcdatamodel/itemlibrary.h>

#include <hbrcdatamodel/backgroundrelease.h>
#include <hbrcdatamodel/datamodelmgr.h>

#include <utility>

namespace hbrc::host {

using borax::datamodel::IItemLibraryNotification;
using borax::datamodel::ItemID;
using borax::datamodel::ItemLibraryAccessor;

ItemLibrary::ItemLibrary(const DataModelMgr& model)
    : m_model(model)
{
}

ItemLibrary::~ItemLibrary()
{
    BackgroundRelease::Instance().Free(std::make_pair(std::move(m_itemById), std::move(m_idByItem)));
}

bool ItemLibrary::FindItemByDbUid(const std::string& dbUid, ItemID& item) const
{
    const auto found = m_itemById.find(dbUid);
    if (found == m_itemById.end())
        return false;
    item = ItemID(found->second);
    return true;
}

DbObjectId ItemLibrary::GetItemDbUid(const ItemID& item) const
{
    const std::uint64_t value = item.GetValue();
    const std::string* id = value >= 1 && value <= m_idByItem.size() ? m_idByItem[value - 1] : nullptr;
    return id ? DbObjectId(*id) : DbObjectId();
}

std::string ItemLibrary::GetItemName(const ItemID& item) const
{
    const DbObjectId id = GetItemDbUid(item);
    return id.IsValid() ? m_model.GetObjectName(m_model.ResolveObject(id)) : std::string();
}

void ItemLibrary::CreateItemAccessStateChanged(const ItemID& item, long accessState)
{
    m_context.Notify(kNotifyItemChanges, [&](IItemLibraryNotification& receiver, ItemLibraryAccessor& library) {
        receiver.ItemAccessStateChanged(library, item, accessState);
    });
}

void ItemLibrary::Reserve(std::size_t items)
{
    m_itemById.reserve(m_itemById.size() + items);
    m_idByItem.reserve(m_idByItem.size() + items);
}

ItemID ItemLibrary::Bind(const std::string& dbUid)
{
    const auto [entry, added] = m_itemById.emplace(dbUid, m_idByItem.size() + 1);
    if (added)
        m_idByItem.push_back(&entry->first);
    return ItemID(entry->second);
}

void ItemLibrary::Unbind(const std::string& dbUid)
{
    const auto found = m_itemById.find(dbUid);
    if (found == m_itemById.end())
        return;
    m_idByItem[found->second - 1] = nullptr;  // item numbers are never reused
    m_itemById.erase(found);
}

void ItemLibrary::PostItemNameChanged(const ItemID& item)
{
    m_context.Notify(kNotifyItemChanges, [&](IItemLibraryNotification& receiver, ItemLibraryAccessor& library) {
        receiver.ItemNameChanged(library, item);
    });
}

bool ItemLibrary::PostPreCommit()
{
    bool cancel = false;
    m_context.Notify(kNotifyCommits, [&](IItemLibraryNotification& receiver, ItemLibraryAccessor& library) {
        if (!cancel)
            receiver.OnPreCommit(library, &cancel);
    });
    return cancel;
}

void ItemLibrary::PostPostCommit()
{
    m_context.Notify(kNotifyCommits, [](IItemLibraryNotification& receiver, ItemLibraryAccessor& library) {
        receiver.OnPostCommit(library);
    });
}

}  // namespace hbrc::host
