#include <hbrcsession/hostsession.h>

#include <hbrcdatamodel/workspacestatefile.h>

#include <QDir>
#include <QFileInfo>

namespace hbrc::host {

HostSession::HostSession(const QString& preferencesFile)
    : m_plugins(std::make_unique<PluginLoader>()),
      m_system(std::make_unique<ComponentSystem>()),
      m_preferences(std::make_unique<PrefManager>(preferencesFile)),
      m_proxy(std::make_unique<KelDbProxy>()),
      m_commands(std::make_unique<CommandManager>())
{
    m_system->RegisterSingleton(IHBPrefManager::GetSingletonName(), m_preferences.get());
    m_system->RegisterSingleton(nrk::fwk::IKELDBProxy::GetSingletonName(), m_proxy.get());
    m_system->RegisterSingleton(nrk::fwk::ICommandManager::GetSingletonName(), m_commands.get());
}

HostSession::~HostSession()
{
    CloseWorkspace();
    m_system->DestroyOwnedSingletons();
    m_system->UnregisterSingleton(nrk::fwk::ICommandManager::GetSingletonName());
    m_system->UnregisterSingleton(nrk::fwk::IKELDBProxy::GetSingletonName());
    m_system->UnregisterSingleton(IHBPrefManager::GetSingletonName());
    m_system.reset();
    m_commands.reset();
    m_proxy.reset();
    m_preferences.reset();
}

bool HostSession::LoadPlugin(const std::string& libraryPath, std::string& errorText)
{
    return m_plugins->Load(libraryPath, errorText);
}

nrk::IBase* HostSession::StartComponent(const char* name)
{
    return m_system->GetSingleton(name);
}

void HostSession::AddWorkspaceSetup(WorkspaceSetup setup)
{
    m_setups.push_back(std::move(setup));
}

Workspace* HostSession::OpenWorkspace(const QString& folder, std::string& errorText)
{
    CloseWorkspace();
    m_opening = Workspace::Open(folder, errorText);
    return m_opening ? FinishOpeningWorkspace() : nullptr;
}

Workspace* HostSession::BeginOpeningWorkspace(const QString& folder, std::string& errorText)
{
    CloseWorkspace();
    m_opening = Workspace::OpenEmpty(folder, errorText);
    return m_opening.get();
}

Workspace* HostSession::FinishOpeningWorkspace()
{
    m_workspace = std::move(m_opening);
    // Beside the preferences, per workspace: new assets that revision control has not taken yet.
    const QString folder = QFileInfo(m_preferences->FilePath()).absoluteDir().filePath(QStringLiteral("not-added"));
    m_workspace->Model().DataSource().KeepNotYetAddedIn(WorkspaceStateFile(folder, m_workspace->Root(), QStringLiteral("list")));
    for (const WorkspaceSetup& setup : m_setups)
        setup(*m_workspace);
    m_proxy->Attach(*m_workspace);
    return m_workspace.get();
}

void HostSession::CloseWorkspace()
{
    m_opening.reset();
    if (!m_workspace)
        return;
    m_proxy->Detach();
    m_commands->Clear();
    m_workspace.reset();
}

}  // namespace hbrc::host
