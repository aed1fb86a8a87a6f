// Log-in, session expiry, an unreachable depot, injected faults and cancelled operations.
#include "depotfixture.h"

#include <functional>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

using DepotSessions = DepotFixture;

// Every file operation, so that a session check cannot be forgotten in one of them.
using Ticket = const std::string&;
using File = const std::string&;
const std::vector<std::pair<const char*, std::function<Result(Depot&, Ticket, File)>>> kOperations = {
    {"sync", [](Depot& d, Ticket t, File) { return d.sync(t, {}); }},
    {"status", [](Depot& d, Ticket t, File f) { std::vector<FileStatus> s; return d.status(t, {f}, s); }},
    {"edit", [](Depot& d, Ticket t, File f) { return d.edit(t, {f}, ""); }},
    {"delete", [](Depot& d, Ticket t, File f) { return d.remove(t, {f}, ""); }},
    {"revert", [](Depot& d, Ticket t, File f) { return d.revert(t, {f}); }},
    {"changelists",
     [](Depot& d, Ticket t, File) { std::vector<Changelist> c; return d.changelists(t, ChangelistState::Pending, c); }},
    {"create", [](Depot& d, Ticket t, File) { ChangelistId c; return d.createChangelist(t, "x", c); }},
};

TEST_F(DepotSessions, LogInFailuresSayWhy)
{
    std::string ticket;
    const Result wrong = m_alice->login("alice", "guess", "alice-ws", ticket);
    refused(wrong, code::Failed, "Invalid password for user alice.");
    EXPECT_TRUE(ticket.empty());
    const Result unknownUser = m_alice->login("mallory", "guess", "alice-ws", ticket);
    EXPECT_EQ(unknownUser.code, wrong.code);
    EXPECT_EQ(unknownUser.error, "Invalid password for user mallory.") << "a log-in does not tell which users exist";
    EXPECT_LT(m_alice->login("alice", "alice-pw", "bob-ws", ticket).code, 0) << "bob's workspace is not alice's";
    ok(m_alice->addUser("carol", ""));
    ok(m_alice->addWorkspace("carol-ws", "carol", path("carol")));
    EXPECT_TRUE(m_alice->login("carol", "", "carol-ws", ticket).ok()) << "a user without password logs in with none";
}

TEST_F(DepotSessions, AnExpiredOrUnknownTicketMakesEveryOperationFailWith34)
{
    ok(m_alice->expireSession(m_bobTicket));
    EXPECT_EQ(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, "").code, code::SessionUnusable)
        << "expiring a session now reaches the other connections";
    std::vector<FileStatus> statuses;
    EXPECT_TRUE(m_alice->status(m_aliceTicket, {aliceFile("shared.kel")}, statuses).ok()) << "but not alice's";
    m_now += 3601;
    for (const auto& [name, operation] : kOperations) {
        SCOPED_TRACE(name);
        refused(operation(*m_alice, m_aliceTicket, aliceFile("shared.kel")), code::SessionUnusable, "expired");
        EXPECT_EQ(operation(*m_alice, "no-such-ticket", aliceFile("shared.kel")).code, code::SessionUnusable);
    }
    std::string renewed;
    ok(m_alice->login("alice", "alice-pw", "alice-ws", renewed));
    EXPECT_TRUE(m_alice->edit(renewed, {aliceFile("shared.kel")}, "").ok());
}

TEST_F(DepotSessions, AnUnreachableDepotFailsWith34UntilItAppears)
{
    const std::string missing = path("elsewhere/depot.db");
    const std::string garbage = path("garbage.db");
    std::ofstream(garbage) << "not a database at all, just text that is long enough to be read as a header";
    for (const std::string& path : {missing, garbage}) {
        Depot unreachable(path);
        std::string ticket;
        refused(unreachable.login("alice", "alice-pw", "alice-ws", ticket), code::SessionUnusable, "Cannot reach the depot");
        for (const auto& [name, operation] : kOperations)
            EXPECT_EQ(operation(unreachable, m_aliceTicket, aliceFile("shared.kel")).code, code::SessionUnusable) << name;
    }
    Depot later(missing);
    fs::create_directories(fs::path(missing).parent_path());
    ok(Depot::create(missing));
    EXPECT_TRUE(later.addUser("dave", "pw").ok()) << "the connection is made once the file is there";
}

