#pragma once

#include "account.h"

#include <hbrcservices/revisioncontrolservices.h>
#include <hbrcsession/hostsession.h>

#include <QString>
#include <QStringList>

#include <memory>
#include <string>

class IRevisionControlPropertiesMgr;
namespace kel4 {
class IRevisionControlUIHelper;
}

namespace hbrc::studio {

// The host behind the studio's window: the reference host session with the revision-control
// plug-in loaded and started, the open workspace and its revision-control services.
class StudioSession
{
public:
    // connection: how the workspaces' services talk to their server (e.g. when a slow operation
    // shows the progress box).
    explicit StudioSession(const QString& preferencesFile, host::ConnectionOptions connection = {});
    ~StudioSession();
    StudioSession(const StudioSession&) = delete;
    StudioSession& operator=(const StudioSession&) = delete;

    // Loads the plug-in from the host's plug-in folder and starts its two components.
    bool start(std::string& errorText);

    // The account as the preferences hold it, with the password of this run (no ticket).
    Account storedAccount();
    // The account a worker thread asks the server with: the server the services opened and the
    // ticket of their session; empty without services.
    Account sessionAccount();
    // Writes the account's server, user and workspace name to the preferences.
    void storeAccount(const Account& account);
    void setPassword(std::string password) { m_password = std::move(password); }

    // Opens folder in two steps. beginOpening answers its workspace without assets, which the
    // caller reads into it (WorkspaceReader), and the folder joins the recent workspaces; null with
    // errorText when the folder cannot be opened. finishOpening makes it the current workspace, with
    // revision-control services for the stored account's server, without a session (the services
    // answer -34 until one is installed: SessionController logs in).
    host::Workspace* beginOpening(const QString& folder, std::string& errorText);
    host::Workspace* finishOpening();
    void close();
    QStringList recentWorkspaces();
    // Where the offline journal of the open workspace is kept: beside the preferences, outside the
    // workspace.
    QString offlineJournalFile() const;
    // Whether the user switched the open workspace to work offline: kept per workspace folder, so
    // that a restart opens it offline too.
    bool workOfflineChosen();
    void setWorkOfflineChosen(bool offline);
    // How often the window asks the server about the assets' status by itself (0: never).
    int statusRefreshSeconds();
    void setStatusRefreshSeconds(int seconds);

    host::HostSession& host() { return m_host; }
    host::Workspace* currentWorkspace() const { return m_host.CurrentWorkspace(); }
    const host::RevisionControlServices& services() const { return m_services; }
    kel4::IRevisionControlUIHelper* helper() const { return m_helper; }
    IRevisionControlPropertiesMgr* settings() const { return m_settings; }

private:
    host::HostSession m_host;
    const QString m_preferencesFile;
    const host::ConnectionOptions m_connectionOptions;
    host::RevisionControlServices m_services;
    kel4::IRevisionControlUIHelper* m_helper = nullptr;
    IRevisionControlPropertiesMgr* m_settings = nullptr;
    std::string m_password;
};

}  // namespace hbrc::studio
