#pragma once

#include <string>

namespace hbrc::host {

// Ends every wait of this process on the svn:// server at url: its TCP connections to the server
// are shut down (not closed, so that their descriptors stay with their owners), and a read blocked
// on one returns at once as a broken connection. The svn protocol has no time-out of its own, and
// the client library polls its cancel check only between reads, so a server that accepts and never
// answers would otherwise hold a call for ever. Does nothing for other URLs. Safe from any thread.
void BreakConnectionsTo(const std::string& url);

}  // namespace hbrc::host
