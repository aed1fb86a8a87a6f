// The depot's frame around every operation, its administration and its sessions.
#include <depot/depot.h>

#include <algorithm>
#include <thread>

#include "credentials.h"
#include "depoterror.h"
#include "depotimpl.h"
#include "filesteps.h"
#include "schema.h"
#include "writerlock.h"

namespace hbrc::depot {

namespace {

constexpr std::chrono::milliseconds kLatencySlice{10};

bool validName(const std::string& name)
{
    return !name.empty() && std::none_of(name.begin(), name.end(), [](unsigned char c) {
        return c <= ' ' || c == '@' || c == '/';
    });
}

void requireValidName(const char* what, const std::string& name)
{
    if (!validName(name))
        throw DepotError(code::Failed, std::string("Invalid ") + what + " name '" + name +
                                           "': it must be non-empty without blanks, '@' or '/'");
}

Result applySteps(Database& database, Call& call)
{
    std::vector<std::int64_t> done;
    const std::vector<std::string> failures = journal::apply(database, call.steps(), done);
    journal::forget(database, done);
    if (failures.empty())
        return call.outcome();
    std::string text = "The depot recorded the change, but these files could not follow (the next command tries again):";
    for (const std::string& failure : failures)
        text += "\n" + failure;
    return {code::IoError, text};
}

}  // namespace

Depot::Impl::Impl(std::string depotPath, DepotOptions depotOptions)
    : path(std::move(depotPath)), options(std::move(depotOptions))
{
}

std::int64_t Depot::Impl::now() const
{
    if (options.clock)
        return options.clock();
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

Database& Depot::Impl::connection()
{
    if (!db) {
        auto opened = std::make_unique<Database>(path, false, static_cast<int>(options.busyTimeout.count()));
        checkSchema(*opened);
        db = std::move(opened);
    }
    return *db;
}

void Depot::Impl::waitLatency(const Call& call) const
{
    // Sliced so that a caller can cancel a slow round trip while it waits.
    const auto until = std::chrono::steady_clock::now() + faults.latency();
    while (std::chrono::steady_clock::now() < until) {
        call.checkpoint();
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(
            kLatencySlice, until - std::chrono::steady_clock::now()));
    }
}

void Depot::Impl::authenticate(Call& call, const std::string& ticket) const
{
    const std::string digest = ticketDigest(ticket);
    const auto local = localSessions.find(digest);
    Statement session(call.db(), local == localSessions.end()
                                     ? "SELECT s.user, s.expires_at, w.name, w.owner, w.root FROM sessions s "
                                       "JOIN workspaces w ON w.name = s.workspace WHERE s.ticket_digest = ?1"
                                     : "SELECT ?2, ?3, name, owner, root FROM workspaces WHERE name = ?4");
    session.bind(1, digest);
    if (local != localSessions.end())
        session.bind(2, local->second.user).bind(3, local->second.expiresAt).bind(4, local->second.workspace);
    if (!session.step())
        throw DepotError(code::SessionUnusable, "Unknown session ticket; please log in again.");
    if (session.integer(1) <= now())
        throw DepotError(code::SessionUnusable, "Your session has expired; please log in again.");
    call.setSession(session.text(0), WorkspaceView(session.text(2), session.text(3), session.text(4)));
}

Result Depot::Impl::run(Operation operation, Transaction::Kind kind, const std::optional<std::string>& ticket,
                        const CancelCheck& cancel, const Body& body)
{
    ++roundTrips;
    if (std::optional<Result> forced = faults.takeForcedFailure(operation))
        return *forced;
    try {
        Database& database = connection();
        Call call(database, cancel);
        waitLatency(call);
        // A depot this process may only read answers queries; its changes fail on their first write.
        if (database.readOnly())
            kind = Transaction::Kind::Read;
        std::optional<WriterLock> lock;
        if (kind == Transaction::Kind::Write) {
            lock.emplace(path, options.busyTimeout, [&call] { call.checkpoint(); });
            if (journal::pending(database))
                journal::replay(database);
        } else if (!database.readOnly() && journal::pending(database)) {
            // A reader finishes a dead writer's steps when it can; a live writer finishes its own.
            WriterLock::tryTake(path, [&database] { journal::replay(database); });
        }
        {
            Transaction transaction(database, kind);
            if (ticket)
                authenticate(call, *ticket);
            // Bodies poll the cancel check; workspace files change only after the commit.
            body(call);
            journal::record(database, call.steps());
            transaction.commit();
        }
        return applySteps(database, call);
    } catch (const DepotError& error) {
        return {error.code(), error.what()};
    } catch (const std::exception& error) {
        return {code::Failed, error.what()};
    }
}

Result Depot::create(const std::string& path, std::chrono::seconds sessionLifetime)
{
    try {
        std::error_code error;
        if (std::filesystem::exists(path, error))
            return {code::Failed, "Cannot create a depot at '" + path + "': the file exists"};
        Database db(path, true, 10000);
        createSchema(db, sessionLifetime.count());
        return {};
    } catch (const DepotError& error) {
        return {error.code(), error.what()};
    }
}

Depot::Depot(std::string path, DepotOptions options) : d(std::make_unique<Impl>(std::move(path), std::move(options)))
{
}

Depot::~Depot() = default;

const std::string& Depot::path() const
{
    return d->path;
}

std::uint64_t Depot::roundTrips() const
{
    return d->roundTrips;
}

FaultInjector& Depot::faults()
{
    return d->faults;
}

Result Depot::addUser(const std::string& name, const std::string& password)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        requireValidName("user", name);
        Statement insert(call.db(), "INSERT OR IGNORE INTO users(name, password_hash) VALUES (?1, ?2)");
        insert.bind(1, name).bind(2, password.empty() ? std::optional<std::string>() : hashPassword(password, d->options.passwordHashCost));
        insert.run();
        if (call.db().changes() == 0)
            throw DepotError(code::Failed, "User " + name + " already exists.");
    });
}

