// A session's pending work on the revision server: listing changelists with their files, moving
// files between them, describing, deleting, reverting unchanged files and submitting one, while
// bob sees alice's holds and revisions through his own connection.
#include <serverhostfixture.h>

#include <gmock/gmock.h>

#include <functional>
#include <tuple>

namespace {

using hbrc::revision::ChangelistId;
using hbrc::revision::FileStatus;
using hbrc::revision::PendingChangelist;
using hbrc::revision::Result;
using hbrc::host::RevisionServer;
namespace status = hbrc::revision::status;
using Lines = std::vector<std::string>;

Lines Files(const kel4::List<std::string>& files)
{
    return {files.begin(), files.end()};
}

std::string Joined(const Lines& files)
{
    std::string text;
    for (const std::string& file : files)
        text += " " + file;
    return text;
}

// "id: description: file file" per changelist, for comparing whole listings.
Lines Summary(const std::vector<PendingChangelist>& pending)
{
    Lines lines;
    for (const PendingChangelist& changelist : pending) {
        lines.push_back(changelist.changelist.id + ": " + changelist.changelist.description + ":");
        for (const auto& file : changelist.files)
            lines.back() += " " + file.localPath;
    }
    return lines;
}

class PendingWork : public ServerFixture
{
public:
    // Alice's calls about pending work go straight to the server of her services' connection, with
    // her session's ticket; her data control's questions still go through the connection.
    void SetUp() override
    {
        ServerFixture::SetUp();
        if (HasFatalFailure())
            return;
        AliceAsks([this](RevisionServer& server, const std::string& ticket) {
            alice = &server;
            aliceTicket = ticket;
            return Result{};
        });
        ASSERT_NE(alice, nullptr);
    }
    Lines AlicesPendingWork()
    {
        std::vector<PendingChangelist> pending;
        BobExpects(alice->pendingChangelists(aliceTicket, pending));
        return Summary(pending);
    }

