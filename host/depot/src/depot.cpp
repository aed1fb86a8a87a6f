// The depot's frame around every operation, its administration and its sessions.
#include <depot/depot.h>

#include <algorithm>

#include "credentials.h"
#include "depoterror.h"
#include "depotimpl.h"
#include "filesteps.h"
#include "schema.h"
#include "writerlock.h"

namespace hbrc::depot {

namespace {

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

// What users.password_hash keeps: nothing for a user without a password.
std::optional<std::string> storedHash(const std::string& password, PasswordHashCost cost)
{
    return password.empty() ? std::optional<std::string>() : hashPassword(password, cost);
}

// After a statement on the record named `what` ("User bob"): it must have found that record.
void requireFound(Database& db, const std::string& what)
{
    if (db.changes() == 0)
        throw DepotError(code::Failed, what + " does not exist.");
}

Result applySteps(Database& database, Call& call)
{
    std::vector<std::int64_t> done;
    const std::vector<FailedStep> failures = journal::apply(database, call.steps(), done);
    journal::forget(database, done);
    if (failures.empty())
        return call.outcome();
    std::string text = "The depot recorded the change, but these files could not follow (the next command tries again):";
    for (const FailedStep& failure : failures)
        text += "\n" + failure.reason;
    return {code::IoError, text};
}

// The answer, with what earlier steps of the operation's own workspace still wait for.
Result withWaitingSteps(Result result, const std::vector<FailedStep>& waiting, const Call& call)
{
    std::string lines;
    for (const FailedStep& step : waiting) {
        if (call.hasSession() && step.workspace == call.workspace().name() &&
            result.error.find(step.reason) == std::string::npos)
            lines += "\n" + step.reason;
    }
    if (lines.empty())
        return result;
    result.error += (result.error.empty() ? "" : "\n") +
                    std::string("Files of this workspace are still waiting to follow the depot (the next command "
                                "tries again; free space or fix what is named):") +
                    lines;
    return result;
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

std::vector<FailedStep> Depot::Impl::finishEarlierSteps(Database& database) const
{
    try {
        if (journal::pending(database))
            return journal::replay(database);
    } catch (const DepotError&) {
        // The depot itself could not be read or written (say, its disk is full): the operation
        // below reports that, if it too is hit.
    }
    return {};
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

void Depot::Impl::waitLatency(const Call& call)
{
    // A caller can cancel a slow round trip while it waits, or break it off as it would a network
    // read (the operations that take no cancel check).
    switch (faults.waitLatency([&call] { return call.cancelled(); })) {
    case InterruptibleWait::End::Elapsed:
        return;
    case InterruptibleWait::End::Cancelled:
        throw DepotError(code::Cancelled, "The operation was cancelled; the depot is unchanged");
    case InterruptibleWait::End::Interrupted:
        throw DepotError(code::SessionUnusable, "Cannot reach the depot: the connection was broken off");
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
                        const CancelCheck& cancel, const Body& body, const StepsTried& stepsTried)
{
    ++roundTrips;
    if (std::optional<Result> forced = faults.takeForcedFailure(operation))
        return *forced;
    try {
        Database& database = connection();
        Call call(database, cancel);
        waitLatency(call);
        // A depot this process may only read answers queries and log-ins (kept in the connection);
        // every change is refused before it starts.
        if (database.readOnly() && kind == Transaction::Kind::Write) {
            if (operation != Operation::Login)
                database.refuseWrite();
            kind = Transaction::Kind::Read;
        }
        std::optional<WriterLock> lock;
        std::vector<FailedStep> waiting;
        if (kind == Transaction::Kind::Write) {
            lock.emplace(path, options.busyTimeout, [&call] { call.checkpoint(); });
            waiting = finishEarlierSteps(database);
        } else if (!database.readOnly() && journal::pending(database)) {
            // A reader finishes a dead writer's steps when it can; a live writer finishes its own.
            WriterLock::tryTake(path, [&] { waiting = finishEarlierSteps(database); });
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
        const Result result = applySteps(database, call);
        if (stepsTried)
            stepsTried(call.steps());
        return withWaitingSteps(result, waiting, call);
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
        // A depot that could not be made whole (a full disk, say) is not left half made.
        std::error_code ignored;
        for (const char* suffix : {"", "-wal", "-shm"})
            std::filesystem::remove(path + suffix, ignored);
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

bool Depot::readOnly()
{
    bool answer = false;
    d->run(Operation::Session, Transaction::Kind::Read, std::nullopt, {},
           [&](Call& call) { answer = call.db().readOnly(); });
    return answer;
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
        insert.bind(1, name).bind(2, storedHash(password, d->options.passwordHashCost));
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

Result Depot::setPassword(const std::string& user, const std::string& password)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        Statement update(call.db(), "UPDATE users SET password_hash = ?2 WHERE name = ?1");
        update.bind(1, user).bind(2, storedHash(password, d->options.passwordHashCost)).run();
        requireFound(call.db(), "User " + user);
    });
}

Result Depot::removeUser(const std::string& name)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        Statement owned(call.db(), "SELECT group_concat(name, ', ') FROM workspaces WHERE owner = ?1");
        owned.bind(1, name).step();
        if (!owned.isNull(0))
            throw DepotError(code::Failed, "User " + name + " owns workspaces (" + owned.text(0) +
                                               "); delete them first.");
        owned.reset();
        Statement(call.db(), "DELETE FROM sessions WHERE user = ?1").bind(1, name).run();
        Statement(call.db(), "DELETE FROM users WHERE name = ?1").bind(1, name).run();
        requireFound(call.db(), "User " + name);
    });
}

Result Depot::removeWorkspace(const std::string& name)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        Statement open(call.db(), "SELECT count(*) FROM opened WHERE workspace = ?1");
        open.bind(1, name).step();
        if (const std::int64_t count = open.integer(0); count > 0)
            throw DepotError(code::Failed, "Workspace " + name + " has " + std::to_string(count) +
                                               " open files; submit or revert them first.");
        open.reset();
        for (const char* sql : {"DELETE FROM sessions WHERE workspace = ?1", "DELETE FROM have WHERE workspace = ?1",
                                "DELETE FROM journal WHERE workspace = ?1",
                                "DELETE FROM changes WHERE workspace = ?1 AND submitted = 0"})
            Statement(call.db(), sql).bind(1, name).run();
        Statement(call.db(), "DELETE FROM workspaces WHERE name = ?1").bind(1, name).run();
        requireFound(call.db(), "Workspace " + name);
    });
}

