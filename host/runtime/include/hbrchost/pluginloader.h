#pragma once

#include <kel4/sdkglobal.h>

#include <string>
#include <vector>

namespace hbrc::host {

// Loads plug-in shared libraries and calls their plxPluginRegister. Libraries stay loaded until
// the loader is destroyed; destroy it after the components the plug-ins made.
class KEL_RUNTIME_API PluginLoader
{
public:
    PluginLoader() = default;
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    // Loads the library and registers it. On failure returns false and sets errorText to a message
    // naming the library and the system loader's reason.
    bool Load(const std::string& libraryPath, std::string& errorText);
    const std::vector<std::string>& LoadedLibraries() const { return m_paths; }

    // Where the host finds its plug-ins: $HBRC_PLUGIN_DIR, else the "lib" folder beside the program's folder.
    static std::string DefaultPluginDirectory();

private:
    std::vector<void*> m_handles;
    std::vector<std::string> m_paths;
};

}  // namespace hbrc::host
