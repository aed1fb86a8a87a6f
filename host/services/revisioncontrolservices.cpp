#include <hbrcservices/revisioncontrolservices.h>

#include <hbrcdatamodel/workspace.h>

namespace hbrc::host {

kelResult RevisionControlServices::ExpireSessionNow()
{
    std::string ignored;
    return connection->ExpireSession(dataControl->GetUserParameters().Get(), ignored);
}

RevisionControlServices InstallRevisionControlServices(Workspace& workspace, const std::string& server,
                                                       const ConnectionOptions& options)
{
    RevisionControlServices services;
    services.connection = std::make_shared<ServerConnection>(server, options);
    services.dataControl = KELPtr<DataControl>(new DataControl(KELPtr<DataModelMgr>(&workspace.Model()),
                                                               services.connection));
    services.fileVersionControl = KELPtr<FileVersionControl>(new FileVersionControl(services.connection));
    KelInstance& instance = workspace.Model().Instance();
    instance.RegisterService(kel4::UID_DataControl(), KELPtr<kel4::IService>(services.dataControl.Get()));
    instance.RegisterService(kel4::UID_FileVersionControl(),
                             KELPtr<kel4::IService>(services.fileVersionControl.Get()));
    return services;
}

RevisionControlServices InstallRevisionControlServices(Workspace& workspace, const std::string& server,
                                                       const RevisionControlAccount& account,
                                                       std::string& errorText, const ConnectionOptions& options)
{
    RevisionControlServices services = InstallRevisionControlServices(workspace, server, options);
    const KELPtr<kel4::IUserParameters> session = services.fileVersionControl->Login(
        account.userName, account.password, account.workspace, server, errorText);
    if (session)
        services.dataControl->SetSession(session);
    return services;
}

}  // namespace hbrc::host
