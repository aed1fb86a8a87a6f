// Status, opening, reverting, submitting and changelists, as a user of a revision server expects.
#include "depotfixture.h"

#include <functional>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

// alice works while bob watches: every operation is one round trip, and what it changes is what
// bob's status shows.
class DepotOperations : public DepotFixture
{
public:
    void once(Depot& depot, const std::function<Result()>& operation)
    {
        const std::uint64_t before = depot.roundTrips();
        ok(operation());
        EXPECT_EQ(depot.roundTrips(), before + 1);
    }
};

TEST_F(DepotOperations, RevertUndoesEachKindOfOpeningAndSubmitsReachBobOnSync)
{
    const std::string shared = aliceFile("shared.kel");
    const std::string added = aliceFile("new.kel");
    EXPECT_FALSE(isWritable(shared));
    ok(m_alice->edit(m_aliceTicket, {shared}, ""));
    EXPECT_TRUE(isWritable(shared));
    write(shared, "scribbles");
    write(added, "draft");
    ok(m_alice->add(m_aliceTicket, {added}, ""));
    once(*m_alice, [&] { return m_alice->revert(m_aliceTicket, {shared, added}); });
    EXPECT_EQ(read(shared), "v1");
    EXPECT_FALSE(isWritable(shared));
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, shared).word, 0u);
    // A reverted add is only unopened: the new file keeps its content and stays writable.
    EXPECT_EQ(read(added), "draft");
    EXPECT_TRUE(isWritable(added));
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, added).word, status::NotInDepot);
    ok(m_alice->remove(m_aliceTicket, {shared}, ""));
    EXPECT_FALSE(fs::exists(shared));
    ok(m_alice->revert(m_aliceTicket, {shared}));
    EXPECT_EQ(read(shared), "v1");
    EXPECT_FALSE(isWritable(shared));

    ok(m_alice->edit(m_aliceTicket, {shared}, ""));
    write(shared, "v2");
    ChangelistId submitted;
    once(*m_alice, [&] { return m_alice->submit(m_aliceTicket, "", "second", submitted); });
    EXPECT_FALSE(isWritable(shared));
    once(*m_bob, [&] { return m_bob->sync(m_bobTicket, {bobFile("shared.kel")}); });
    EXPECT_EQ(read(bobFile("shared.kel")), "v2");
    EXPECT_FALSE(isWritable(bobFile("shared.kel")));
    Changelist described;
    ok(m_bob->describe(m_bobTicket, submitted, described));
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(described.files[0].depotPath, "//depot/shared.kel");
    EXPECT_EQ(described.files[0].revision, 2);
    EXPECT_EQ(described.state, ChangelistState::Submitted);

    ok(m_alice->remove(m_aliceTicket, {shared}, ""));
    ok(submit(*m_alice, m_aliceTicket, "retire"));
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, shared).word, status::NotInDepot);
    ok(m_bob->sync(m_bobTicket, {}));
    EXPECT_FALSE(fs::exists(bobFile("shared.kel")));
    write(bobFile("shared.kel"), "reborn");
    EXPECT_TRUE(m_bob->add(m_bobTicket, {bobFile("shared.kel")}, "").ok()) << "a deleted file can be added again";
}

