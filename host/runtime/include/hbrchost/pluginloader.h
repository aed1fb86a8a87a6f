#pragma once

#include <hbrchost/export.h>

#include <string>
#include <vector>

namespace hbrc::host {

// Loads plug-in shared libraries and calls their plxPluginRegister. A loaded library stays mapped
// for the life of the process, also after the loader is gone: the factories it registered and the
// components it made may outlive the loader (a component system destroyed after it, say).
class HBRC_HOSTRUNTIME_EXPORT PluginLoader
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
