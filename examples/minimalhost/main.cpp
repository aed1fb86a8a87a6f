// The smallest host of the revision-control plug-in: a component system, a preference store, the
// plug-in loaded by path, and its settings manager told and asked about the editing action.
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <ihbprefmanager.h>
#include <kel4/plugin.h>
#include <nrk/isystem.h>
#include <sdkruntime/hosthooks.h>

#include <dlfcn.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

// Factories and singletons by name; a singleton is made by its factory on first lookup.
class MinimalSystem final : public nrk::ISystem
{
public:
    ~MinimalSystem() override
    {
        for (auto& [name, object] : m_owned) {
            if (auto* singleton = dynamic_cast<nrk::ISingleton*>(object))
                singleton->Term();
            delete object;
        }
    }
    bool IsAcceptingRegistrations() const override { return true; }
    bool RegisterFactory(const char* name, nrk::FactoryFunction factory) override
    {
        return m_factories.emplace(name, factory).second;
    }
    bool RegisterSingleton(const char* name, nrk::IBase* object) override
    {
        return m_singletons.emplace(name, object).second;
    }
    void UnregisterSingleton(const char* name) override { m_singletons.erase(name); }
    nrk::IBase* GetSingleton(const char* name) override
    {
        if (auto found = m_singletons.find(name); found != m_singletons.end())
            return found->second;
        nrk::IBase* object = CreateInstance(name);
        if (!object)
            return nullptr;
        m_singletons[name] = m_owned[name] = object;
        if (auto* singleton = dynamic_cast<nrk::ISingleton*>(object))
            singleton->Init();
        return object;
    }
    nrk::IBase* CreateInstance(const char* name) override
    {
        auto factory = m_factories.find(name);
        return factory == m_factories.end() ? nullptr : factory->second();
    }
    std::vector<std::string> GetFactoryNames() const override { return namesOf(m_factories); }
    std::vector<std::string> GetSingletonNames() const override { return namesOf(m_singletons); }

private:
    template <class Map>
    static std::vector<std::string> namesOf(const Map& map)
    {
        std::vector<std::string> names;
        for (const auto& entry : map)
            names.push_back(entry.first);
        return names;
    }
    std::map<std::string, nrk::FactoryFunction> m_factories;
    std::map<std::string, nrk::IBase*> m_singletons;
    std::map<std::string, nrk::IBase*> m_owned;
};

// Preferences kept in memory, printed as they are written.
class MemoryPrefs final : public IHBPrefManager, public nrk::IBase
{
public:
    const char* GetClsName() const override { return "Example.MemoryPrefs"; }
    bool SetBoolPref(const std::string& key, bool value, int) override { return set(key, value ? "true" : "false"); }
    bool SetStringPref(const std::string& key, const std::string& value, int) override { return set(key, value); }
    bool SetIntPref(const std::string& key, int value, int) override { return set(key, std::to_string(value)); }
    bool GetBoolPref(const std::string& key, bool fallback, bool& value, int) override
    {
        auto found = m_values.find(key);
        value = found == m_values.end() ? fallback : found->second == "true";
        return true;
    }
    bool GetStringPref(const std::string& key, const char* fallback, std::string& value, int) override
    {
        auto found = m_values.find(key);
        value = found == m_values.end() ? std::string(fallback ? fallback : "") : found->second;
        return true;
    }
    bool GetIntPref(const std::string& key, int fallback, int& value, int) override
    {
        auto found = m_values.find(key);
        value = found == m_values.end() ? fallback : std::stoi(found->second);
        return true;
    }

private:
    bool set(const std::string& key, const std::string& value)
    {
        std::printf("  preference %s = %s\n", key.c_str(), value.c_str());
        m_values[key] = value;
        return true;
    }
    std::map<std::string, std::string> m_values;
};

}  // namespace

int main()
{
    MinimalSystem system;
    MemoryPrefs prefs;
    system.RegisterSingleton(IHBPrefManager::GetSingletonName(), &prefs);
    sdkruntime::SetSystem(&system);

    void* plugin = dlopen(PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    auto registerPlugin = plugin ? reinterpret_cast<PluginRegisterFunction>(dlsym(plugin, "plxPluginRegister")) : nullptr;
    if (!registerPlugin) {
        std::fprintf(stderr, "minimalhost: cannot load %s: %s\n", PLUGIN_PATH, dlerror());
        return 1;
    }
    registerPlugin();
    for (const std::string& name : system.GetFactoryNames())
        std::printf("plug-in registered %s\n", name.c_str());

    auto* settings = dynamic_cast<IRevisionControlPropertiesMgr*>(system.GetSingleton("RevisionControlPropertiesMgr"));
    if (!settings) {
        std::fprintf(stderr, "minimalhost: the plug-in offers no settings manager\n");
        return 1;
    }
    // (Switching revision control on also hands the account to the database's data control, which
    // needs the host's database proxy; this host has none.)
    std::printf("checking out into changelist 12 without asking:\n");
    settings->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
    settings->SetChangeListToUseWhenAutoCheckingOut("12");
    IRevisionControlPropertiesMgr::ActionWhenEditingReadOnlyAsset action{};
    std::string changeList;
    settings->GetActionWhenEditingReadOnlyAsset(action);
    settings->GetChangeListToUseWhenAutoCheckingOut(changeList);
    std::printf("editing action %d, changelist %s\n", int(action), changeList.c_str());
    sdkruntime::SetSystem(nullptr);
    return action == IRevisionControlPropertiesMgr::eActionCheckOut && changeList == "12" ? 0 : 1;
}