TEST_F(DepotOperations, AliceMovesTrimsAndSubmitsOneChangelistAndBobGetsIt)
{
    bobSubmitsNewFile("ship.kel", "hull");
    ok(m_alice->sync(m_aliceTicket, {}));
    const std::string shared = aliceFile("shared.kel");
    const std::string ship = aliceFile("ship.kel");
    const std::string added = aliceFile("new.kel");
    ChangelistId hull;
    ChangelistId sails;
    once(*m_alice, [&] { return m_alice->createChangelist(m_aliceTicket, "hull", hull); });
    m_now += 60;
    ok(m_alice->createChangelist(m_aliceTicket, "sails", sails));
    ok(m_alice->edit(m_aliceTicket, {shared, ship}, hull));
    write(added, "draft");
    ok(m_alice->add(m_aliceTicket, {added}, hull));
    std::vector<Changelist> pending;
    ok(m_bob->changelists(m_bobTicket, ChangelistState::Pending, pending));
    EXPECT_TRUE(pending.empty()) << "bob lists only his own workspace's pending changelists";
    bool exists = false;
    ok(m_bob->changelistExists(m_bobTicket, hull, exists));
    EXPECT_FALSE(exists);
    ok(m_alice->changelistExists(m_aliceTicket, hull, exists));
    EXPECT_TRUE(exists);

    once(*m_alice, [&] { return m_alice->reopen(m_aliceTicket, {shared, ship}, sails); });
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, ship).changelist, sails);
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("ship.kel")).holders, std::vector<std::string>{"alice"});
    once(*m_alice, [&] { return m_alice->setDescription(m_aliceTicket, sails, "sails and mast"); });
    EXPECT_NE(m_alice->deleteChangelist(m_aliceTicket, hull).error.find("has 1 open file(s)"), std::string::npos);
    once(*m_alice, [&] { return m_alice->reopen(m_aliceTicket, {added}, "default"); });
    once(*m_alice, [&] { return m_alice->deleteChangelist(m_aliceTicket, hull); });
    once(*m_alice, [&] { return m_alice->changelists(m_aliceTicket, ChangelistState::Pending, pending); });
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_EQ(pending[0].id, sails);
    EXPECT_EQ(pending[0].description, "sails and mast");
    EXPECT_EQ(pending[0].time, m_now);
    Changelist described;
    ok(m_alice->describe(m_aliceTicket, sails, described));
    ASSERT_EQ(described.files.size(), 2u);
    EXPECT_EQ(described.files[0].action, FileAction::Edit);
    ok(m_alice->describe(m_aliceTicket, "", described));
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(described.files[0].action, FileAction::Add);

    // Only the edit whose content changed stays open; the untouched one is read-only again.
    write(ship, "hull with a keel");
    std::vector<std::string> reverted;
    once(*m_alice, [&] { return m_alice->revertUnchanged(m_aliceTicket, {}, reverted); });
    EXPECT_EQ(reverted, std::vector<std::string>{"//depot/shared.kel"});
    EXPECT_FALSE(isWritable(shared));
    EXPECT_EQ(bobSees("shared.kel"), 0u);
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, added).word, status::OpenedForAdd) << "adds are never reverted";

    once(*m_alice, [&] { return m_alice->lock(m_aliceTicket, {ship}); });
    EXPECT_EQ(bobSees("ship.kel"), status::OpenedByOthers | status::LockedByOthers);
    std::vector<OpenedFile> opened;
    ok(m_bob->opened(m_bobTicket, false, opened));
    EXPECT_TRUE(opened.empty());
    ok(m_bob->opened(m_bobTicket, true, opened));
    ASSERT_EQ(opened.size(), 2u);
    EXPECT_EQ(opened[1].user, "alice");
    EXPECT_EQ(opened[1].localPath, ship);
    EXPECT_TRUE(opened[1].locked);
    EXPECT_FALSE(opened[0].locked);
    once(*m_alice, [&] { return m_alice->unlock(m_aliceTicket, {ship}); });
    EXPECT_EQ(bobSees("ship.kel"), status::OpenedByOthers);

    m_now += 60;
    ChangelistId submitted;
    once(*m_alice, [&] { return m_alice->submit(m_aliceTicket, sails, "", submitted); });
    EXPECT_EQ(submitted, sails);
    ok(m_alice->changelistExists(m_aliceTicket, sails, exists));
    EXPECT_FALSE(exists) << "a submitted changelist is no longer pending";
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, added).changelist, "") << "the default changelist stays pending";
    ok(m_bob->describe(m_bobTicket, submitted, described));
    EXPECT_EQ(described.description, "sails and mast");
    EXPECT_EQ(described.time, m_now);
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(described.files[0].depotPath, "//depot/ship.kel");

    write(bobFile("shared.kel"), "bob's scribbles");  // a writable change the chosen-files sync keeps away from
    once(*m_bob, [&] { return m_bob->sync(m_bobTicket, {bobFile("ship.kel")}); });
    EXPECT_EQ(read(bobFile("ship.kel")), "hull with a keel");
    EXPECT_EQ(read(bobFile("shared.kel")), "bob's scribbles");
}

