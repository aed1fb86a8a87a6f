#pragma once

#include <hbrcservices/export.h>
#include <hbrcservices/datacontrol.h>
#include <hbrcservices/fileversioncontrol.h>
#include <hbrcservices/serverconnection.h>

#include <memory>
#include <string>

namespace hbrc::host {

class Workspace;

// An account to log in with when the services are installed.
struct RevisionControlAccount
{
    std::string userName;
    std::string password;
    std::string workspace;  // the server's workspace whose root is the workspace folder
};

// The two revision-control services of one open workspace and the connection they share.
struct HBRC_SERVICES_EXPORT RevisionControlServices
{
    std::shared_ptr<ServerConnection> connection;
    KELPtr<DataControl> dataControl;
    KELPtr<FileVersionControl> fileVersionControl;

    // Fault injection: the data control's session stops working now (one round trip).
    kelResult ExpireSessionNow();
};

// Registers a data control and a file version control over the server that the setting server
// names (an embedded depot's file or a repository URL) in the workspace's database instance (under
// UID_DataControl and UID_FileVersionControl), replacing any registered before. No session is installed: operations answer -34 until the host logs in
// and calls SetSession. With HostSession, call it from a workspace setup:
//
//     host.AddWorkspaceSetup([&](Workspace& w) { services = InstallRevisionControlServices(w, server); });
HBRC_SERVICES_EXPORT RevisionControlServices InstallRevisionControlServices(Workspace& workspace,
                                                                            const std::string& server,
                                                                            const ConnectionOptions& options = {});

// The same, then logs account in and installs the session in the data control. When the log-in
// fails the services are installed all the same, errorText says why and they answer -34.
HBRC_SERVICES_EXPORT RevisionControlServices InstallRevisionControlServices(Workspace& workspace,
                                                                            const std::string& server,
                                                                            const RevisionControlAccount& account,
                                                                            std::string& errorText,
                                                                            const ConnectionOptions& options = {});

}  // namespace hbrc::host
