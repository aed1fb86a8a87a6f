#include "itemaccessorlisting.h"

#include <kel4/idatamodelmgr.h>

#include <set>

HBRC_INTERNAL_NAMESPACE_BEGIN

void GetListOfUnspecifiedAccessors(const borax::datamodel::Internal::ItemLibraryInternalAccessor& library,
                                   const kel4::List<KELHandle<IDbObject>>& objects,
                                   std::vector<borax::datamodel::UnspecifiedAccessor>& accessors)
{
    std::set<borax::datamodel::ItemID> items;
    for (const KELHandle<IDbObject>& object : objects) {
        const borax::datamodel::ItemID item = library.FindItemByDbUid(object.GetDbObjectId().GetStr());
        if (item.IsValid())
            items.insert(item);
    }
    for (const borax::datamodel::ItemID& item : items)
        accessors.emplace_back(library, item);
}

HBRC_INTERNAL_NAMESPACE_END