Result Depot::setSessionLifetime(std::chrono::seconds lifetime)
{
    return d->run(Operation::Administer, Transaction::Kind::Write, std::nullopt, {}, [&](Call& call) {
        Statement update(call.db(), "UPDATE settings SET value = ?1 WHERE key = 'session_lifetime'");
        update.bind(1, static_cast<std::int64_t>(lifetime.count())).run();
    });
}

Result Depot::Impl::listWorkspaces(const std::optional<std::string>& ticket, std::vector<WorkspaceInfo>& workspaces)
{
    std::vector<WorkspaceInfo> answer;
    const Result result = run(Operation::Workspaces, Transaction::Kind::Read, ticket, {}, [&](Call& call) {
        Statement select(call.db(), "SELECT name, owner, root FROM workspaces ORDER BY name");
        while (select.step())
            answer.push_back({select.text(0), select.text(1), select.text(2)});
    });
    if (result.ok())
        workspaces = std::move(answer);
    return result;
}

Result Depot::workspaces(std::vector<WorkspaceInfo>& workspaces)
{
    return d->listWorkspaces(std::nullopt, workspaces);
}

Result Depot::workspaces(const std::string& ticket, std::vector<WorkspaceInfo>& workspaces)
{
    return d->listWorkspaces(ticket, workspaces);
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
