#include <hbrcservices/depotconnection.h>

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

DepotConnection::DepotConnection(std::string server, ConnectionOptions options)
    : m_options(std::move(options)),
      m_depot(OpenRevisionServer(server, m_options.depot)),
      m_cache(m_options.statusLifetime)
{
    m_runner.SetThreshold(m_options.timeOutThreshold);
    m_runner.SetDeadline(m_options.callDeadline);
}

DepotConnection::~DepotConnection() = default;

kelResult DepotConnection::RunOn(RevisionServer& server, const TimeOutRunner::Operation& operation,
                                 std::string& errorText)
{
    const TimeOutRunner::Outcome outcome = m_runner.Run(operation, [&server] { server.interruptWaits(); });
    if (outcome.pastDeadline) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(m_runner.Deadline()).count();
        errorText = server.unreachableText("no answer within " + std::to_string(seconds) + " s");
        return kel4::kResultSessionUnusable;
    }
    const depot::Result& result = outcome.result;
    errorText = result.error;
    if (result.ok())
        return kel4::kResultSuccess;
    return result.code == depot::code::SessionUnusable ? kel4::kResultSessionUnusable : kel4::kResultFailed;
}

KELPtr<UserParameters> DepotConnection::Login(const std::string& userName, const std::string& password,
                                               const std::string& workspace, const std::string& server,
                                               std::string& errorText)
{
    if (m_running) {
        errorText = kBusyText;
        return {};
    }
    RunningGuard running(m_running);
    const bool otherServer = !server.empty() && server != m_depot->path();
    std::unique_ptr<RevisionServer> other;
    if (otherServer)
        other = OpenRevisionServer(server, m_options.depot);
    RevisionServer& target = otherServer ? *other : *m_depot;

    std::string ticket;
    const kelResult result = RunOn(
        target, [&](const depot::CancelCheck&) { return target.login(userName, password, workspace, ticket); },
        errorText);
    if (otherServer) {
        // The depot left behind keeps its round trips counted.
        m_roundTripsBefore += (result.IsSuccess() ? *m_depot : *other).roundTrips();
        if (result.IsSuccess())
            m_depot = std::move(other);
    }
    if (result.IsFailure())
        return {};
    m_cache.Invalidate();
    return KELPtr<UserParameters>(new UserParameters(userName, workspace, m_depot->path(), ticket));
}

KELPtr<UserParameters> DepotConnection::ResumeKept(const std::string& userName, const std::string& workspace,
                                                    std::string& errorText)
{
    if (m_running) {
        errorText = kBusyText;
        return {};
    }
    RunningGuard running(m_running);
    std::string ticket;
    RevisionServer& depot = *m_depot;
    if (RunOn(
            depot, [&](const depot::CancelCheck&) { return depot.resumeKept(userName, workspace, ticket); }, errorText)
            .IsFailure())
        return {};
    m_cache.Invalidate();
    return KELPtr<UserParameters>(new UserParameters(userName, workspace, m_depot->path(), ticket));
}

kelResult DepotConnection::Keep(const kel4::IUserParameters* session, std::string& errorText)
{
    return Run(session,
               [](RevisionServer& depot, const std::string& ticket, const depot::CancelCheck&) {
                   return depot.keep(ticket);
               },
               errorText);
}

kelResult DepotConnection::Logout(const kel4::IUserParameters* session, std::string& errorText)
{
    const std::string user = session ? session->GetUserName() : std::string();
    const kelResult result = Run(session,
                                 [&user](RevisionServer& depot, const std::string& ticket, const depot::CancelCheck&) {
                                     return depot.logout(user, ticket);
                                 },
                                 errorText);
    m_cache.Invalidate();
    return result;
}

kelResult DepotConnection::Run(const kel4::IUserParameters* session, const Operation& operation,
                               std::string& errorText)
{
    const std::string sessionTicket = UserParameters::TicketOf(session);
    if (sessionTicket.empty()) {
        errorText = "Not logged in to the depot; please log in.";
        return kel4::kResultSessionUnusable;
    }
    if (m_running) {
        errorText = kBusyText;
        return kel4::kResultFailed;
    }
    RunningGuard running(m_running);
    RevisionServer& depot = *m_depot;
    const auto renewed = m_renewedTickets.find(sessionTicket);
    std::string ticket = renewed == m_renewedTickets.end() ? sessionTicket : renewed->second;
    const auto runWithTicket = [&] {
        return RunOn(
            depot, [&](const depot::CancelCheck& cancel) { return operation(depot, ticket, cancel); }, errorText);
    };
    kelResult result = runWithTicket();
    // Nobody can type a password in a batch run: an expired session is renewed from the log-in the
    // user kept, if any, and the call repeated once.
    if (result.GetCode() == kel4::kResultSessionUnusable && m_options.renewFromKeptLogIn &&
        !IsUnreachableServerError(errorText) && !m_runner.AsksUser() && RenewFromKeptLogIn(*session, ticket))
        result = runWithTicket();
    return result;
}

bool DepotConnection::RenewFromKeptLogIn(const kel4::IUserParameters& session, std::string& ticket)
{
    RevisionServer& depot = *m_depot;
    std::string fresh;
    std::string ignored;
    const std::string user = session.GetUserName();
    const std::string workspace = session.GetWorkspace();
    if (RunOn(
            depot, [&](const depot::CancelCheck&) { return depot.resumeKept(user, workspace, fresh); }, ignored)
            .IsFailure())
        return false;
    m_renewedTickets[UserParameters::TicketOf(&session)] = fresh;
    ticket = fresh;
    m_cache.Invalidate();
    Log::Singleton::Instance().Write(Log::eMessage,
                                     "The session of " + user + " had expired; renewed from the kept log-in.");
    return true;
}

kelResult DepotConnection::ExpireSession(const kel4::IUserParameters* session, std::string& errorText)
{
    return Run(session,
               [](RevisionServer& depot, const std::string& ticket, const depot::CancelCheck&) {
                   return depot.expireSession(ticket);
               },
               errorText);
}

}  // namespace hbrc::host
