#include <hbrcservices/serverqueries.h>

#include <set>

namespace hbrc::host::ServerQueries {

kelResult Status(ServerConnection& connection, const kel4::IUserParameters* session,
                 const std::vector<std::string>& files, std::vector<revision::FileStatus>& statuses,
                 std::string& errorText)
{
    std::vector<revision::FileStatus> answered;
    const kelResult result = connection.Run(
        session,
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck& cancel) {
            return server.status(ticket, files, answered, cancel);
        },
        errorText);
    if (result.IsSuccess()) {
        connection.Cache().Store(files, answered);
        statuses = std::move(answered);
    }
    return result;
}

kelResult Holders(ServerConnection& connection, const kel4::IUserParameters* session,
                  const std::vector<std::string>& files, kel4::List<std::string>& users, std::string& errorText)
{
    std::vector<std::vector<std::string>> perFile;
    const kelResult result = connection.Run(
        session,
        [&](RevisionServer& server, const std::string& ticket, const revision::CancelCheck& cancel) {
            return server.holders(ticket, files, perFile, cancel);
        },
        errorText);
    if (result.IsFailure())
        return result;
    std::set<std::string> unique;
    for (const auto& holders : perFile)
        unique.insert(holders.begin(), holders.end());
    users.assign(unique.begin(), unique.end());
    return result;
}

kelResult Change(ServerConnection& connection, const kel4::IUserParameters* session,
                 const std::vector<std::string>& files, const ServerConnection::Operation& change,
                 std::string& errorText)
{
    const kelResult result = connection.Run(session, change, errorText);
    // Also after a failure: a cancelled or refused change leaves the server as it was, but a
    // failure of an unknown kind may not have. The other files' statuses still hold.
    connection.Cache().Forget(files);
    return result;
}

}  // namespace hbrc::host::ServerQueries
