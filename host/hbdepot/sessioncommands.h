#pragma once

// The commands around sessions: opening the session a command works in, log-in and log-out.

#include <depot/depot.h>
#include <depot/types.h>

namespace hbrc::hbdepot {

class CommandLine;
struct Context;

// Where no ticket, user or workspace is given: the workspace whose root holds the current folder
// (the deepest one; the given user's when a user is given) and its owner. Leaves the line as it
// is when there is none.
void inferAccount(depot::Depot& depot, CommandLine& line);

// The session a command works in: the ticket given, else the one "login" kept for this depot
// and user (when it is still alive and of the same workspace), else a log-in with the password.
// Without a password to give, a refused log-in is reported as the session that expired, ended or
// never began (-34, "log in again"), not as a wrong password.
depot::Result openSession(Context& c);
// "login [-p]": a log-in with the password whose ticket is kept (or printed), or a given ticket checked.
depot::Result login(Context& c);
// "logout": ends the given or kept session and forgets the kept ticket.
depot::Result logout(Context& c);

}  // namespace hbrc::hbdepot
