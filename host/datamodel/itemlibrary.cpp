#include <hbrcdatamodel/itemlibrary.h>

#include <hbrcdatamodel/datamodelmgr.h>

namespace hbrc::host {

using borax::datamodel::IItemLibraryNotification;
using borax::datamodel::ItemID;
using borax::datamodel::ItemLibraryAccessor;

ItemLibrary::ItemLibrary(const DataModelMgr& model)
    : m_model(model)
{
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
    const auto found = m_idByItem.find(item.GetValue());
    return found == m_idByItem.end() ? DbObjectId() : DbObjectId(found->second);
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
    const auto [entry, added] = m_itemById.emplace(dbUid, m_nextItem);
    if (added)
        m_idByItem.emplace(m_nextItem++, dbUid);
    return ItemID(entry->second);
}

void ItemLibrary::Unbind(const std::string& dbUid)
{
    const auto found = m_itemById.find(dbUid);
    if (found == m_itemById.end())
        return;
    m_idByItem.erase(found->second);
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
