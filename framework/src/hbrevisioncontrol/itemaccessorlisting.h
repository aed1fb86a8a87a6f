#pragma once

#include "internalvisibility.h"

#include <borax/datamodel/accessors.h>
#include <kel4/containers.h>
#include <kel4/kelhandle.h>

#include <vector>

HBRC_INTERNAL_NAMESPACE_BEGIN

// Appends to accessors one accessor per item-library item bound to one of objects, bound to
// library's context, in item-id order; an item appears once however many objects name it, and
// objects the library does not know add nothing.
void GetListOfUnspecifiedAccessors(const borax::datamodel::Internal::ItemLibraryInternalAccessor& library,
                                   const kel4::List<KELHandle<IDbObject>>& objects,
                                   std::vector<borax::datamodel::UnspecifiedAccessor>& accessors);

HBRC_INTERNAL_NAMESPACE_END
