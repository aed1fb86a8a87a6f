#include <hbrchost/pluginloader.h>

#include <kel4/plugin.h>
#include <log/log.h>

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>

namespace hbrc::host {

PluginLoader::~PluginLoader()
{
    for (auto it = m_handles.rbegin(); it != m_handles.rend(); ++it)
        dlclose(*it);
}

bool PluginLoader::Load(const std::string& libraryPath, std::string& errorText)
{
    dlerror();
    void* handle = dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle) {
        const char* reason = dlerror();
        errorText = "Cannot load plug-in '" + libraryPath + "': " + (reason ? reason : "unknown reason");
        Log::Singleton::Instance().Write(Log::eError, errorText);
        return false;
    }
    auto entry = reinterpret_cast<PluginRegisterFunction>(dlsym(handle, "plxPluginRegister"));
    if (!entry) {
        const char* reason = dlerror();
        errorText = "Plug-in '" + libraryPath + "' has no plxPluginRegister: " + (reason ? reason : "symbol missing");
        Log::Singleton::Instance().Write(Log::eError, errorText);
        dlclose(handle);
        return false;
    }
    entry();
    m_handles.push_back(handle);
    m_paths.push_back(libraryPath);
    return true;
}

std::string PluginLoader::DefaultPluginDirectory()
{
    if (const char* dir = std::getenv("HBRC_PLUGIN_DIR"); dir && *dir)
        return dir;
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error)
        return "lib";
    return (program.parent_path().parent_path() / "lib").string();
}

}  // namespace hbrc::host
