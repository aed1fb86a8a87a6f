#pragma once

// The commands that administer a depot: creating it, its users and their passwords, workspaces.
// Whoever may write the depot file administers it; no session is needed.

#include <depot/types.h>

namespace hbrc::hbdepot {

struct Context;

// "init [--session-lifetime SECONDS]"
depot::Result createDepot(Context& c);
// "user add NAME [PASSWORD]": the password asked for (twice on a terminal) when not given.
depot::Result addUser(Context& c);
// "user delete NAME": refused while the user owns a workspace.
depot::Result deleteUser(Context& c);
// "passwd [NAME]": a new password for the user named, else the current one.
depot::Result changePassword(Context& c);
// "workspace add [--create] NAME OWNER ROOT": with --create the root folder is made, with a
// configuration file that names the depot, the owner and the workspace; both go again when the
// depot refuses the workspace.
depot::Result addWorkspace(Context& c);
// "workspace delete NAME": refused while files are open in it; the files on disk stay, apart from
// a .hbdepot file in its root that names it.
depot::Result deleteWorkspace(Context& c);

}  // namespace hbrc::hbdepot
