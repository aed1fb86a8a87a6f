#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/serverconnection.h>

#include <kel4/ifileversioncontrol.h>

#include <memory>

namespace hbrc::host {

// The file-level revision-control service of the reference host, over its revision server. Each
// operation on a list of files is one round trip; the server of a log-in is the depot file's path
// or the repository's URL. Status answers refresh the connection's status cache; changes empty it.
class HBRC_SERVICES_EXPORT FileVersionControl final : public kel4::RefCounted<kel4::IFileVersionControl>
{
public:
    explicit FileVersionControl(std::shared_ptr<ServerConnection> connection);

    void* QueryInterface(const kel4::InterfaceId& iid) override;

    void SetTimeOutDelegate(kel4::ITimeOutDelegate* delegate) override;
    KELPtr<kel4::IUserParameters> Login(const std::string& userName, const std::string& password,
                                        const std::string& workspace, const std::string& server,
                                        std::string& errorText) override;
    KELPtr<kel4::IUserParameters> CreateUserParameters(const std::string& userName, const std::string& password,
                                                       const std::string& server, const std::string& workspace,
                                                       std::string& errorText) override;
    kelResult GetStatus(const kel4::IUserParameters* user, const kel4::List<std::string>& files,
                        kel4::List<unsigned>& statuses, kel4::List<std::string>& changelists, std::string& errorText,
                        int options) override;
    kelResult Revert(const kel4::IUserParameters* user, const kel4::List<std::string>& files, std::string& errorText,
                     int options, int reserved) override;
    kelResult MarkForDeleteInChangelist(const kel4::IUserParameters* user, const kel4::List<std::string>& files,
                                        const std::string& changelist, std::string& errorText) override;
    kelResult GetUsersOfFiles(const kel4::IUserParameters* user, const kel4::List<std::string>& files,
                              kel4::List<std::string>& users, std::string& errorText) override;

    ServerConnection& Connection() const { return *m_connection; }

private:
    std::shared_ptr<ServerConnection> m_connection;
};

}  // namespace hbrc::host
