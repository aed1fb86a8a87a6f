#pragma once

#include "internalvisibility.h"

#include <kel4/idatacontrol.h>
#include <kel4/kelptr.h>

#include <QString>

// Helpers over lists of database objects that several of the helper's flows share.
HBRC_INTERNAL_NAMESPACE_BEGIN

// Appends one line per asset of objects (objects that are not assets are skipped): the asset's
// display name and, with withExternalFiles, " (with External: " and the file name of each of its
// external files that does not end in ".kel", each followed by ")". When no external file
// qualifies the parenthesis stays open; the prompts have always shown it so.
// A null dataControl raises the null-pointer failure (when there is an asset to describe).
void GetAssetListPrettyNames(const KELPtr<kel4::IDataControl>& dataControl,
                             const kel4::IDataControl::ObjectList& objects, bool withExternalFiles, QString& text);

// The objects followed by the further objects that an edit of them involves (the data control's
// related objects, in the set's order).
kel4::IDataControl::ObjectList WithRelatedObjects(kel4::IDataControl& dataControl,
                                                  const kel4::IDataControl::ObjectList& objects);

// True when both lists hold the same objects in the same order.
bool DbObjectListsAreEqual(const kel4::IDataControl::ObjectList& a, const kel4::IDataControl::ObjectList& b);

HBRC_INTERNAL_NAMESPACE_END
