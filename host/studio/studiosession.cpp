#include "studiosession.h"

#include <hbrcdatamodel/offlinejournal.h>
#include <hbrchost/pluginloader.h>
#include <hbrcservices/userparameters.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <kel4/irevisioncontroluihelper.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace hbrc::studio {

namespace {
constexpr const char* kServerKey = "RevControl.Server";
constexpr const char* kUserKey = "RevControl.UserName";
constexpr const char* kWorkspaceKey = "RevControl.Workspace";
constexpr const char* kRecentKey = "Studio.RecentWorkspaces";
constexpr int kRecentCount = 8;
constexpr const char* kRefreshKey = "Studio.StatusRefreshSeconds";
constexpr int kDefaultRefreshSeconds = 60;
// The folders of the workspaces switched to work offline, one a line.
constexpr const char* kOfflineKey = "Studio.OfflineWorkspaces";

// A preference that holds a list, one item a line.
QStringList storedList(host::PrefManager& preferences, const char* key)
{
    std::string stored;
    preferences.GetStringPref(key, "", stored, 0);
    return QString::fromStdString(stored).split('\n', Qt::SkipEmptyParts);
}
}  // namespace

StudioSession::StudioSession(const QString& preferencesFile, host::ConnectionOptions connection)
    : m_host(preferencesFile), m_preferencesFile(preferencesFile), m_connectionOptions(std::move(connection))
{
    m_host.AddWorkspaceSetup([this](host::Workspace& workspace) {
        m_services = host::InstallRevisionControlServices(workspace, storedAccount().server, m_connectionOptions);
    });
}

StudioSession::~StudioSession()
{
    m_host.CloseWorkspace();
}

bool StudioSession::start(std::string& errorText)
{
    const std::string plugin = host::PluginLoader::DefaultPluginDirectory() + "/libhbrevisioncontrol.so";
    if (!m_host.LoadPlugin(plugin, errorText))
        return false;
    m_helper = dynamic_cast<kel4::IRevisionControlUIHelper*>(m_host.StartComponent("RevisionControlUIHelper"));
    m_settings = dynamic_cast<IRevisionControlPropertiesMgr*>(m_host.StartComponent("RevisionControlPropertiesMgr"));
    if (!m_helper || !m_settings) {
        errorText = "the plug-in " + plugin + " did not provide its helper and settings";
        return false;
    }
    return true;
}

Account StudioSession::storedAccount()
{
    Account account;
    host::PrefManager& prefs = m_host.Preferences();
    prefs.GetStringPref(kServerKey, "", account.server, 0);
    prefs.GetStringPref(kUserKey, "", account.userName, 0);
    prefs.GetStringPref(kWorkspaceKey, "", account.workspaceName, 0);
    account.password = m_password;
    return account;
}

Account StudioSession::sessionAccount()
{
    if (!m_services.dataControl)
        return {};
    Account account = storedAccount();
    account.server = m_services.connection->Server();
    account.ticket = host::UserParameters::TicketOf(m_services.dataControl->GetUserParameters().Get());
    return account;
}

void StudioSession::storeAccount(const Account& account)
{
    // Straight into the preferences: the settings' setters would hand the data control an account
    // without a session, and the next open logs in anyway.
    host::PrefManager& prefs = m_host.Preferences();
    prefs.SetStringPref(kServerKey, account.server, 1);
    prefs.SetStringPref(kUserKey, account.userName, 1);
    prefs.SetStringPref(kWorkspaceKey, account.workspaceName, 1);
}

host::Workspace* StudioSession::beginOpening(const QString& folder, std::string& errorText)
{
    m_services = {};  // they belong to the workspace that closes now
    const QString absolute = QDir(folder).absolutePath();
    host::Workspace* opening = m_host.BeginOpeningWorkspace(absolute, errorText);
    if (!opening)
        return nullptr;
    QStringList recent = recentWorkspaces();
    recent.removeAll(absolute);
    recent.prepend(absolute);
    m_host.Preferences().SetStringPref(kRecentKey, recent.mid(0, kRecentCount).join('\n').toStdString(), 1);
    return opening;
}

host::Workspace* StudioSession::finishOpening()
{
    return m_host.FinishOpeningWorkspace();
}

void StudioSession::close()
{
    m_host.CloseWorkspace();
    m_services = {};
}

QString StudioSession::offlineJournalFile() const
{
    const QString folder = QFileInfo(m_preferencesFile).absoluteDir().filePath(QStringLiteral("offline"));
    return currentWorkspace() ? host::OfflineJournal::FileFor(folder, currentWorkspace()->Root()) : QString();
}

bool StudioSession::workOfflineChosen()
{
    return currentWorkspace() && storedList(m_host.Preferences(), kOfflineKey).contains(currentWorkspace()->Root());
}

void StudioSession::setWorkOfflineChosen(bool offline)
{
    if (!currentWorkspace())
        return;
    QStringList folders = storedList(m_host.Preferences(), kOfflineKey);
    folders.removeAll(currentWorkspace()->Root());
    if (offline)
        folders << currentWorkspace()->Root();
    m_host.Preferences().SetStringPref(kOfflineKey, folders.join('\n').toStdString(), 1);
}

QStringList StudioSession::recentWorkspaces()
{
    return storedList(m_host.Preferences(), kRecentKey);
}

int StudioSession::statusRefreshSeconds()
{
    int seconds = kDefaultRefreshSeconds;
    m_host.Preferences().GetIntPref(kRefreshKey, kDefaultRefreshSeconds, seconds, 0);
    return std::max(seconds, 0);
}

void StudioSession::setStatusRefreshSeconds(int seconds)
{
    m_host.Preferences().SetIntPref(kRefreshKey, std::max(seconds, 0), 1);
}

}  // namespace hbrc::studio
