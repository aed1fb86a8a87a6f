// The history questions of the revision-server contract on every backend: alice and bob each
// submit two edits of rock.bin, alice deletes tree.bin, then each question is asked once, as one
// round trip, and its answer compared with what was submitted.
#include <serverhostfixture.h>

#include <ctime>

namespace {

using hbrc::host::RevisionServer;
using hbrc::revision::ChangeFilter;
using hbrc::revision::ChangelistId;
using hbrc::revision::FileAction;
using hbrc::revision::FileRevision;
using hbrc::revision::Result;
using Lines = std::vector<std::string>;

// "change user action description" per revision, newest first.
Lines Summary(const std::vector<FileRevision>& history)
{
    Lines lines;
    for (const FileRevision& revision : history)
        lines.push_back(revision.changelist + " " + revision.user + " " + "EAD"[int(revision.action)] + " " +
                        revision.description);
    return lines;
}

class HistoryContract : public ServerFixture
{
public:
    // Alice asks through a connection of her own, whose round trips are hers alone.
    void SetUp() override
    {
        ServerFixture::SetUp();
        if (HasFatalFailure())
            return;
        aliceServer = hbrc::host::OpenRevisionServer(DepotPath(), {hbrc::revision::PasswordHashCost::Minimal});
        alice = aliceServer.get();
        BobExpects(alice->login("alice", "alice-pw", AliceWorkspace(), aliceTicket));
        alice1 = Submits(*alice, aliceTicket, AlicePath("rock.bin"), "alice 1");
        bob1 = Submits(Bob(), BobTicket(), BobPath("rock.bin"), "bob 1");
        alice2 = Submits(*alice, aliceTicket, AlicePath("rock.bin"), "alice 2");
        bob2 = Submits(Bob(), BobTicket(), BobPath("rock.bin"), "bob 2");
        BobExpects(alice->sync(aliceTicket, {}));
        BobExpects(alice->remove(aliceTicket, {AlicePath("tree.bin")}, ""));
        BobExpects(alice->submit(aliceTicket, "", "drop tree", dropTree));
    }

    void TearDown() override
    {
        aliceServer.reset();
        ServerFixture::TearDown();
    }

    // Brings the workspace to the head, then submits text as file's new content and description.
    ChangelistId Submits(RevisionServer& server, const std::string& ticket, const std::string& file,
                         const std::string& text) const
    {
        ChangelistId submitted;
        BobExpects(server.sync(ticket, {}));
        BobExpects(server.edit(ticket, {file}, ""));
        EXPECT_TRUE(WriteText(file, text)) << file;
        BobExpects(server.submit(ticket, "", text, submitted));
        return submitted;
    }

    // Runs one question of alice's and expects it to succeed in the round trips given.
    void AliceAsksOnce(const std::function<Result()>& question, std::uint64_t roundTrips = 1) const
    {
        const std::uint64_t before = alice->roundTrips();
        const Result result = question();
        ASSERT_TRUE(result.ok()) << result.error;
        EXPECT_EQ(alice->roundTrips() - before, roundTrips);
    }

