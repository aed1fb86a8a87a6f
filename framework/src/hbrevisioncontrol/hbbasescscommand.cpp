#include "hbbasescscommand.h"

#include "hostservices.h"

#include <borax/datamodel/iitemlibrary.h>

using borax::datamodel::UnspecifiedAccessor;
using borax::datamodel::UnspecifiedAccessorListParam;
using nrk::fwk::GetParamAs;

BaseScsCommand::BaseScsCommand(const borax::datamodel::ItemLibraryAccessor& library, const char* name)
    : CBaseExecutionCommand(library, name)
{
}

BaseScsCommand::BaseScsCommand(const borax::datamodel::ItemLibraryAccessor& library, const char* name,
                               const char* changelist, const AccessorList& assets, bool includeExternalFiles)
    : CBaseExecutionCommand(library, name)
{
    AddParam(nrk::fwk::StringParam(kChangelistParam, changelist ? changelist : ""));
    AddParam(UnspecifiedAccessorListParam(kAssetParam, assets));
    AddParam(nrk::fwk::BoolParam(kIncludeExternalFileParam, includeExternalFiles));
}

bool BaseScsCommand::ResolveAssetsFromUnspecifiedAccessors(KELPtr<kel4::IDataModelMgr> manager,
                                                           const UnspecifiedAccessorListParam& assets,
                                                           ObjectList& objects)
{
    for (const UnspecifiedAccessor& asset : assets.GetValue()) {
        const borax::datamodel::IItemLibrary* library = asset.GetLibrary();
        if (!library || !manager)
            return false;
        const DbObjectId id = library->GetItemDbUid(asset.GetItemID());
        if (!id.IsValid())
            return false;
        KELHandle<IDbObject> object = manager->ResolveObject(id);
        if (object.IsNull())
            return false;
        objects.push_back(std::move(object));
    }
    return true;
}

void BaseScsCommand::NotifyDataModel(KELPtr<kel4::IDataControl> dataControl, const ObjectList& objects)
{
    const borax::datamodel::Internal::ItemLibraryInternalAccessor library(GetItemLibrary());
    borax::datamodel::IItemLibrary* items = library.GetLibrary();
    kel4::List<DbObjectId> ids;
    if (!dataControl || !items || dataControl->GetDbObjectIds(objects, ids).IsFailure())
        return;
    for (const DbObjectId& id : ids) {
        const borax::datamodel::ItemID item = library.FindItemByDbUid(id.GetStr());
        // The state is not known here: views ask the item again.
        if (item.IsValid())
            items->CreateItemAccessStateChanged(item, borax::datamodel::eItemAccessUnknown);
    }
}

bool BaseScsCommand::ResolveInputs(Inputs& inputs) const
{
    const auto* assets = GetParamAs<UnspecifiedAccessorListParam>(*this, kAssetParam);
    if (!GetItemLibrary().GetLibrary() || !assets)
        return false;
    if (const auto* changelist = GetParamAs<nrk::fwk::StringParam>(*this, kChangelistParam))
        inputs.changelist = changelist->GetValue();
    if (const auto* include = GetParamAs<nrk::fwk::BoolParam>(*this, kIncludeExternalFileParam))
        inputs.includeExternalFiles = include->GetValue();

    const nrk::fwk::IKELDBProxy* proxy = hbrc::internal::FindDBProxy();
    if (!proxy)
        return false;
    const KELPtr<kel4::IDataModelMgr> manager(proxy->GetDataModelMgr());
    if (!manager || !ResolveAssetsFromUnspecifiedAccessors(manager, *assets, inputs.objects))
        return false;
    inputs.dataControl = hbrc::internal::ServiceOf<kel4::IDataControl>(manager, kel4::UID_DataControl());
    return !inputs.dataControl.IsNull();
}

void BaseScsCommand::RecordResult(kelResult result, const std::string& errorText)
{
    AddParam(nrk::fwk::StringParam(kErrorStringParam, errorText));
    SetReturnValue(result.GetCode());
}

bool BaseScsCommand::RunOnAllObjectsInChangelist(ListOperation operation)
{
    Inputs inputs;
    if (!ResolveInputs(inputs))
        return false;
    std::string errorText;
    const kelResult result = ((*inputs.dataControl).*operation)(inputs.objects, inputs.includeExternalFiles,
                                                                 kel4::closureId::Persistence, inputs.changelist,
                                                                 errorText);
    if (result.GetCode() == kel4::kResultSuccess)
        NotifyDataModel(inputs.dataControl, inputs.objects);
    RecordResult(result, errorText);
    return true;
}
