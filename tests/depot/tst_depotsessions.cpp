// Log-in, injected faults and cancelled operations.
#include "depotfixture.h"

#include <functional>

using namespace hbrc::depot;

namespace {

using DepotSessions = DepotFixture;

// What only the depot shows of sessions (the services' session table, tst_services, runs log-in
// failures, expiry and an unreachable depot through the plug-in's door on every server): a refusal
// names no user that exists, a user created without a password logs in with none, and a session
// ends when its lifetime has passed on the depot's clock.
TEST_F(DepotSessions, ALogInTellsNoUserApartAndASessionEndsWithItsLifetime)
{
    std::string ticket;
    const Result wrong = m_alice->login("alice", "guess", "alice-ws", ticket);
    refused(wrong, code::Failed, "Invalid password for user alice.");
    EXPECT_TRUE(ticket.empty());
    const Result unknownUser = m_alice->login("mallory", "guess", "alice-ws", ticket);
    EXPECT_EQ(unknownUser.code, wrong.code);
    EXPECT_EQ(unknownUser.error, "Invalid password for user mallory.");
    ok(m_alice->addUser("carol", ""));
    ok(m_alice->addWorkspace("carol-ws", "carol", path("carol")));
    EXPECT_TRUE(m_alice->login("carol", "", "carol-ws", ticket).ok());
    m_now += 3601;
    refused(m_alice->sync(m_aliceTicket, {}), code::SessionUnusable, "expired");
    EXPECT_EQ(m_alice->sync("no-such-ticket", {}).code, code::SessionUnusable);
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
