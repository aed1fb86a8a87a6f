#pragma once

#include <QTextStream>

#include <string>

namespace hbrc::studio {

// Runs the batch demo: stands the reference host up, loads the revision-control plug-in, starts
// its components and walks through the revision-control work, printing what happens to out.
// The server is a new embedded depot, or the Subversion repository at the URL server, whose users
// alice ("alice-pw") and bob ("bob-pw") must exist. Returns the process exit code.
int RunDemo(QTextStream& out, const std::string& server = {});

}  // namespace hbrc::studio