    std::unique_ptr<RevisionServer> aliceServer;
    RevisionServer* alice = nullptr;
    std::string aliceTicket;
    ChangelistId alice1, bob1, alice2, bob2, dropTree;
    const std::int64_t started = std::time(nullptr);
};
INSTANTIATE_TEST_SUITE_P(Servers, HistoryContract, ServerKinds(), ServerKindName);

TEST_P(HistoryContract, HistoriesContentsChangesFilesUsersWorkspacesAndAnOldRevision)
{
    std::vector<std::vector<FileRevision>> histories;
    AliceAsksOnce([&] {
        return alice->fileHistory(aliceTicket, {AlicePath("rock.bin"), AlicePath("tree.bin"), AlicePath("never.bin")},
                                  0, histories);
    });
    ASSERT_EQ(histories.size(), 3u);
    const std::vector<FileRevision> rock = histories[0];
    const std::vector<FileRevision> tree = histories[1];
    EXPECT_EQ(Summary(rock), (Lines{bob2 + " bob E bob 2", alice2 + " alice E alice 2", bob1 + " bob E bob 1",
                                    alice1 + " alice E alice 1", "1 alice A seed assets"}));
    EXPECT_EQ(Summary(tree), (Lines{dropTree + " alice D drop tree", "1 alice A seed assets"}));
    EXPECT_TRUE(histories[2].empty()) << "a file never added";
    for (const FileRevision& revision : rock)
        EXPECT_GE(revision.time, started - 60) << revision.revision;
    AliceAsksOnce([&] { return alice->fileHistory(aliceTicket, {AlicePath("rock.bin")}, 2, histories); });
    EXPECT_EQ(Summary(histories.at(0)), (Lines{Summary(rock)[0], Summary(rock)[1]})) << "limit";

    for (std::size_t i = 0; i + 1 < rock.size(); ++i) {
        std::string content;
        AliceAsksOnce([&] { return alice->fileContent(aliceTicket, {AlicePath("rock.bin"), rock[i].revision}, content); });
        EXPECT_EQ(content, rock[i].description);
    }
    std::string deleted;
    EXPECT_EQ(alice->fileContent(aliceTicket, {AlicePath("tree.bin"), tree.at(0).revision}, deleted).code,
              hbrc::revision::code::Failed)
        << "a revision that deletes it";

    const struct {
        const char* name;
        ChangeFilter filter;
        Lines changes;
    } filters[] = {
        {"all", {}, {dropTree, bob2, alice2, bob1, alice1, "1"}},
        {"bob's", {"bob", {}, 0, 0, 0}, {bob2, bob1}},
        {"rock's newest three", {"", {AlicePath("rock.bin")}, 0, 0, 3}, {bob2, alice2, bob1}},
        {"the tree's", {"", {AlicePath("tree.bin")}, 0, 0, 0}, {dropTree, "1"}},
        {"until 1970", {"", {}, 0, 1, 0}, {}},
        {"since tomorrow", {"", {}, started + 86400, 0, 0}, {}},
        {"from the seed until now", {"", {}, started - 60, std::time(nullptr) + 60, 0}, {dropTree, bob2, alice2, bob1, alice1, "1"}},
    };
    for (const auto& row : filters) {
        std::vector<hbrc::revision::Changelist> changes;
        AliceAsksOnce([&] { return alice->submittedChanges(aliceTicket, row.filter, changes); });
        Lines ids;
        for (const hbrc::revision::Changelist& change : changes)
            ids.push_back(change.id);
        EXPECT_EQ(ids, row.changes) << row.name;
    }
    hbrc::revision::Changelist dropped;
    AliceAsksOnce([&] { return alice->submittedChange(aliceTicket, dropTree, dropped); });
    EXPECT_EQ(dropped.user + ": " + dropped.description, "alice: drop tree");
    ASSERT_EQ(dropped.files.size(), 1u);
    EXPECT_TRUE(dropped.files[0].depotPath.size() > 8 &&
                dropped.files[0].depotPath.compare(dropped.files[0].depotPath.size() - 8, 8, "tree.bin") == 0)
        << dropped.files[0].depotPath;
    EXPECT_EQ(dropped.files[0].action, hbrc::revision::FileAction::Delete);
    EXPECT_EQ(dropped.files[0].revision, tree.at(0).revision);
    EXPECT_FALSE(alice->submittedChange(aliceTicket, "999", dropped).ok()) << "an unknown change";

    const struct {
        const char* name;
        ChangelistId change;
        Lines files;
    } listings[] = {
        {"at bob's first change", bob1, {"rock.bin#" + bob1, "tree.bin#1"}},
        {"at the head", "", {"rock.bin#" + bob2}},
    };
    for (const auto& row : listings) {
        std::vector<FileRevision> files;
        AliceAsksOnce([&] { return alice->filesAt(aliceTicket, {AlicePath("rock.bin"), AlicePath("tree.bin")}, row.change, files); });
        Lines named;
        for (const FileRevision& file : files)
            named.push_back(file.depotPath.substr(file.depotPath.rfind('/') + 1) + "#" + file.changelist);
        EXPECT_EQ(named, row.files) << row.name;
    }

    std::vector<std::string> users;
    AliceAsksOnce([&] { return alice->users(aliceTicket, users); });
    EXPECT_EQ(users, (Lines{"alice", "bob"}));
    std::vector<hbrc::revision::WorkspaceRecord> workspaces;
    AliceAsksOnce([&] { return alice->workspaces(aliceTicket, workspaces); }, IsSubversion() ? 0 : 1);
    EXPECT_TRUE(std::any_of(workspaces.begin(), workspaces.end(), [&](const auto& workspace) {
        return workspace.name == AliceWorkspace() && workspace.owner == "alice";
    }));

    // Back to alice's first edit: the file says so, status too, and an open file is not moved.
    AliceAsksOnce([&] { return alice->syncTo(aliceTicket, {{AlicePath("rock.bin"), rock[3].revision}}); });
    std::vector<hbrc::revision::FileStatus> statuses;
    BobExpects(alice->status(aliceTicket, {AlicePath("rock.bin")}, statuses));
    EXPECT_TRUE(statuses.at(0).word & hbrc::revision::status::NotAtHead);
    EXPECT_EQ(statuses.at(0).haveRevision, rock[3].revision);
    EXPECT_EQ(statuses.at(0).headRevision, rock[0].revision);
    EXPECT_EQ(Writable({AlicePath("rock.bin")}), std::vector<bool>{false});
    EXPECT_EQ(ReadText(AlicePath("rock.bin")), "alice 1");
    BobExpects(alice->edit(aliceTicket, {KelFileOf("Sky")}, ""));
    EXPECT_EQ(alice->syncTo(aliceTicket, {{KelFileOf("Sky"), 1}}).code, hbrc::revision::code::Failed);
}

}  // namespace