TEST_F(DepotSessions, InjectedFailuresHitTheNextCallsOrOneOperation)
{
    m_alice->faults().failNextCalls(2, code::SessionUnusable);
    std::vector<FileStatus> statuses;
    EXPECT_TRUE(m_bob->status(m_bobTicket, {bobFile("shared.kel")}, statuses).ok()) << "faults belong to one connection";
    EXPECT_EQ(m_alice->status(m_aliceTicket, {aliceFile("shared.kel")}, statuses).code, code::SessionUnusable);
    EXPECT_EQ(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").code, code::SessionUnusable);
    EXPECT_TRUE(m_alice->status(m_aliceTicket, {aliceFile("shared.kel")}, statuses).ok());

    m_alice->faults().failOperation(Operation::Edit, code::IoError, "disk on fire");
    const Result edit = m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "");
    EXPECT_EQ(edit.code, code::IoError);
    EXPECT_EQ(edit.error, "disk on fire");
    EXPECT_TRUE(m_alice->status(m_aliceTicket, {aliceFile("shared.kel")}, statuses).ok());
    EXPECT_EQ(statuses[0].word, 0u) << "the failed edit opened nothing";
    m_alice->faults().failOperation(Operation::Status, code::SessionUnusable);
    EXPECT_EQ(m_alice->status(m_aliceTicket, {aliceFile("shared.kel")}, statuses).code, code::SessionUnusable);
    m_alice->faults().clear();
    EXPECT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
}

// Cancels at the n-th poll; counts the polls when it never cancels.
struct CancelAt
{
    int at;
    int polls = 0;
    bool operator()() { return ++polls == at; }
};

TEST_F(DepotSessions, ACancelledSubmitChangesNothingWhereverItStops)
{
    for (const char* name : {"a.kel", "b.kel", "c.kel"}) {
        write(aliceFile(name), name);
        ok(m_alice->add(m_aliceTicket, {aliceFile(name)}, ""));
    }
    ChangelistId submitted;
    int at = 1;
    for (;; ++at) {
        CancelAt cancel{at};
        const Result result = m_alice->submit(m_aliceTicket, "", "three assets", submitted, std::ref(cancel));
        if (result.ok())
            break;
        ASSERT_EQ(result.code, code::Cancelled) << result.error;
        std::vector<OpenedFile> opened;
        ok(m_alice->opened(m_aliceTicket, false, opened));
        EXPECT_EQ(opened.size(), 3u) << "cancelled at poll " << at;
        EXPECT_EQ(bobSees("a.kel"), status::AddedByOthers | status::NotInDepot);
        EXPECT_TRUE(isWritable(aliceFile("c.kel")));
    }
    EXPECT_GT(at, 4) << "the submit polls between its files";
    EXPECT_FALSE(isWritable(aliceFile("c.kel")));
}

TEST_F(DepotSessions, ASlowRoundTripCanBeCancelledWhileItWaits)
{
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    write(aliceFile("shared.kel"), "unsaved work");
    m_alice->faults().setLatency(std::chrono::seconds(30));
    CancelAt cancel{3};
    EXPECT_EQ(m_alice->revert(m_aliceTicket, {aliceFile("shared.kel")}, std::ref(cancel)).code, code::Cancelled);
    EXPECT_EQ(cancel.polls, 3);
    EXPECT_EQ(read(aliceFile("shared.kel")), "unsaved work");
    m_alice->faults().clear();
    EXPECT_EQ(aliceSees("shared.kel"), status::OpenedForEdit);
}

}  // namespace
