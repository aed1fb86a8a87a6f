#pragma once

// The commands around sessions: opening the session a command works in, log-in and log-out.

#include <depot/types.h>

namespace hbrc::hbdepot {

struct Context;

// The session a command works in: the ticket given, else the one "login" kept for this depot
// and user (when it is still alive and of the same workspace), else a log-in with the password.
depot::Result openSession(Context& c);
// "login [-p]": a log-in with the password whose ticket is kept (or printed), or a given ticket checked.
depot::Result login(Context& c);
// "logout": ends the given or kept session and forgets the kept ticket.
depot::Result logout(Context& c);

}  // namespace hbrc::hbdepot
