#pragma once

#include "internalvisibility.h"

#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <kel4/idatacontrol.h>
#include <kel4/idatamodelmgr.h>
#include <kel4/ikelinstance.h>
#include <kel4/kelptr.h>
#include <nrk/fwk/ikeldbproxy.h>
#include <nrk/isystem.h>

// Finding the host's singletons and services. Singletons are looked up by name on every use.
HBRC_INTERNAL_NAMESPACE_BEGIN

inline nrk::fwk::IKELDBProxy* FindDBProxy()
{
    return nrk::GetSingletonAs<nrk::fwk::IKELDBProxy>(nrk::fwk::IKELDBProxy::GetSingletonName());
}

inline IRevisionControlPropertiesMgr* FindPropertiesMgr()
{
    return nrk::GetSingletonAs<IRevisionControlPropertiesMgr>("RevisionControlPropertiesMgr");
}

// The service id of manager's database instance, narrowed to T (null when the instance lacks the
// service or the service lacks T). A null manager or instance raises the null-pointer failure.
template <class T>
KELPtr<T> ServiceOf(const KELPtr<kel4::IDataModelMgr>& manager, const kel4::ServiceId& id)
{
    KELPtr<kel4::IKELInstance> instance = manager.GetPointeeNotNull().GetInstance();
    return KELPtr<T>(instance.GetPointeeNotNull().GetService(id));
}

// The service id of the database proxy's current database; a missing proxy, manager or instance
// raises the null-pointer failure.
template <class T>
KELPtr<T> CurrentService(const kel4::ServiceId& id)
{
    nrk::fwk::IKELDBProxy* proxy = FindDBProxy();
    if (!proxy)
        kel4::RaiseNullPtr("hostservices.h");
    return ServiceOf<T>(KELPtr<kel4::IDataModelMgr>(proxy->GetDataModelMgr()), id);
}

// The data control of an object: its manager's database instance's data-control service.
inline KELPtr<kel4::IDataControl> DataControlOf(const KELHandle<IDbObject>& object)
{
    return ServiceOf<kel4::IDataControl>(object.GetManager(), kel4::UID_DataControl());
}

HBRC_INTERNAL_NAMESPACE_END
