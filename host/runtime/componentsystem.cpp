#include <hbrchost/componentsystem.h>

#include <log/log.h>
#include <sdkruntime/hosthooks.h>

#include <algorithm>

namespace hbrc::host {

ComponentSystem::ComponentSystem()
{
    if (nrkIsSystemInitialized())
        Log::Singleton::Instance().Write(Log::eWarning, "A second component system replaces the running one");
    sdkruntime::SetSystem(this);
}

ComponentSystem::~ComponentSystem()
{
    DestroyOwnedSingletons();
    if (nrkGetSystem() == this)
        sdkruntime::SetSystem(nullptr);
}

bool ComponentSystem::RegisterFactory(const char* name, nrk::FactoryFunction factory)
{
    if (!name || !factory || !m_accepting)
        return false;
    return m_factories.emplace(name, factory).second;
}

bool ComponentSystem::RegisterSingleton(const char* name, nrk::IBase* object)
{
    if (!name || !object || !m_accepting)
        return false;
    return m_singletons.emplace(name, object).second;
}

void ComponentSystem::UnregisterSingleton(const char* name)
{
    if (!name)
        return;
    auto owned = std::find(m_ownedInCreationOrder.begin(), m_ownedInCreationOrder.end(), name);
    if (owned != m_ownedInCreationOrder.end()) {
        m_ownedInCreationOrder.erase(owned);
        nrk::IBase* object = m_singletons[name];
        m_singletons.erase(name);
        if (auto* singleton = dynamic_cast<nrk::ISingleton*>(object))
            singleton->Term();
        DestroyComponent(object);
        return;
    }
    m_singletons.erase(name);
}

nrk::IBase* ComponentSystem::GetSingleton(const char* name)
{
    if (!name)
        return nullptr;
    if (auto found = m_singletons.find(name); found != m_singletons.end())
        return found->second;
    nrk::IBase* object = CreateInstance(name);
    if (!object)
        return nullptr;
    m_singletons.emplace(name, object);
    m_ownedInCreationOrder.emplace_back(name);
    if (auto* singleton = dynamic_cast<nrk::ISingleton*>(object))
        singleton->Init();
    return object;
}

nrk::IBase* ComponentSystem::CreateInstance(const char* name)
{
    if (!name)
        return nullptr;
    auto factory = m_factories.find(name);
    return factory == m_factories.end() ? nullptr : factory->second();
}

std::vector<std::string> ComponentSystem::GetFactoryNames() const
{
    std::vector<std::string> names;
    for (const auto& entry : m_factories)
        names.push_back(entry.first);
    return names;
}

std::vector<std::string> ComponentSystem::GetSingletonNames() const
{
    std::vector<std::string> names;
    for (const auto& entry : m_singletons)
        names.push_back(entry.first);
    return names;
}

void ComponentSystem::DestroyOwnedSingletons()
{
    while (!m_ownedInCreationOrder.empty()) {
        const std::string name = m_ownedInCreationOrder.back();
        UnregisterSingleton(name.c_str());
    }
}

void DestroyComponent(nrk::IBase* object)
{
    if (auto* destroy = dynamic_cast<nrk::IDestroy*>(object))
        delete destroy;
    else
        delete object;
}

}  // namespace hbrc::host
