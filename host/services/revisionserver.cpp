#include <hbrcservices/revisionserver.h>

#include "depotserver.h"
#include "svn/svnserver.h"

#include <array>

namespace hbrc::host {

namespace {

// The backends' choice: a URL names a Subversion repository, anything else an embedded depot's file.
bool IsSubversionUrl(const std::string& server)
{
    static constexpr std::array<const char*, 5> kSchemes{"svn://", "svn+ssh://", "http://", "https://", "file://"};
    for (const char* scheme : kSchemes)
        if (server.rfind(scheme, 0) == 0)
            return true;
    return false;
}

}  // namespace

bool IsUnreachableServerError(const std::string& error)
{
    return error.rfind("Cannot reach", 0) == 0;
}

std::string ServerSettingProblem(const std::string& server)
{
    return IsSubversionUrl(server) ? std::string() : DepotServer::SettingProblem(server);
}

std::unique_ptr<RevisionServer> OpenRevisionServer(const std::string& server, const revision::ServerOptions& options)
{
    if (IsSubversionUrl(server))
        return std::make_unique<SvnServer>(server, options.networkTimeout);
    return std::make_unique<DepotServer>(server, options);
}

}  // namespace hbrc::host
