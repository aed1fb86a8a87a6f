#pragma once

#include <hbrchost/export.h>
#include <nrk/isystem.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// The host's component system. One instance is the running system (nrkGetSystem) from its
// construction to its destruction; singletons it created are terminated and destroyed then, in
// reverse order of creation.
class HBRC_HOSTRUNTIME_EXPORT ComponentSystem final : public nrk::ISystem
{
public:
    ComponentSystem();
    ~ComponentSystem() override;
    ComponentSystem(const ComponentSystem&) = delete;
    ComponentSystem& operator=(const ComponentSystem&) = delete;

    bool IsAcceptingRegistrations() const override { return m_accepting; }
    bool RegisterFactory(const char* name, nrk::FactoryFunction factory) override;
    bool RegisterSingleton(const char* name, nrk::IBase* object) override;
    void UnregisterSingleton(const char* name) override;
    nrk::IBase* GetSingleton(const char* name) override;
    nrk::IBase* CreateInstance(const char* name) override;
    std::vector<std::string> GetFactoryNames() const override;
    std::vector<std::string> GetSingletonNames() const override;

    // Stops taking registrations (a host shutting down).
    void SetAcceptingRegistrations(bool accepting) { m_accepting = accepting; }
    // Terminates and destroys the singletons the system created, newest first.
    void DestroyOwnedSingletons();

private:
    std::map<std::string, nrk::FactoryFunction> m_factories;
    std::map<std::string, nrk::IBase*> m_singletons;
    std::vector<std::string> m_ownedInCreationOrder;
    bool m_accepting = true;
};

// Destroys an object the component system handed out: through IDestroy when it offers it.
HBRC_HOSTRUNTIME_EXPORT void DestroyComponent(nrk::IBase* object);

}  // namespace hbrc::host
