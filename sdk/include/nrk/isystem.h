#pragma once

#include "ibase.h"

#include <kel4/sdkglobal.h>

#include <string>
#include <vector>

namespace nrk {

using FactoryFunction = IBase* (*)();

/// The host's component system and singleton registry.
class KEL_INTERFACE ISystem
{
public:
    virtual ~ISystem() = default;

    /// True while the system accepts registrations (between its start and its shutdown).
    virtual bool IsAcceptingRegistrations() const = 0;
    /// Registers a factory under a name; false when the name is taken.
    virtual bool RegisterFactory(const char* name, FactoryFunction factory) = 0;
    /// Registers an existing object as the singleton of that name (the system does not own it).
    virtual bool RegisterSingleton(const char* name, IBase* object) = 0;
    virtual void UnregisterSingleton(const char* name) = 0;
    /// The singleton of that name, or null. A name with a factory but no object yet is created
    /// through the factory (and initialised when it is an ISingleton) on first lookup; the system
    /// then owns it: Term and destruction through IDestroy happen at the system's shutdown.
    virtual IBase* GetSingleton(const char* name) = 0;
    /// A new object from the factory of that name (not a singleton), or null.
    virtual IBase* CreateInstance(const char* name) = 0;
    virtual std::vector<std::string> GetFactoryNames() const = 0;
    virtual std::vector<std::string> GetSingletonNames() const = 0;
};

}  // namespace nrk

/// The component system of the running host; null before the host has started it.
extern "C" KEL_RUNTIME_API nrk::ISystem* nrkGetSystem();
extern "C" KEL_RUNTIME_API bool nrkIsSystemInitialized();

namespace nrk {

/// Looks a singleton up by name and narrows it; null when absent or of another kind.
template <class T>
T* GetSingletonAs(const char* name)
{
    if (!nrkIsSystemInitialized())
        return nullptr;
    ISystem* system = nrkGetSystem();
    return system ? dynamic_cast<T*>(system->GetSingleton(name)) : nullptr;
}

}  // namespace nrk
