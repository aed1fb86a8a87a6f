// A session's pending work on the revision server: listing changelists with their files, moving
// files between them, describing, deleting, reverting unchanged files and submitting one, while
// bob sees alice's holds and revisions through his own connection.
#include <serverhostfixture.h>

#include <QFile>

#include <functional>
#include <tuple>

namespace {

using hbrc::revision::CancelCheck;
using hbrc::revision::ChangelistId;
using hbrc::revision::FileStatus;
using hbrc::revision::PendingChangelist;
using hbrc::revision::Result;
using hbrc::host::RevisionServer;
namespace status = hbrc::revision::status;

std::vector<PendingChangelist> AlicesPendingWork(ServerHostFixture& fixture)
{
    std::vector<PendingChangelist> pending;
    const Result listed = fixture.AliceAsks([&](RevisionServer& server, const std::string& ticket) {
        return server.pendingChangelists(ticket, pending);
    });
    EXPECT_TRUE(listed.ok()) << listed.error;
    return pending;
}

// "id: description: file, file" per changelist, for comparing whole listings.
std::vector<std::string> Summary(const std::vector<PendingChangelist>& pending)
{
    std::vector<std::string> lines;
    for (const PendingChangelist& changelist : pending) {
        std::string line = changelist.changelist.id + ": " + changelist.changelist.description + ":";
        for (const auto& file : changelist.files)
            line += " " + file.localPath;
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> Files(const kel4::List<std::string>& files)
{
    return {files.begin(), files.end()};
}

void AppendTo(const std::string& file, const char* text)
{
    QFile edited(QFile::decodeName(file.c_str()));
    ASSERT_TRUE(edited.open(QIODevice::Append) && edited.write(text) > 0) << file;
}

class PendingWork : public ServerFixture
{
};
INSTANTIATE_TEST_SUITE_P(Servers, PendingWork, ServerKinds(), ServerKindName);

TEST_P(PendingWork, AliceSortsRevertsAndSubmitsWhileBobWatchesAndGetsHerChange)
{
    ChangelistId bobsChange;
    BobExpects(Bob().createChangelist(BobTicket(), "Bob's tree", bobsChange));
    BobExpects(Bob().edit(BobTicket(), BobFilesOf("Tree"), bobsChange));

    // Alice sees who holds the tree and where, and that she is at the head.
    std::vector<FileStatus> tree;
    const std::string treeFile = AlicePath("tree.bin");
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& ticket) {
                    return server.status(ticket, {treeFile}, tree);
                }).ok());
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
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& ticket) {
                    return server.createChangelist(ticket, "Moss", moss);
                }).ok());
    const std::vector<std::string> rock = Files(FilesOf("Rock"));
    const std::vector<std::string> sky = Files(FilesOf("Sky"));
    const Result moved = AliceAsks([&](RevisionServer& server, const std::string& ticket) {
        return server.reopen(ticket, rock, moss);
    });
    ASSERT_TRUE(moved.ok()) << moved.error;
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& ticket) {
                    return server.setDescription(ticket, moss, "Mossy rock");
                }).ok());
    const auto roundTrips = services.connection->RoundTrips();
    std::vector<PendingChangelist> pending = AlicesPendingWork(*this);
    EXPECT_LE(services.connection->RoundTrips() - roundTrips, 1u) << "one question for all pending work";
    const auto joined = [](const std::vector<std::string>& files) {
        std::string text;
        for (const std::string& file : files)
            text += " " + file;
        return text;
    };
    EXPECT_EQ(Summary(pending), (std::vector<std::string>{": :" + joined(sky), moss + ": Mossy rock:" + joined(rock)}));

    // Only the edited external file stays open after reverting the unchanged ones.
    AppendTo(AlicePath("rock.bin"), "moss");
    std::vector<std::string> reverted;
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& ticket) {
                    return server.revertUnchanged(ticket, {}, reverted);
                }).ok());
    EXPECT_EQ(reverted.size(), rock.size() + sky.size() - 1);
    EXPECT_EQ(Summary(AlicesPendingWork(*this)),
              (std::vector<std::string>{": :", moss + ": Mossy rock: " + AlicePath("rock.bin")}));
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Sky"), true, kPersistence));

    // The numbered changelist goes in with its own description; an empty new one can be deleted.
    ChangelistId submitted;
    const Result submit = AliceAsks([&](RevisionServer& server, const std::string& ticket) {
        return server.submit(ticket, moss, "", submitted);
    });
    ASSERT_TRUE(submit.ok()) << submit.error;
    ChangelistId empty;
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& ticket) {
                    return server.createChangelist(ticket, "Nothing yet", empty);
                }).ok());
    const Result deleted = AliceAsks([&](RevisionServer& server, const std::string& ticket) {
        return server.deleteChangelist(ticket, empty);
    });
    ASSERT_TRUE(deleted.ok()) << deleted.error;
    EXPECT_EQ(Summary(AlicesPendingWork(*this)), std::vector<std::string>{": :"});

    // Bob is behind on the rock, gets the latest of that file alone, and has alice's change.
    const std::string bobsRock = BobFilesOf("Rock").back();
    ASSERT_EQ(bobsRock, BobPath("rock.bin"));
    std::vector<FileStatus> bobSees;
    BobExpects(Bob().status(BobTicket(), {bobsRock}, bobSees));
    EXPECT_TRUE(bobSees[0].word & status::NotAtHead);
    EXPECT_LT(bobSees[0].haveRevision, bobSees[0].headRevision);
    BobExpects(Bob().sync(BobTicket(), {bobsRock}));
    BobExpects(Bob().status(BobTicket(), {bobsRock}, bobSees));
    EXPECT_EQ(bobSees[0].word, 0u);
    EXPECT_EQ(bobSees[0].haveRevision, bobSees[0].headRevision);
    QFile synced(QFile::decodeName(bobsRock.c_str()));
    ASSERT_TRUE(synced.open(QIODevice::ReadOnly));
    EXPECT_TRUE(synced.readAll().endsWith("moss"));
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

    ChangelistId lookDev;
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& aliceTicket) {
                    return server.createChangelist(aliceTicket, "look dev", lookDev);
                }).ok());
    AliceChecksOut("Sky", lookDev);
    const std::string sky = Files(FilesOf("Sky")).front();
    std::vector<PendingChangelist> seen;
    BobExpects(second->pendingChangelists(ticket, seen));
    EXPECT_EQ(Summary(seen), (std::vector<std::string>{": :", lookDev + ": look dev: " + sky}));

    ChangelistId sunset;
    BobExpects(second->createChangelist(ticket, "sunset", sunset));
    BobExpects(second->reopen(ticket, {sky}, sunset));
    EXPECT_EQ(Summary(AlicesPendingWork(*this)),
              (std::vector<std::string>{": :", lookDev + ": look dev:", sunset + ": sunset: " + sky}));
}

