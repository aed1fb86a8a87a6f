#include "openinglogin.h"

namespace hbrc::studio {

OpeningLogIn OpeningLogIn::Run(const Account& account, const revision::ServerOptions& options)
{
    OpeningLogIn logIn;
    logIn.server = host::OpenRevisionServer(account.server, options);
    logIn.result = logIn.server->resumeKept(account.userName, account.workspaceName, logIn.ticket);
    if (logIn.result.ok()) {
        logIn.way = Way::Kept;
        return logIn;
    }
    if (host::IsUnreachableServerError(logIn.result.error))
        return logIn;
    if (account.password.empty()) {
        logIn.result = {};
        return logIn;
    }
    logIn.way = Way::Password;
    logIn.result = logIn.server->login(account.userName, account.password, account.workspaceName, logIn.ticket);
    return logIn;
}

}  // namespace hbrc::studio