TEST_F(DepotOperations, RefusalsChangeNothingAndSayWhy)
{
    // alice holds shared.kel, locked, in a changelist of hers; bob changed ship.kel since she synced it.
    ChangelistId mine;
    ok(m_alice->createChangelist(m_aliceTicket, "mine", mine));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, mine));
    ok(m_alice->lock(m_aliceTicket, {aliceFile("shared.kel")}));
    bobSubmitsNewFile("ship.kel", "hull");
    ok(m_alice->sync(m_aliceTicket, {}));
    ok(m_bob->edit(m_bobTicket, {bobFile("ship.kel")}, ""));
    ok(submit(*m_bob, m_bobTicket, "bob's keel"));
    ChangelistId older;
    ok(m_alice->createChangelist(m_aliceTicket, "older", older));
    write(aliceFile("x.kel"), "x");
    ok(m_alice->add(m_aliceTicket, {aliceFile("x.kel")}, older));
    ChangelistId done;
    ok(m_alice->submit(m_aliceTicket, older, "", done));
    write(bobFile("draft.kel"), "x");
    write(bobFile("other.kel"), "x");
    ok(m_bob->add(m_bobTicket, {bobFile("other.kel")}, ""));  // for the submit without a description
    ChangelistId submitted;
    Changelist described;
    struct Row
    {
        const char* name;
        std::function<Result()> operation;
        std::vector<std::string> says;
    };
    const std::vector<Row> rows = {
        {"bob edits a file the depot lacks and one alice holds, all or nothing",
         [&] { return m_bob->edit(m_bobTicket, {bobFile("draft.kel"), bobFile("shared.kel")}, ""); },
         {"//depot/draft.kel is not in the depot", "//depot/shared.kel is locked by alice@alice-ws"}},
        {"alice edits a file behind the head", [&] { return m_alice->edit(m_aliceTicket, {aliceFile("ship.kel")}, ""); },
         {"//depot/ship.kel is not at the head revision (sync it first)"}},
        {"bob edits into alice's changelist", [&] { return m_bob->edit(m_bobTicket, {bobFile("ship.kel")}, mine); },
         {"is not a pending changelist of workspace bob-ws"}},
        {"alice locks a file she has not open", [&] { return m_alice->lock(m_aliceTicket, {aliceFile("ship.kel")}); },
         {"Cannot lock:", "is not opened in workspace alice-ws"}},
        {"bob moves alice's file", [&] { return m_bob->reopen(m_bobTicket, {bobFile("shared.kel")}, ""); },
         {"is not opened in workspace bob-ws"}},
        {"into a submitted change", [&] { return m_alice->reopen(m_aliceTicket, {aliceFile("shared.kel")}, done); },
         {"is not a pending changelist of workspace alice-ws"}},
        {"bob renames alice's changelist", [&] { return m_bob->setDescription(m_bobTicket, mine, "bob's"); },
         {"is not a pending changelist of workspace bob-ws"}},
        {"an empty description", [&] { return m_alice->setDescription(m_aliceTicket, mine, ""); }, {"cannot be empty"}},
        {"the default one's description", [&] { return m_alice->setDescription(m_aliceTicket, "", "d"); },
         {"The default changelist has no description"}},
        {"bob deletes alice's changelist", [&] { return m_bob->deleteChangelist(m_bobTicket, mine); },
         {"is not a pending changelist of workspace bob-ws"}},
        {"the default one", [&] { return m_alice->deleteChangelist(m_aliceTicket, "default"); },
         {"The default changelist cannot be deleted."}},
        {"a submitted one", [&] { return m_alice->deleteChangelist(m_aliceTicket, done); }, {"is not a pending"}},
        {"bob unlocks alice's lock", [&] { return m_bob->unlock(m_bobTicket, {bobFile("shared.kel")}); },
         {"Cannot unlock:"}},
        {"an empty default changelist", [&] { return m_alice->submit(m_aliceTicket, "", "nothing", submitted); },
         {"No files to submit in the default changelist."}},
        {"a submitted one again", [&] { return m_alice->submit(m_aliceTicket, done, "", submitted); },
         {"is not a pending changelist of workspace alice-ws"}},
        {"the default one without a description", [&] { return m_bob->submit(m_bobTicket, "", "", submitted); },
         {"Submitting the default changelist needs a description."}},
        {"no number", [&] { return m_alice->describe(m_aliceTicket, "not-a-number", described); },
         {"'not-a-number' is not a changelist number"}},
    };
    for (const Row& row : rows) {
        const Result result = row.operation();
        EXPECT_EQ(result.code, code::Failed) << row.name;
        for (const std::string& says : row.says)
            EXPECT_NE(result.error.find(says), std::string::npos) << row.name << ": " << result.error;
    }
    EXPECT_EQ(m_alice->describe(m_aliceTicket, "99", described).error, "Change 99 unknown.");
    EXPECT_TRUE(submitted.empty());
    ok(m_alice->describe(m_aliceTicket, mine, described));
    EXPECT_EQ(described.description, "mine");
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(bobSees("shared.kel"),
              status::OpenedByOthers | status::LockedByOthers);
    std::vector<OpenedFile> opened;
    ok(m_bob->opened(m_bobTicket, false, opened));
    ASSERT_EQ(opened.size(), 1u);
    EXPECT_EQ(opened[0].localPath, bobFile("other.kel")) << "bob's refused edit opened nothing";
    std::vector<std::string> reverted;
    ok(m_bob->revertUnchanged(m_bobTicket, {bobFile("shared.kel")}, reverted));
    EXPECT_TRUE(reverted.empty()) << "bob has shared.kel not open";
    ok(m_alice->sync(m_aliceTicket, {aliceFile("ship.kel")}));
    EXPECT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("ship.kel")}, "").ok()) << "synced, it opens";
}

