#pragma once

#include <hbrcservices/export.h>

#include <hbrcservices/revisionserver.h>
#include <hbrcservices/statuscache.h>
#include <hbrcservices/timeoutrunner.h>
#include <hbrcservices/userparameters.h>

#include <kel4/kelresult.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace hbrc::host {

struct HBRC_SERVICES_EXPORT ConnectionOptions
{
    revision::ServerOptions server;
    // How long an operation runs before the time-out delegate is asked.
    std::chrono::milliseconds timeOutThreshold{500};
    // How long any call waits for the server: then it fails with -34, as for an unreachable server.
    std::chrono::milliseconds callDeadline{std::chrono::seconds(30)};
    // What a server of these options is opened with: the network time-out of servers whose
    // protocol has one follows the call deadline, rounded up.
    revision::ServerOptions serverOptions() const;
    // Whether a call that finds its session expired, with nobody to ask for a password (no
    // progress box could be shown), first renews the session from the log-in the user kept. Hosts
    // that run batch jobs turn it on.
    bool renewFromKeptLogIn = false;
    // How long a file's status is trusted without asking the server again.
    std::chrono::milliseconds statusLifetime{std::chrono::seconds(10)};
};

// The link of one host's revision-control services to a revision server (the embedded depot or a
// Subversion repository, as the server setting names it), shared by its data control and file
// version control: the server connection, the time-out runner every operation goes through,
// the status cache, and the knobs tests and benchmarks turn (round trips, fault injection).
// Used from the host's UI thread; the server itself may be driven from the runner's worker.
class HBRC_SERVICES_EXPORT ServerConnection
{
public:
    // What an operation does with the server, in one or more round trips, for a session's ticket.
    using Operation = std::function<revision::Result(RevisionServer& server, const std::string& ticket,
                                                  const revision::CancelCheck& cancel)>;

    explicit ServerConnection(std::string server, ConnectionOptions options = {});
    ~ServerConnection();
    ServerConnection(const ServerConnection&) = delete;
    ServerConnection& operator=(const ServerConnection&) = delete;

    // The server setting: the depot file's path or the repository's URL.
    const std::string& Server() const { return m_server->path(); }

    // Opens a session. A server other than the current one becomes the current one when the log-in
    // succeeds (fault injection settings do not carry over). Null with errorText on failure.
    KELPtr<UserParameters> Login(const std::string& userName, const std::string& password,
                                 const std::string& workspace, const std::string& server, std::string& errorText);

    // Opens the session the server keeps for the account from an earlier log-in (a ticket kept by
    // this or another program, a cached password); null with errorText when none is kept.
    KELPtr<UserParameters> ResumeKept(const std::string& userName, const std::string& workspace,
                                      std::string& errorText);
    // Takes over server, on which a session with ticket was opened elsewhere (on a worker thread,
    // so that the host's thread does not wait for the log-in), as Login's server and session; null
    // while an operation of this connection runs.
    KELPtr<UserParameters> Adopt(std::unique_ptr<RevisionServer> server, const std::string& userName,
                                 const std::string& workspace, const std::string& ticket);
    // Keeps the session's log-in for later processes. Never the password on the embedded depot.
    kelResult Keep(const kel4::IUserParameters* session, std::string& errorText);
    // Ends the session on the server and forgets what was kept of its log-in.
    kelResult Logout(const kel4::IUserParameters* session, std::string& errorText);

    // Runs operation for the session: kResultSessionUnusable without one, kResultFailed while
    // another operation of this connection is still running (a re-entrant call from a progress
    // box's event loop), otherwise the operation's outcome as a result code with its text; a call
    // past its deadline fails with kResultSessionUnusable and the server's "cannot reach" text. In a
    // batch run an expired session may first be renewed (ConnectionOptions::renewFromKeptLogIn).
    kelResult Run(const kel4::IUserParameters* session, const Operation& operation, std::string& errorText);

    TimeOutRunner& Runner() { return m_runner; }
    StatusCache& Cache() { return m_cache; }
    // Calls to the server that failed (refused, unreachable, past their deadline), log-ins included.
    std::uint64_t FailedCalls() const { return m_failedCalls; }

    // --- for tests and benchmarks -------------------------------------------------------------
    // Round trips made to the server through this connection, log-ins included.
    std::uint64_t RoundTrips() const { return m_roundTripsBefore + m_server->roundTrips(); }
    // Latency per round trip and forced failures (code -34, revision::code::IoError, ...).
    revision::FaultInjection& Faults() { return m_server->faults(); }
    // The session stops working now, in every process (one round trip).
    kelResult ExpireSession(const kel4::IUserParameters* session, std::string& errorText);

private:
    // Opens a session from the log-in kept for session's account; ticket becomes its ticket, which
    // the calls for session use from now on. False when none is kept.
    bool RenewFromKeptLogIn(const kel4::IUserParameters& session, std::string& ticket);
    // Runs operation on server through the runner, interrupting its network waits when it is cut short.
    kelResult RunOn(RevisionServer& server, const TimeOutRunner::Operation& operation, std::string& errorText);

    ConnectionOptions m_options;
    std::unique_ptr<RevisionServer> m_server;
    std::uint64_t m_roundTripsBefore = 0;  // made through servers this connection has left
    std::uint64_t m_failedCalls = 0;
    TimeOutRunner m_runner;
    StatusCache m_cache;
    bool m_running = false;
    // Expired sessions' tickets and the tickets renewed for them from a kept log-in.
    std::map<std::string, std::string> m_renewedTickets;
};

}  // namespace hbrc::host
