// Operations whose flows this build of the plug-in does not carry yet. Each one says so in the
// host log and gives the answer that changes nothing: no check-out, no write, no file listed.
#include "revisioncontroluihelper.h"

#include <log/log.h>

namespace {

void reportNotAvailable(const char* operation)
{
    Log::Singleton::Instance().Write(Log::eWarning,
                                     std::string(operation) + " is not available in this build of the plug-in");
}

}  // namespace

bool CRevisionControlUIHelper::CheckOutObject(const KELHandle<IDbObject>& object, bool& cancelled,
                                              bool includeExternalFiles)
{
    return CheckOutObjects(ObjectList{object}, cancelled, includeExternalFiles);
}

bool CRevisionControlUIHelper::CheckOutObjects(const ObjectList&, bool& cancelled, bool)
{
    reportNotAvailable("CheckOutObjects");
    cancelled = true;
    return false;
}

bool CRevisionControlUIHelper::MakeObjectWritable(const KELHandle<IDbObject>&, bool)
{
    reportNotAvailable("MakeObjectWritable");
    return false;
}

bool CRevisionControlUIHelper::CanEditObjects(const ObjectList& objects, bool, bool, const std::string&)
{
    if (objects.empty() || !IsRevisionControlEnabled())
        return true;
    reportNotAvailable("CanEditObjects");
    return false;
}

void CRevisionControlUIHelper::OnPreCommit(ItemLibraryAccessor&, bool* cancel)
{
    if (cancel)
        *cancel = false;
}

void CRevisionControlUIHelper::OnPostCommit(ItemLibraryAccessor&)
{
}
