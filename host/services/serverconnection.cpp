#include <hbrcservices/serverconnection.h>

#include <log/log.h>

namespace hbrc::host {

namespace {

// Marks the connection busy for one operation.
class RunningGuard
{
public:
    explicit RunningGuard(bool& running) : m_running(running) { m_running = true; }
    ~RunningGuard() { m_running = false; }
    RunningGuard(const RunningGuard&) = delete;
    RunningGuard& operator=(const RunningGuard&) = delete;

private:
    bool& m_running;
};

const char* const kBusyText = "Another revision-control operation is still running; try again when it has ended.";

}  // namespace

revision::ServerOptions ConnectionOptions::serverOptions() const
{
    revision::ServerOptions options = server;
    options.networkTimeout = std::chrono::ceil<std::chrono::seconds>(callDeadline);
    return options;
}

ServerConnection::ServerConnection(std::string server, ConnectionOptions options)
    : m_options(std::move(options)),
      m_server(OpenRevisionServer(server, m_options.serverOptions())),
      m_cache(m_options.statusLifetime)
{
    m_runner.SetThreshold(m_options.timeOutThreshold);
    m_runner.SetDeadline(m_options.callDeadline);
}

ServerConnection::~ServerConnection() = default;

kelResult ServerConnection::RunOn(RevisionServer& server, const TimeOutRunner::Operation& operation,
                                 std::string& errorText)
{
    const TimeOutRunner::Outcome outcome = m_runner.Run(operation, [&server] { server.interruptWaits(); });
    if (outcome.pastDeadline || !outcome.result.ok())
        ++m_failedCalls;
    if (outcome.pastDeadline) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(m_runner.Deadline()).count();
        errorText = server.unreachableText("no answer within " + std::to_string(seconds) + " s");
        return kel4::kResultSessionUnusable;
    }
    const revision::Result& result = outcome.result;
    errorText = result.error;
    if (result.ok())
        return kel4::kResultSuccess;
    return result.code == revision::code::SessionUnusable ? kel4::kResultSessionUnusable : kel4::kResultFailed;
}

KELPtr<UserParameters> ServerConnection::Login(const std::string& userName, const std::string& password,
                                               const std::string& workspace, const std::string& server,
                                               std::string& errorText)
{
    if (m_running) {
        errorText = kBusyText;
        return {};
    }
    RunningGuard running(m_running);
    const bool otherServer = !server.empty() && server != m_server->path();
    std::unique_ptr<RevisionServer> other;
    if (otherServer)
        other = OpenRevisionServer(server, m_options.serverOptions());
    RevisionServer& target = otherServer ? *other : *m_server;

    std::string ticket;
    const kelResult result = RunOn(
        target, [&](const revision::CancelCheck&) { return target.login(userName, password, workspace, ticket); },
        errorText);
    if (otherServer) {
        // The server left behind keeps its round trips counted.
        m_roundTripsBefore += (result.IsSuccess() ? *m_server : *other).roundTrips();
        if (result.IsSuccess())
            m_server = std::move(other);
    }
    if (result.IsFailure())
        return {};
    m_cache.Invalidate();
    return KELPtr<UserParameters>(new UserParameters(userName, workspace, m_server->path(), ticket));
}

KELPtr<UserParameters> ServerConnection::ResumeKept(const std::string& userName, const std::string& workspace,
                                                    std::string& errorText)
{
    if (m_running) {
        errorText = kBusyText;
        return {};
    }
    RunningGuard running(m_running);
    std::string ticket;
    RevisionServer& server = *m_server;
    if (RunOn(
            server, [&](const revision::CancelCheck&) { return server.resumeKept(userName, workspace, ticket); }, errorText)
            .IsFailure())
        return {};
    m_cache.Invalidate();
    return KELPtr<UserParameters>(new UserParameters(userName, workspace, m_server->path(), ticket));
}

KELPtr<UserParameters> ServerConnection::Adopt(std::unique_ptr<RevisionServer> server, const std::string& userName,
                                               const std::string& workspace, const std::string& ticket)
{
    if (m_running)
        return {};
    m_roundTripsBefore += m_server->roundTrips();  // the server left behind keeps its round trips counted
    m_server = std::move(server);
    m_cache.Invalidate();
    return KELPtr<UserParameters>(new UserParameters(userName, workspace, m_server->path(), ticket));
}

kelResult ServerConnection::Keep(const kel4::IUserParameters* session, std::string& errorText)
{
    return Run(session,
               [](RevisionServer& server, const std::string& ticket, const revision::CancelCheck&) {
                   return server.keep(ticket);
               },
               errorText);
}

kelResult ServerConnection::Logout(const kel4::IUserParameters* session, std::string& errorText)
{
    const std::string user = session ? session->GetUserName() : std::string();
    const kelResult result = Run(session,
                                 [&user](RevisionServer& server, const std::string& ticket, const revision::CancelCheck&) {
                                     return server.logout(user, ticket);
                                 },
                                 errorText);
    m_cache.Invalidate();
    return result;
}

kelResult ServerConnection::Run(const kel4::IUserParameters* session, const Operation& operation,
                               std::string& errorText)
{
    const std::string sessionTicket = UserParameters::TicketOf(session);
    if (sessionTicket.empty()) {
        errorText = revision::kNotLoggedInText;
        return kel4::kResultSessionUnusable;
    }
    if (m_running) {
        errorText = kBusyText;
        return kel4::kResultFailed;
    }
    RunningGuard running(m_running);
    RevisionServer& server = *m_server;
    const auto renewed = m_renewedTickets.find(sessionTicket);
    std::string ticket = renewed == m_renewedTickets.end() ? sessionTicket : renewed->second;
    const auto runWithTicket = [&] {
        return RunOn(
            server, [&](const revision::CancelCheck& cancel) { return operation(server, ticket, cancel); }, errorText);
    };
    kelResult result = runWithTicket();
    // Nobody can type a password in a batch run: an expired session is renewed from the log-in the
    // user kept, if any, and the call repeated once.
    if (result.GetCode() == kel4::kResultSessionUnusable && m_options.renewFromKeptLogIn &&
        !IsUnreachableServerError(errorText) && !m_runner.AsksUser() && RenewFromKeptLogIn(*session, ticket))
        result = runWithTicket();
    return result;
}

bool ServerConnection::RenewFromKeptLogIn(const kel4::IUserParameters& session, std::string& ticket)
{
    RevisionServer& server = *m_server;
    std::string fresh;
    std::string ignored;
    const std::string user = session.GetUserName();
    const std::string workspace = session.GetWorkspace();
    if (RunOn(
            server, [&](const revision::CancelCheck&) { return server.resumeKept(user, workspace, fresh); }, ignored)
            .IsFailure())
        return false;
    m_renewedTickets[UserParameters::TicketOf(&session)] = fresh;
    ticket = fresh;
    m_cache.Invalidate();
    Log::Singleton::Instance().Write(Log::eMessage,
                                     "The session of " + user + " had expired; renewed from the kept log-in.");
    return true;
}

kelResult ServerConnection::ExpireSession(const kel4::IUserParameters* session, std::string& errorText)
{
    return Run(session,
               [](RevisionServer& server, const std::string& ticket, const revision::CancelCheck&) {
                   return server.expireSession(ticket);
               },
               errorText);
}

}  // namespace hbrc::host