TEST_F(DepotOperations, SubmitIsAtomicWhenAFileCannotBeRead)
{
    const std::string added = aliceFile("new.kel");
    write(added, "draft");
    ok(m_alice->add(m_aliceTicket, {added}, ""));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    fs::remove(aliceFile("shared.kel"));
    ChangelistId submitted;
    EXPECT_EQ(m_alice->submit(m_aliceTicket, "", "broken", submitted).code, code::IoError);
    EXPECT_TRUE(submitted.empty());
    std::vector<Changelist> done;
    ok(m_alice->changelists(m_aliceTicket, ChangelistState::Submitted, done));
    EXPECT_EQ(done.size(), 1u);
    EXPECT_EQ(bobSees("new.kel"), status::AddedByOthers | status::NotInDepot);
    EXPECT_TRUE(isWritable(added));
}

// The status alice sees of files after something happened to each, in either workspace.
TEST_F(DepotOperations, StatusAnswersEveryFileInOrderInOneRoundTrip)
{
    // Names that a list question must pass through unchanged.
    const std::vector<std::string> oddNames = {
        "quote\".kel", "back\\slash.kel", "line\nbreak.kel", "tab\t.kel", "control\x01.kel",
        "\xff\xfe not utf-8.kel", "ünïcödé.kel", "[bracket],comma.kel",
    };
    std::vector<std::string> files = {"edited.kel", "locked.kel", "deleted.kel", "changed.kel",
                                      "retired.kel", "reworked.kel", "dropped.kel"};
    for (const std::string& name : oddNames)
        files.push_back("odd/" + name);
    for (std::string& file : files) {
        write(bobFile(file), file);
        file = bobFile(file);
    }
    ok(m_bob->add(m_bobTicket, files, ""));
    ok(submit(*m_bob, m_bobTicket, "bob's files"));
    ok(m_alice->sync(m_aliceTicket, {}));
    ok(m_bob->edit(m_bobTicket, {bobFile("changed.kel")}, ""));
    ok(m_bob->remove(m_bobTicket, {bobFile("retired.kel")}, ""));
    write(bobFile("ship.kel"), "hull");
    ok(m_bob->add(m_bobTicket, {bobFile("ship.kel")}, ""));
    ok(submit(*m_bob, m_bobTicket, "bob's change"));
    ok(m_bob->edit(m_bobTicket, {bobFile("edited.kel"), bobFile("locked.kel"), bobFile("odd/" + oddNames[0])}, ""));
    ok(m_bob->lock(m_bobTicket, {bobFile("locked.kel")}));
    ok(m_bob->remove(m_bobTicket, {bobFile("deleted.kel")}, ""));
    write(bobFile("new.kel"), "bob's");
    ok(m_bob->add(m_bobTicket, {bobFile("new.kel")}, ""));
    write(aliceFile("local.kel"), "x");
    ChangelistId rework;
    ok(m_alice->createChangelist(m_aliceTicket, "rework", rework));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("reworked.kel")}, rework));
    ok(m_alice->remove(m_aliceTicket, {aliceFile("dropped.kel")}, ""));
    write(aliceFile("added.kel"), "x");
    ok(m_alice->add(m_aliceTicket, {aliceFile("added.kel")}, ""));
    std::filesystem::create_directories(aliceFile("folder.kel"));

    struct Row
    {
        std::string file;
        std::uint32_t word;
        std::vector<std::string> holders = {};
        ChangelistId changelist = {};
    };
    const std::vector<std::string> bob = {"bob"};
    std::vector<Row> rows = {
        {aliceFile("shared.kel"), 0},
        {aliceFile("edited.kel"), status::OpenedByOthers, bob},
        {aliceFile("locked.kel"), status::OpenedByOthers | status::LockedByOthers, bob},
        {aliceFile("deleted.kel"), status::DeletedByOthers, bob},
        {aliceFile("changed.kel"), status::NotAtHead},
        {aliceFile("retired.kel"), status::NotInDepot | status::NotAtHead},
        {aliceFile("ship.kel"), status::NotAtHead},  // submitted since alice's sync
        {aliceFile("new.kel"), status::AddedByOthers | status::NotInDepot, bob},
        {aliceFile("local.kel"), status::NotInDepot},
        {aliceFile("reworked.kel"), status::OpenedForEdit, {}, rework},
        {aliceFile("dropped.kel"), status::OpenedForDelete},
        {aliceFile("added.kel"), status::OpenedForAdd},
        {aliceFile("folder.kel"), status::NotInDepot | status::IoError},
        {aliceFile("shared.kel/inner.kel"), status::NotInDepot},
        {bobFile("shared.kel"), status::NotInDepot},  // outside alice's workspace
        {"edited.kel", status::OpenedByOthers, bob},  // relative to the workspace root
        {aliceFile("odd/../edited.kel"), status::OpenedByOthers, bob},
        {aliceFile("local.kel"), status::NotInDepot},  // asked twice
        {aliceFile("odd/" + oddNames[0]), status::OpenedByOthers, bob},
    };
    for (std::size_t i = 1; i < oddNames.size(); ++i)
        rows.push_back({aliceFile("odd/" + oddNames[i]), 0});
    std::vector<std::string> asked;
    for (const Row& row : rows)
        asked.push_back(row.file);

    const std::uint64_t before = m_alice->roundTrips();
    std::vector<FileStatus> statuses;
    ok(m_alice->status(m_aliceTicket, asked, statuses));
    std::vector<std::vector<std::string>> holders;
    ok(m_alice->holders(m_aliceTicket, asked, holders));
    EXPECT_EQ(m_alice->roundTrips() - before, 2u);
    ASSERT_EQ(statuses.size(), rows.size());
    ASSERT_EQ(holders.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(statuses[i].word, rows[i].word) << rows[i].file << std::hex << ": 0x" << statuses[i].word;
        EXPECT_EQ(statuses[i].holders, rows[i].holders) << rows[i].file;
        EXPECT_EQ(holders[i], rows[i].holders) << rows[i].file;
        EXPECT_EQ(statuses[i].changelist, rows[i].changelist) << rows[i].file;
    }
    ASSERT_EQ(statuses[2].heldBy.size(), 1u);
    const FileHolder& lock = statuses[2].heldBy[0];
    EXPECT_TRUE(lock.user == "bob" && lock.workspace == "bob-ws" && lock.action == FileAction::Edit && lock.locked);
    ASSERT_EQ(statuses[3].heldBy.size(), 1u);
    EXPECT_EQ(statuses[3].heldBy[0].action, FileAction::Delete);
}