// Requests the server refuses, each leaving alice's pending work as it was. Alice has the sky open
// in the default changelist and the rock in a numbered one (full).
struct AlicesWork
{
    std::vector<std::string> tree;
    std::vector<std::string> sky;
    ChangelistId full;
};

struct Refusal
{
    const char* name;
    std::function<Result(const AlicesWork& f, RevisionServer& s, const std::string& t)> request;
    const char* errorPart;
};

const Refusal kRefusals[] = {
    {"DescriptionOfTheDefault",
     [](const AlicesWork&, RevisionServer& s, const std::string& t) {
         return s.setDescription(t, "", "Anything");
     },
     "default changelist"},
    {"EmptyDescription",
     [](const AlicesWork& f, RevisionServer& s, const std::string& t) {
         return s.setDescription(t, f.full, "");
     },
     "cannot be empty"},
    {"DescriptionOfAnUnknownChangelist",
     [](const AlicesWork&, RevisionServer& s, const std::string& t) {
         return s.setDescription(t, "9999", "Anything");
     },
     "Change 9999"},
    {"DeleteTheDefault",
     [](const AlicesWork&, RevisionServer& s, const std::string& t) {
         return s.deleteChangelist(t, "");
     },
     "cannot be deleted"},
    {"DeleteAChangelistWithFiles",
     [](const AlicesWork& f, RevisionServer& s, const std::string& t) {
         return s.deleteChangelist(t, f.full);
     },
     "open file(s)"},
    {"MoveAFileNotOpen",
     [](const AlicesWork& f, RevisionServer& s, const std::string& t) {
         return s.reopen(t, f.tree, f.full);
     },
     "is not opened"},
    {"MoveIntoAnUnknownChangelist",
     [](const AlicesWork& f, RevisionServer& s, const std::string& t) {
         return s.reopen(t, f.sky, "9999");
     },
     "Change 9999"},
    {"SubmitTheDefaultWithoutDescription",
     [](const AlicesWork&, RevisionServer& s, const std::string& t) {
         ChangelistId submitted;
         return s.submit(t, "", "", submitted);
     },
     "description"},
};

class PendingWorkRefusals : public ServerHostFixture,
                            public ::testing::WithParamInterface<std::tuple<ServerKind, Refusal>>
{
public:
    ServerKind Server() const override { return std::get<0>(GetParam()); }
};

TEST_P(PendingWorkRefusals, ChangeNothingAndSayWhy)
{
    const Refusal& row = std::get<1>(GetParam());
    AlicesWork work{Files(FilesOf("Tree")), Files(FilesOf("Sky")), {}};
    AliceChecksOut("Sky");
    ASSERT_TRUE(AliceAsks([&](RevisionServer& server, const std::string& ticket) {
                    return server.createChangelist(ticket, "Full", work.full);
                }).ok());
    AliceChecksOut("Rock", work.full);
    const std::vector<std::string> before = Summary(AlicesPendingWork(*this));

    const Result refused =
        AliceAsks([&](RevisionServer& server, const std::string& ticket) { return row.request(work, server, ticket); });
    EXPECT_EQ(refused.code, hbrc::revision::code::Failed) << refused.error;
    EXPECT_NE(refused.error.find(row.errorPart), std::string::npos) << refused.error;
    EXPECT_EQ(Summary(AlicesPendingWork(*this)), before);
}

INSTANTIATE_TEST_SUITE_P(, PendingWorkRefusals, ::testing::Combine(ServerKinds(), ::testing::ValuesIn(kRefusals)),
                         [](const ::testing::TestParamInfo<std::tuple<ServerKind, Refusal>>& info) {
                             return ServerKindName({std::get<0>(info.param), info.index}) +
                                    std::get<1>(info.param).name;
                         });

}  // namespace
