#include <hbrcservices/fileversioncontrol.h>

#include <hbrcservices/serverqueries.h>

namespace hbrc::host {

namespace {

std::vector<std::string> ToVector(const kel4::List<std::string>& files)
{
    return {files.begin(), files.end()};
}

}  // namespace

FileVersionControl::FileVersionControl(std::shared_ptr<ServerConnection> connection)
    : m_connection(std::move(connection))
{
}

void* FileVersionControl::QueryInterface(const kel4::InterfaceId& iid)
{
    if (iid == kel4::IFileVersionControl::GetIID())
        return static_cast<kel4::IFileVersionControl*>(this);
    return nullptr;
}

void FileVersionControl::SetTimeOutDelegate(kel4::ITimeOutDelegate* delegate)
{
    m_connection->Runner().SetDelegate(delegate);
}

KELPtr<kel4::IUserParameters> FileVersionControl::Login(const std::string& userName, const std::string& password,
                                                        const std::string& workspace, const std::string& server,
                                                        std::string& errorText)
{
    return KELPtr<kel4::IUserParameters>(m_connection->Login(userName, password, workspace, server, errorText));
}

KELPtr<kel4::IUserParameters> FileVersionControl::CreateUserParameters(const std::string& userName,
                                                                       const std::string& /*password*/,
                                                                       const std::string& server,
                                                                       const std::string& workspace,
                                                                       std::string& errorText)
{
    // Whether the user and the workspace exist only a log-in can tell; what can be checked without
    // one is that the account is complete and, for the embedded depot, that its file is there.
    const std::string serverSetting = server.empty() ? m_connection->Server() : server;
    if (userName.empty() || workspace.empty()) {
        errorText = "An account needs a user name and a workspace.";
        return {};
    }
    errorText = ServerSettingProblem(serverSetting);
    if (!errorText.empty())
        return {};
    return KELPtr<kel4::IUserParameters>(new UserParameters(userName, workspace, serverSetting));
}

kelResult FileVersionControl::GetStatus(const kel4::IUserParameters* user, const kel4::List<std::string>& files,
                                        kel4::List<unsigned>& statuses, kel4::List<std::string>& changelists,
                                        std::string& errorText, int /*options*/)
{
    std::vector<revision::FileStatus> answered;
    const kelResult result = ServerQueries::Status(*m_connection, user, ToVector(files), answered, errorText);
    if (result.IsFailure())
        return result;
    statuses.clear();
    changelists.clear();
    for (const revision::FileStatus& status : answered) {
        statuses.push_back(status.word);
        changelists.push_back(status.changelist);
    }
    return result;
}

kelResult FileVersionControl::Revert(const kel4::IUserParameters* user, const kel4::List<std::string>& files,
                                     std::string& errorText, int /*options*/, int /*reserved*/)
{
    const std::vector<std::string> list = ToVector(files);
    return ServerQueries::Change(
        *m_connection, user, list,
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck& cancel) {
            return server.revert(ticket, list, cancel);
        },
        errorText);
}

kelResult FileVersionControl::MarkForDeleteInChangelist(const kel4::IUserParameters* user,
                                                        const kel4::List<std::string>& files,
                                                        const std::string& changelist, std::string& errorText)
{
    const std::vector<std::string> list = ToVector(files);
    return ServerQueries::Change(
        *m_connection, user, list,
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck& cancel) {
            return server.remove(ticket, list, changelist, cancel);
        },
        errorText);
}

kelResult FileVersionControl::GetUsersOfFiles(const kel4::IUserParameters* user, const kel4::List<std::string>& files,
                                              kel4::List<std::string>& users, std::string& errorText)
{
    return ServerQueries::Holders(*m_connection, user, ToVector(files), users, errorText);
}

}  // namespace hbrc::host