// Files of more folders than the status keeps open, asked folder after folder and then all over
// again: each is examined in its own folder. In every folder "plain.kel" is a file, and "odd.kel"
// is a folder (which cannot be a workspace file) in the odd-numbered ones and missing elsewhere.
TEST_F(DepotOperations, StatusExaminesEachFileInItsOwnFolderWhateverTheOrder)
{
    constexpr int kFolders = 300;
    std::vector<std::string> asked;
    std::vector<std::uint32_t> expected;
    for (const char* name : {"plain.kel", "odd.kel"}) {
        for (int folder = 0; folder < kFolders; ++folder) {
            const std::string file = aliceFile("f" + std::to_string(folder) + "/" + name);
            const bool plain = std::string(name) == "plain.kel";
            if (plain)
                write(file, "x");
            else if (folder % 2)
                std::filesystem::create_directories(file);
            asked.push_back(file);
            expected.push_back(status::NotInDepot | (!plain && folder % 2 ? status::IoError : 0));
        }
    }
    std::vector<FileStatus> statuses;
    ok(m_alice->status(m_aliceTicket, asked, statuses));
    ASSERT_EQ(statuses.size(), asked.size());
    for (std::size_t i = 0; i < asked.size(); ++i)
        EXPECT_EQ(statuses[i].word, expected[i]) << asked[i];
}

}  // namespace
