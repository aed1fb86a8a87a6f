#pragma once

#include <string>

namespace hbrc::studio {

// The account the studio works with: the server, user and workspace of the "RevControl."
// preferences; the password of this run, which is never stored (empty: the session controller
// resumes a kept log-in or asks, a worker's Subversion connection uses the credential cache); and,
// for the questions of a worker thread, the ticket of the services' session (empty: none).
struct Account
{
    std::string server;
    std::string userName;
    std::string workspaceName;
    std::string password;
    std::string ticket = {};  // set by StudioSession::sessionAccount
};

}  // namespace hbrc::studio
