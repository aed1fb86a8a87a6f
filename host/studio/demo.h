#pragma once

#include <QTextStream>

#include <optional>
#include <string>

namespace hbrc::studio {

// Runs the batch demo: stands the reference host up, loads the revision-control plug-in, starts
// its components and walks through the revision-control work, printing what happens to out.
// The server is a new embedded depot, or the Subversion repository at the URL server, whose users
// alice ("alice-pw") and bob ("bob-pw") must exist. batchRetryDeadlineSeconds, when given, is how
// long the plug-in retries a failed edit action before it gives up (the host preference
// "RevControl.BatchRetryDeadlineSeconds"). Returns the process exit code.
int RunDemo(QTextStream& out, const std::string& server = {}, std::optional<int> batchRetryDeadlineSeconds = {});

}  // namespace hbrc::studio
