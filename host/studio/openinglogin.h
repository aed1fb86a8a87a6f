#pragma once

#include "account.h"

#include <hbrcservices/revisionserver.h>

#include <memory>
#include <string>

namespace hbrc::studio {

// The log-in a workspace's opening makes, meant for a worker thread so that the UI thread never
// waits for the server: on a server connection of its own, the kept log-in first (a ticket a
// terminal's hbdepot login keeps, Subversion's cached password), then the password known for
// this run. The services take the server with its session (a Subversion session lives in the
// connection that opened it).
struct OpeningLogIn
{
    enum class Way { Kept, Password, Ask };  // Ask: neither worked and nothing failed; ask the user

    revision::Result result;
    Way way = Way::Ask;
    std::unique_ptr<host::RevisionServer> server;  // where the session lives
    std::string ticket;

    static OpeningLogIn Run(const Account& account, const revision::ServerOptions& options);
};

}  // namespace hbrc::studio
