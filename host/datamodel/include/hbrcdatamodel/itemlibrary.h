#pragma once

#include <hbrcdatamodel/export.h>
#include <hbrcdatamodel/itemlibrarycontext.h>

#include <borax/datamodel/iitemlibrary.h>

#include <string>
#include <unordered_map>
#include <vector>

namespace hbrc::host {
class DataModelMgr;

// The item library of an open workspace: one item per object of the data model, bound to the
// object's id, and the notifications the library posts through its context.
class HBRC_DATAMODEL_EXPORT ItemLibrary final : public borax::datamodel::IItemLibrary
{
public:
    // The model must outlive the library.
    explicit ItemLibrary(const DataModelMgr& model);
    // The tables go to the background release: a library of a large workspace is slow to free.
    ~ItemLibrary() override;
    ItemLibrary(const ItemLibrary&) = delete;
    ItemLibrary& operator=(const ItemLibrary&) = delete;

    bool FindItemByDbUid(const std::string& dbUid, borax::datamodel::ItemID& item) const override;
    DbObjectId GetItemDbUid(const borax::datamodel::ItemID& item) const override;
    std::string GetItemName(const borax::datamodel::ItemID& item) const override;
    void CreateItemAccessStateChanged(const borax::datamodel::ItemID& item, long accessState) override;

    ItemLibraryContext& Context() { return m_context; }
    borax::datamodel::ItemLibraryAccessor Accessor() { return m_context.Accessor(); }

    // Makes room for this many more items before they are bound.
    void Reserve(std::size_t items);
    // Binds a new item to the object id (or answers the item already bound to it).
    borax::datamodel::ItemID Bind(const std::string& dbUid);
    void Unbind(const std::string& dbUid);
    std::size_t ItemCount() const { return m_itemById.size(); }

    void PostItemNameChanged(const borax::datamodel::ItemID& item);
    // Asks the commit receivers in order until one cancels; true when one did.
    bool PostPreCommit();
    void PostPostCommit();

private:
    const DataModelMgr& m_model;
    ItemLibraryContext m_context{this, 0};
    std::unordered_map<std::string, std::uint64_t> m_itemById;
    // Item n's id at n - 1 (the key held by m_itemById); null once the item is unbound.
    std::vector<const std::string*> m_idByItem;
};

}  // namespace hbrc::host
