#pragma once

#include <kel4/sdkglobal.h>

namespace nrk {

/// Every component the host's component system creates or registers. Narrow it with dynamic_cast.
class KEL_INTERFACE IBase
{
public:
    virtual ~IBase() = default;
    /// The component's class identifier.
    virtual const char* GetClsName() const = 0;
};

/// A component that lives once per host: Init after creation, Term before destruction.
class KEL_INTERFACE ISingleton
{
public:
    virtual ~ISingleton() = default;
    virtual void Init() = 0;
    virtual void Term() = 0;
};

/// A component the host destroys itself (delete through this interface).
class KEL_INTERFACE IDestroy
{
public:
    virtual ~IDestroy() = default;
};

}  // namespace nrk
