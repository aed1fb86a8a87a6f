#pragma once

#include "account.h"

#include <hbrcservices/revisionserver.h>

#include <memory>
#include <string>

namespace hbrc::studio {

// A revision-server connection of a worker thread's own, kept from one question to the next so
// that the UI thread's services never wait for it. Used by one thread at a time.
//
// On a server that shares sessions between connections (the embedded depot) the questions use the
// services' session (their ticket). Elsewhere (Subversion) a session belongs to the connection that
// opened it, so there this connection logs in itself, once, with the account's password (empty:
// the one the credential cache keeps), while the services have a session; without one its
// questions are refused (-34).
class WorkerConnection
{
public:
    // Opens the server the account names (again, when it names another one) and answers the ticket
    // to ask with (the services' one, or its own); fails when its own log-in fails.
    revision::Result prepare(const Account& account, std::string& ticket);
    // Drops the server and its session, after the server could not be reached or refused the
    // session; the next prepare opens it again.
    void forget();
    // The server of the last prepare.
    host::RevisionServer& server() const { return *m_server; }

private:
    std::string m_serverSetting;
    std::unique_ptr<host::RevisionServer> m_server;
    std::string m_ownTicket;
};

}  // namespace hbrc::studio
