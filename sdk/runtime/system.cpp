// The running host's component system, as plug-ins reach it.
#include <nrk/isystem.h>
#include <sdkruntime/hosthooks.h>

#include <atomic>

namespace {
std::atomic<nrk::ISystem*> g_system{nullptr};
}

extern "C" nrk::ISystem* nrkGetSystem()
{
    return g_system.load();
}

extern "C" bool nrkIsSystemInitialized()
{
    return g_system.load() != nullptr;
}

namespace sdkruntime {

void SetSystem(nrk::ISystem* system)
{
    g_system.store(system);
}

}  // namespace sdkruntime
