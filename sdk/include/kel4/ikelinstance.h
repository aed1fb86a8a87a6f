#pragma once

#include "iservice.h"
#include "kelptr.h"

namespace kel4 {

/// A database instance: the object database of one workspace and the services that work on it.
class KEL_INTERFACE IKELInstance : public IRefCounted
{
public:
    /// The service registered under id, or null when the instance has none.
    virtual KELPtr<IService> GetService(const ServiceId& id) const = 0;
};

}  // namespace kel4