Result Depot::addWorkspace(const std::string& name, const std::string& owner, const std::string& root)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        requireValidName("workspace", name);
        if (root.empty() || std::filesystem::path(root).is_relative())
            throw DepotError(code::Failed, "The root of workspace " + name + " must be an absolute folder");
        Statement user(call.db(), "SELECT 1 FROM users WHERE name = ?1");
        if (!user.bind(1, owner).step())
            throw DepotError(code::Failed, "User " + owner + " does not exist.");
        Statement insert(call.db(), "INSERT OR IGNORE INTO workspaces(name, owner, root) VALUES (?1, ?2, ?3)");
        insert.bind(1, name).bind(2, owner).bind(3, std::filesystem::path(root).lexically_normal().string()).run();
        if (call.db().changes() == 0)
            throw DepotError(code::Failed, "Workspace " + name + " already exists.");
    });
}

Result Depot::setSessionLifetime(std::chrono::seconds lifetime)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        Statement update(call.db(), "UPDATE settings SET value = ?1 WHERE key = 'session_lifetime'");
        update.bind(1, static_cast<std::int64_t>(lifetime.count())).run();
    });
}

Result Depot::workspaces(std::vector<WorkspaceInfo>& workspaces)
{
    std::vector<WorkspaceInfo> answer;
    const Result result = d->run(Operation::Workspaces, Transaction::Kind::Read, std::nullopt, {}, [&](Call& call) {
        Statement select(call.db(), "SELECT name, owner, root FROM workspaces ORDER BY name");
        while (select.step())
            answer.push_back({select.text(0), select.text(1), select.text(2)});
    });
    if (result.ok())
        workspaces = std::move(answer);
    return result;
}

Result Depot::login(const std::string& user, const std::string& password, const std::string& workspace,
                    std::string& ticket)
{
    std::string issued;
    const Result result = d->run(Operation::Login, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        // An unknown user gets the answer of a wrong password, after as long a wait, so that
        // log-ins do not tell which user names exist. A user without a password needs none.
        Statement account(call.db(), "SELECT password_hash FROM users WHERE name = ?1");
        const bool known = account.bind(1, user).step();
        const bool valid = known ? account.isNull(0) || verifyPassword(account.text(0), password)
                                 : (hashPassword(password, d->options.passwordHashCost), false);
        if (!valid)
            throw DepotError(code::Failed, "Invalid password for user " + user + ".");
        account.reset();
        Statement owner(call.db(), "SELECT owner FROM workspaces WHERE name = ?1");
        if (!owner.bind(1, workspace).step())
            throw DepotError(code::Failed, "Workspace " + workspace + " does not exist.");
        if (owner.text(0) != user)
            throw DepotError(code::Failed, "Workspace " + workspace + " belongs to user " + owner.text(0) + ".");
        owner.reset();
        Statement lifetime(call.db(), "SELECT value FROM settings WHERE key = 'session_lifetime'");
        lifetime.step();
        const std::int64_t expiresAt = d->now() + lifetime.integer(0);
        lifetime.reset();
        issued = newTicket();
        if (call.db().readOnly()) {
            // Nothing can be recorded: the session lives in this connection only, for reading.
            d->localSessions[ticketDigest(issued)] = {user, workspace, expiresAt};
            return;
        }
        Statement(call.db(), "DELETE FROM sessions WHERE expires_at <= ?1").bind(1, d->now()).run();
        Statement insert(call.db(), "INSERT INTO sessions(ticket_digest, user, workspace, expires_at) "
                                    "VALUES (?1, ?2, ?3, ?4)");
        insert.bind(1, ticketDigest(issued)).bind(2, user).bind(3, workspace).bind(4, expiresAt).run();
    });
    if (result.ok())
        ticket = issued;
    return result;
}

Result Depot::session(const std::string& ticket, std::string& user, std::string& workspace)
{
    return d->runInSession(Operation::Session, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        user = call.user();
        workspace = call.workspace().name();
    });
}

Result Depot::logout(const std::string& ticket)
{
    return d->runInSession(Operation::Logout, Transaction::Kind::Write, ticket, {}, [&](Call& call) {
        Statement(call.db(), "DELETE FROM sessions WHERE ticket_digest = ?1").bind(1, ticketDigest(ticket)).run();
    });
}

Result Depot::expireSession(const std::string& ticket)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        Statement expire(call.db(), "UPDATE sessions SET expires_at = ?1 WHERE ticket_digest = ?2");
        expire.bind(1, d->now()).bind(2, ticketDigest(ticket)).run();
    });
}

}  // namespace hbrc::depot
