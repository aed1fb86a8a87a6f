#pragma once

#include <hbrcsession/export.h>

#include <hbrcdatamodel/commandmanager.h>
#include <hbrcdatamodel/keldbproxy.h>
#include <hbrcdatamodel/workspace.h>

#include <hbrchost/componentsystem.h>
#include <hbrchost/pluginloader.h>
#include <hbrchost/prefmanager.h>

#include <QString>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace hbrc::host {

// The whole reference host in one object, for the studio, tests and benchmarks:
//
//     HostSession host(prefsFile);                       // component system + singletons
//     host.AddWorkspaceSetup([&](Workspace& w) { ... }); // e.g. register revision-control services
//     host.LoadPlugin(path, error);                      // optional: the revision-control plug-in
//     Workspace* w = host.OpenWorkspace(folder, error);  // setups run, then the proxy connects
//     ... w->CreateAsset(...); w->Save(); ...
//     host.CloseWorkspace();                             // the proxy disconnects first
//
// The session is the running component system (nrkGetSystem) while it lives, with the singletons
// "PrefManager", "KELDBProxy" and "UndoManager" registered. Only one session may live at a time.
// On destruction it closes the workspace, destroys the singletons the system created (the
// plug-ins' components), then its own, and unloads the plug-ins last.
class HBRC_HOSTSESSION_EXPORT HostSession
{
public:
    using WorkspaceSetup = std::function<void(Workspace&)>;

    explicit HostSession(const QString& preferencesFile = PrefManager::DefaultFilePath());
    ~HostSession();
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    ComponentSystem& System() { return *m_system; }
    PrefManager& Preferences() { return *m_preferences; }
    KelDbProxy& Proxy() { return *m_proxy; }
    CommandManager& Commands() { return *m_commands; }

    // Loads a plug-in library and registers it with the component system.
    bool LoadPlugin(const std::string& libraryPath, std::string& errorText);
    // Creates the singleton of that name through its factory (what the host does at start-up for
    // the components of its plug-ins); null when none is registered.
    nrk::IBase* StartComponent(const char* name);

    // Runs on every workspace opened from now on, after its assets are loaded and before the
    // proxy announces it: the place to register the instance's services.
    void AddWorkspaceSetup(WorkspaceSetup setup);
    // Closes the current workspace, then opens folder; null with errorText when it cannot be opened.
    Workspace* OpenWorkspace(const QString& folder, std::string& errorText);
    // The same in two steps, for a workspace whose assets are read while the host goes on: Begin
    // closes the current workspace and answers the new one without assets (null with errorText
    // when folder cannot be opened); it is not current yet, so nothing that asks for the current
    // workspace sees it half read. The caller adds the assets (Workspace::AddRead), then Finish
    // runs the setups, connects the proxy and makes it current.
    Workspace* BeginOpeningWorkspace(const QString& folder, std::string& errorText);
    Workspace* FinishOpeningWorkspace();
    // Closes the current workspace, and one that is being opened.
    void CloseWorkspace();
    Workspace* CurrentWorkspace() const { return m_workspace.get(); }

private:
    std::unique_ptr<PluginLoader> m_plugins;  // declared first: unloaded last
    std::unique_ptr<ComponentSystem> m_system;
    std::unique_ptr<PrefManager> m_preferences;
    std::unique_ptr<KelDbProxy> m_proxy;
    std::unique_ptr<CommandManager> m_commands;
    std::vector<WorkspaceSetup> m_setups;
    std::unique_ptr<Workspace> m_opening;
    std::unique_ptr<Workspace> m_workspace;
};

}  // namespace hbrc::host
