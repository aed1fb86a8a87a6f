// The status questions the host asks before it lets the user change an asset.
#include "revisioncontroluihelper.h"

#include "hostservices.h"

using hbrc::internal::DataControlOf;

bool CRevisionControlUIHelper::CanCheckOutObject(const KELHandle<IDbObject>& object, bool includeExternalFiles)
{
    IRevisionControlPropertiesMgr* settings = hbrc::internal::FindPropertiesMgr();
    if (!settings)
        return false;
    bool enabled = false;
    if (!settings->GetUseSourceDataControl(enabled) || !enabled)
        return false;
    KELPtr<kel4::IDataControl> dataControl = DataControlOf(object);
    if (!dataControl)
        return false;
    bool canCheckOut = false;
    const kelResult result =
        dataControl->CanCheckOut(object, includeExternalFiles, kel4::closureId::Persistence, canCheckOut);
    // When the status cannot be determined the check-out may still be attempted; its own failure
    // is reported there.
    if (result.IsFailure())
        return true;
    return canCheckOut;
}

bool CRevisionControlUIHelper::CanMakeObjectWritable(const KELHandle<IDbObject>& object, bool includeExternalFiles)
{
    KELPtr<kel4::IDataControl> dataControl = DataControlOf(object);
    if (!dataControl)
        return false;
    return dataControl->CanMakeWritable(object, includeExternalFiles, kel4::closureId::Persistence);
}

kelResult CRevisionControlUIHelper::GetObjectStatus(const ObjectList& objects, bool includeExternalFiles, bool flag,
                                                    kel4::List<unsigned int>& statuses)
{
    if (objects.empty())
        return kelResult(kel4::kResultEmptyQuery);
    KELPtr<kel4::IDataControl> dataControl = DataControlOf(objects.front());
    std::string errorText;
    return dataControl.GetPointeeNotNull().GetStatus(objects, includeExternalFiles, kel4::closureId::Persistence,
                                                     flag, statuses, errorText);
}