    RevisionServer* alice = nullptr;
    std::string aliceTicket;
};
INSTANTIATE_TEST_SUITE_P(Servers, PendingWork, ServerKinds(), ServerKindName);

TEST_P(PendingWork, AliceSortsRevertsAndSubmitsWhileBobWatchesAndGetsHerChange)
{
    ChangelistId bobsChange;
    BobExpects(Bob().createChangelist(BobTicket(), "Bob's tree", bobsChange));
    BobExpects(Bob().edit(BobTicket(), BobFilesOf("Tree"), bobsChange));

    // Alice sees who holds the tree and where, and that she is at the head.
    std::vector<FileStatus> tree;
    BobExpects(alice->status(aliceTicket, {AlicePath("tree.bin")}, tree));
    ASSERT_EQ(tree.size(), 1u);
    ASSERT_EQ(tree[0].heldBy.size(), 1u);
    EXPECT_EQ(tree[0].heldBy[0].user, "bob");
    // Subversion sees a lock, not the other working copy's changelist.
    EXPECT_EQ(tree[0].heldBy[0].changelist, IsSubversion() ? "" : bobsChange);
    EXPECT_EQ(tree[0].heldBy[0].locked, IsSubversion());
    EXPECT_GT(tree[0].haveRevision, 0);
    EXPECT_EQ(tree[0].haveRevision, tree[0].headRevision);

    // Rock and Sky open in the default changelist, then rock moved to a new one.
    AliceChecksOut("Rock");
    AliceChecksOut("Sky");
    ChangelistId moss;
    BobExpects(alice->createChangelist(aliceTicket, "Moss", moss));
    const Lines rock = Files(FilesOf("Rock")), sky = Files(FilesOf("Sky"));
    BobExpects(alice->reopen(aliceTicket, rock, moss));
    BobExpects(alice->setDescription(aliceTicket, moss, "Mossy rock"));
    const auto roundTrips = services.connection->RoundTrips();
    EXPECT_EQ(AlicesPendingWork(), (Lines{": :" + Joined(sky), moss + ": Mossy rock:" + Joined(rock)}));
    EXPECT_LE(services.connection->RoundTrips() - roundTrips, 1u) << "one question for all pending work";

    // Only the edited external file stays open after reverting the unchanged ones.
    ASSERT_TRUE(WriteText(AlicePath("rock.bin"), "moss", std::ios::app));
    Lines reverted;
    BobExpects(alice->revertUnchanged(aliceTicket, {}, reverted));
    EXPECT_EQ(reverted.size(), rock.size() + sky.size() - 1);
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Sky"), true, kPersistence));

    // With the sky marked for delete in the default changelist, the numbered one goes in alone, with
    // its own description; an empty new one can be deleted; then the default goes in.
    BobExpects(alice->remove(aliceTicket, sky, ""));
    EXPECT_EQ(AlicesPendingWork(), (Lines{": :" + Joined(sky), moss + ": Mossy rock: " + AlicePath("rock.bin")}));
    ChangelistId submitted, empty;
    BobExpects(alice->submit(aliceTicket, moss, "", submitted));
    EXPECT_EQ(AlicesPendingWork(), Lines{": :" + Joined(sky)});
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_FALSE(DataControl()->ChangeListExists(moss));
    BobExpects(alice->createChangelist(aliceTicket, "Nothing yet", empty));
    BobExpects(alice->deleteChangelist(aliceTicket, empty));
    AliceSubmits("No sky");
    EXPECT_EQ(AlicesPendingWork(), Lines{": :"});

    // Bob is behind on the rock and on the sky deleted at the head, gets the latest of the rock
    // alone, and has alice's change.
    const std::string bobsRock = BobPath("rock.bin");
    std::vector<FileStatus> bobSees;
    BobExpects(Bob().status(BobTicket(), {bobsRock, BobFilesOf("Sky").front()}, bobSees));
    ASSERT_EQ(bobSees.size(), 2u);
    EXPECT_TRUE(bobSees[0].word & status::NotAtHead);
    EXPECT_TRUE(bobSees[1].word & status::NotAtHead) << "the sky, deleted at the head";
    EXPECT_LT(bobSees[0].haveRevision, bobSees[0].headRevision);
    BobExpects(Bob().sync(BobTicket(), {bobsRock}));
    BobExpects(Bob().status(BobTicket(), {bobsRock}, bobSees));
    EXPECT_EQ(bobSees[0].word, 0u);
    EXPECT_EQ(bobSees[0].haveRevision, bobSees[0].headRevision);
    EXPECT_THAT(ReadText(bobsRock), ::testing::EndsWith("moss"));
}

// The studio reads pending work through a second connection of alice's on the same workspace: a
// changelist one connection makes and fills is the one the other lists, both ways, and numbers
// stay unique although the second connection logged in before either changelist existed.
TEST_P(PendingWork, ASecondConnectionOnTheWorkspaceListsTheChangelistsTheFirstFills)
{
    const std::unique_ptr<RevisionServer> second =
        hbrc::host::OpenRevisionServer(DepotPath(), {hbrc::revision::PasswordHashCost::Minimal});
    std::string ticket;
    BobExpects(second->login("alice", "alice-pw", AliceWorkspace(), ticket));

    ChangelistId lookDev, sunset;
    BobExpects(alice->createChangelist(aliceTicket, "look dev", lookDev));
    AliceChecksOut("Sky", lookDev);
    const std::string sky = Files(FilesOf("Sky")).front();
    std::vector<PendingChangelist> seen;
    BobExpects(second->pendingChangelists(ticket, seen));
    EXPECT_EQ(Summary(seen), (Lines{": :", lookDev + ": look dev: " + sky}));

    BobExpects(second->createChangelist(ticket, "sunset", sunset));
    BobExpects(second->reopen(ticket, {sky}, sunset));
    EXPECT_EQ(AlicesPendingWork(), (Lines{": :", lookDev + ": look dev:", sunset + ": sunset: " + sky}));
}

// Requests the server refuses, each leaving alice's pending work as it was. Alice has the sky open
// in the default changelist and the rock in a numbered one (full).
TEST_P(PendingWork, RefusedRequestsChangeNothingAndSayWhy)
{
    AliceChecksOut("Sky");
    ChangelistId full, submitted;
    BobExpects(alice->createChangelist(aliceTicket, "Full", full));
    AliceChecksOut("Rock", full);
    const Lines tree = Files(FilesOf("Tree")), sky = Files(FilesOf("Sky"));
    RevisionServer& s = *alice;
    const std::string& t = aliceTicket;
    const std::tuple<const char*, std::function<Result()>, const char*> refusals[] = {
        {"DescriptionOfTheDefault", [&] { return s.setDescription(t, "", "Anything"); }, "default changelist"},
        {"EmptyDescription", [&] { return s.setDescription(t, full, ""); }, "cannot be empty"},
        {"DescriptionOfAnUnknownChangelist", [&] { return s.setDescription(t, "9999", "Anything"); }, "Change 9999"},
        {"DeleteTheDefault", [&] { return s.deleteChangelist(t, ""); }, "cannot be deleted"},
        {"DeleteAChangelistWithFiles", [&] { return s.deleteChangelist(t, full); }, "open file(s)"},
        {"MoveAFileNotOpen", [&] { return s.reopen(t, tree, full); }, "is not opened"},
        {"MoveIntoAnUnknownChangelist", [&] { return s.reopen(t, sky, "9999"); }, "Change 9999"},
        {"SubmitTheDefaultWithoutDescription", [&] { return s.submit(t, "", "", submitted); }, "description"},
    };
    const Lines before = AlicesPendingWork();
    for (const auto& [name, request, errorPart] : refusals) {
        const Result refused = request();
        EXPECT_EQ(refused.code, hbrc::revision::code::Failed) << name << ": " << refused.error;
        EXPECT_NE(refused.error.find(errorPart), std::string::npos) << name << ": " << refused.error;
        EXPECT_EQ(AlicesPendingWork(), before) << name;
    }
}

}  // namespace
