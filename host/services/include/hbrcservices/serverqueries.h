#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/serverconnection.h>

#include <kel4/containers.h>

#include <string>
#include <vector>

namespace hbrc::host {

// The server questions that both services ask, each one round trip through the connection.
namespace ServerQueries {

// The status of every file, in their order; stored in the connection's status cache.
HBRC_SERVICES_EXPORT kelResult Status(ServerConnection& connection, const kel4::IUserParameters* session,
                 const std::vector<std::string>& files, std::vector<revision::FileStatus>& statuses,
                 std::string& errorText);
// The users of other workspaces holding any of the files: sorted, each once.
HBRC_SERVICES_EXPORT kelResult Holders(ServerConnection& connection, const kel4::IUserParameters* session,
                  const std::vector<std::string>& files, kel4::List<std::string>& users, std::string& errorText);
// Runs a change of files (edit, add, delete, revert, ...) and makes the status cache forget them.
HBRC_SERVICES_EXPORT kelResult Change(ServerConnection& connection, const kel4::IUserParameters* session,
                 const std::vector<std::string>& files, const ServerConnection::Operation& change,
                 std::string& errorText);

}  // namespace ServerQueries
}  // namespace hbrc::host
