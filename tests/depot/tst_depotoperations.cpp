// Opening, reverting, submitting and changelists, as a user of a Perforce-style server expects.
#include "depotfixture.h"

#include <sqlite3.h>

#include <functional>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

using DepotOperations = DepotFixture;

TEST_F(DepotOperations, RevertUndoesEachKindOfOpening)
{
    const std::string shared = aliceFile("shared.kel");
    const std::string added = aliceFile("new.kel");
    EXPECT_FALSE(isWritable(shared));
    ok(m_alice->edit(m_aliceTicket, {shared}, ""));
    EXPECT_TRUE(isWritable(shared));
    write(shared, "scribbles");
    write(added, "draft");
    ok(m_alice->add(m_aliceTicket, {added}, ""));
    ok(m_alice->revert(m_aliceTicket, {shared, added}));
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
}

TEST_F(DepotOperations, SubmittedEditAndDeleteReachTheOtherWorkspaceOnSync)
{
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    write(aliceFile("shared.kel"), "v2");
    ChangelistId submitted;
    ok(m_alice->submit(m_aliceTicket, "", "second", submitted));
    EXPECT_FALSE(isWritable(aliceFile("shared.kel")));
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("shared.kel")).word, status::NotAtHead);
    ok(m_bob->sync(m_bobTicket, {bobFile("shared.kel")}));
    EXPECT_EQ(read(bobFile("shared.kel")), "v2");
    EXPECT_FALSE(isWritable(bobFile("shared.kel")));
    Changelist described;
    ok(m_bob->describe(m_bobTicket, submitted, described));
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(described.files[0].depotPath, "//depot/shared.kel");
    EXPECT_EQ(described.files[0].revision, 2);
    EXPECT_EQ(described.state, ChangelistState::Submitted);

    ok(m_alice->remove(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    ok(submit(*m_alice, m_aliceTicket, "retire"));
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, aliceFile("shared.kel")).word, status::NotInDepot);
    ok(m_bob->sync(m_bobTicket, {}));
    EXPECT_FALSE(fs::exists(bobFile("shared.kel")));
    write(bobFile("shared.kel"), "reborn");
    EXPECT_TRUE(m_bob->add(m_bobTicket, {bobFile("shared.kel")}, "").ok()) << "a deleted file can be added again";
}

TEST_F(DepotOperations, OpeningIsAllOrNothingAndNamesEveryRefusal)
{
    ok(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, ""));
    write(aliceFile("other.kel"), "x");
    const Result result = m_alice->edit(m_aliceTicket, {aliceFile("other.kel"), aliceFile("shared.kel")}, "");
    EXPECT_EQ(result.code, code::Failed);
    EXPECT_NE(result.error.find("//depot/other.kel is not in the depot"), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("//depot/shared.kel is opened for edit by bob@bob-ws"), std::string::npos);
    std::vector<OpenedFile> opened;
    ok(m_alice->opened(m_aliceTicket, false, opened));
    EXPECT_TRUE(opened.empty());
}

TEST_F(DepotOperations, EditOfAFileNotAtHeadIsRefusedUntilSynced)
{
    bobSubmitsNewFile("ship.kel", "hull");
    ok(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, ""));
    write(bobFile("shared.kel"), "v2");
    ok(submit(*m_bob, m_bobTicket, "bob's v2"));
    EXPECT_EQ(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").code, code::Failed);
    ok(m_alice->sync(m_aliceTicket, {}));
    EXPECT_EQ(read(aliceFile("ship.kel")), "hull");
    EXPECT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
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
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("new.kel")).word, status::AddedByOthers | status::NotInDepot);
    EXPECT_TRUE(isWritable(added));
}

TEST_F(DepotOperations, PendingChangelistsAreCreatedListedDescribedAndEndWithTheirSubmit)
{
    ChangelistId submitted;
    EXPECT_NE(m_alice->submit(m_aliceTicket, "", "nothing", submitted).error.find("No files"), std::string::npos);
    ChangelistId created;
    ok(m_alice->createChangelist(m_aliceTicket, "rework the hull", created));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, created));
    std::vector<Changelist> pending;
    ok(m_alice->changelists(m_aliceTicket, ChangelistState::Pending, pending));
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_EQ(pending[0].id, created);
    EXPECT_EQ(pending[0].description, "rework the hull");
    ok(m_bob->changelists(m_bobTicket, ChangelistState::Pending, pending));
    EXPECT_TRUE(pending.empty()) << "bob lists only his own workspace's pending changelists";
    bool exists = false;
    ok(m_alice->changelistExists(m_aliceTicket, created, exists));
    EXPECT_TRUE(exists);
    ok(m_bob->changelistExists(m_bobTicket, created, exists));
    EXPECT_FALSE(exists);
    EXPECT_EQ(m_bob->edit(m_bobTicket, {bobFile("other.kel")}, created).code, code::Failed);

    Changelist described;
    ok(m_alice->describe(m_aliceTicket, created, described));
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(described.files[0].action, FileAction::Edit);
    ok(m_alice->describe(m_aliceTicket, "", described));
    EXPECT_TRUE(described.files.empty()) << "the default changelist holds nothing";
    EXPECT_EQ(m_alice->describe(m_aliceTicket, "not-a-number", described).code, code::Failed);
    EXPECT_EQ(m_alice->describe(m_aliceTicket, "99", described).error, "Change 99 unknown.");

    ok(m_alice->submit(m_aliceTicket, created, "", submitted));
    EXPECT_EQ(submitted, created);
    ok(m_alice->changelistExists(m_aliceTicket, created, exists));
    EXPECT_FALSE(exists) << "a submitted changelist is no longer pending";
    EXPECT_EQ(m_alice->submit(m_aliceTicket, created, "", submitted).code, code::Failed);
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    EXPECT_EQ(m_alice->submit(m_aliceTicket, "", "", submitted).code, code::Failed) << "the default one needs a description";
}

TEST_F(DepotOperations, OpenedListsEveryWorkspaceOnRequest)
{
    ok(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, ""));
    ok(m_bob->lock(m_bobTicket, {bobFile("shared.kel")}));
    std::vector<OpenedFile> opened;
    ok(m_alice->opened(m_aliceTicket, false, opened));
    EXPECT_TRUE(opened.empty());
    ok(m_alice->opened(m_aliceTicket, true, opened));
    ASSERT_EQ(opened.size(), 1u);
    EXPECT_EQ(opened[0].user, "bob");
    EXPECT_EQ(opened[0].localPath, bobFile("shared.kel"));
    EXPECT_TRUE(opened[0].locked);
    EXPECT_EQ(m_alice->lock(m_aliceTicket, {aliceFile("shared.kel")}).code, code::Failed) << "not opened by alice";
}

// Pending work as alice rearranges it before a submit while bob watches: every operation is one
// round trip, and what it changes is what bob's status shows.
class PendingWork : public DepotFixture
{
public:
    void once(Depot& depot, const std::function<Result()>& operation)
    {
        const std::uint64_t before = depot.roundTrips();
        ok(operation());
        EXPECT_EQ(depot.roundTrips(), before + 1);
    }
    std::string changelistOf(const std::string& file) { return statusOf(*m_alice, m_aliceTicket, file).changelist; }
};

TEST_F(PendingWork, AliceMovesTrimsAndSubmitsOneChangelistAndBobGetsIt)
{
    bobSubmitsNewFile("ship.kel", "hull");
    ok(m_alice->sync(m_aliceTicket, {}));
    const std::string shared = aliceFile("shared.kel");
    const std::string ship = aliceFile("ship.kel");
    const std::string added = aliceFile("new.kel");
    ChangelistId hull;
    ChangelistId sails;
    ok(m_alice->createChangelist(m_aliceTicket, "hull", hull));
    m_now += 60;
    ok(m_alice->createChangelist(m_aliceTicket, "sails", sails));
    ok(m_alice->edit(m_aliceTicket, {shared, ship}, ""));
    write(added, "draft");
    ok(m_alice->add(m_aliceTicket, {added}, hull));

    once(*m_alice, [&] { return m_alice->reopen(m_aliceTicket, {shared, ship}, sails); });
    EXPECT_EQ(changelistOf(ship), sails);
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("ship.kel")).holders, std::vector<std::string>{"alice"});
    once(*m_alice, [&] { return m_alice->setDescription(m_aliceTicket, sails, "sails and mast"); });
    EXPECT_NE(m_alice->deleteChangelist(m_aliceTicket, hull).error.find("has 1 open file(s)"), std::string::npos);
    once(*m_alice, [&] { return m_alice->reopen(m_aliceTicket, {added}, "default"); });
    once(*m_alice, [&] { return m_alice->deleteChangelist(m_aliceTicket, hull); });
    std::vector<Changelist> pending;
    ok(m_alice->changelists(m_aliceTicket, ChangelistState::Pending, pending));
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_EQ(pending[0].description, "sails and mast");
    EXPECT_EQ(pending[0].time, m_now);

    // Only the edit whose content changed stays open; the untouched one is read-only again.
    write(ship, "hull with a keel");
    std::vector<std::string> reverted;
    once(*m_alice, [&] { return m_alice->revertUnchanged(m_aliceTicket, {}, reverted); });
    EXPECT_EQ(reverted, std::vector<std::string>{"//depot/shared.kel"});
    EXPECT_FALSE(isWritable(shared));
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("shared.kel")).word, 0u);
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, added).word, status::OpenedForAdd) << "adds are never reverted";

    once(*m_alice, [&] { return m_alice->lock(m_aliceTicket, {ship}); });
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("ship.kel")).word, status::OpenedByOthers | status::LockedByOthers);
    once(*m_alice, [&] { return m_alice->unlock(m_aliceTicket, {ship}); });
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("ship.kel")).word, status::OpenedByOthers);

    m_now += 60;
    ChangelistId submitted;
    once(*m_alice, [&] { return m_alice->submit(m_aliceTicket, sails, "", submitted); });
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, added).changelist, "") << "the default changelist stays pending";
    Changelist described;
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

TEST_F(PendingWork, RefusalsChangeNothingAndSayWhy)
{
    ChangelistId mine;
    ok(m_alice->createChangelist(m_aliceTicket, "mine", mine));
    ok(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, mine));
    ok(m_alice->lock(m_aliceTicket, {aliceFile("shared.kel")}));
    ChangelistId older;
    ok(m_alice->createChangelist(m_aliceTicket, "older", older));
    write(aliceFile("x.kel"), "x");
    ok(m_alice->add(m_aliceTicket, {aliceFile("x.kel")}, older));
    ChangelistId done;
    ok(m_alice->submit(m_aliceTicket, older, "", done));
    struct Row
    {
        const char* name;
        std::function<Result()> operation;
        std::string says;
    };
    const std::vector<Row> rows = {
        {"bob moves alice's file", [&] { return m_bob->reopen(m_bobTicket, {bobFile("shared.kel")}, ""); },
         "is not opened in workspace bob-ws"},
        {"into a submitted change", [&] { return m_alice->reopen(m_aliceTicket, {aliceFile("shared.kel")}, done); },
         "is not a pending changelist of workspace alice-ws"},
        {"bob renames alice's changelist", [&] { return m_bob->setDescription(m_bobTicket, mine, "bob's"); },
         "is not a pending changelist of workspace bob-ws"},
        {"an empty description", [&] { return m_alice->setDescription(m_aliceTicket, mine, ""); }, "cannot be empty"},
        {"the default one's description", [&] { return m_alice->setDescription(m_aliceTicket, "", "d"); },
         "The default changelist has no description"},
        {"bob deletes alice's changelist", [&] { return m_bob->deleteChangelist(m_bobTicket, mine); },
         "is not a pending changelist of workspace bob-ws"},
        {"the default one", [&] { return m_alice->deleteChangelist(m_aliceTicket, "default"); },
         "The default changelist cannot be deleted."},
        {"a submitted one", [&] { return m_alice->deleteChangelist(m_aliceTicket, done); }, "is not a pending"},
        {"bob unlocks alice's lock", [&] { return m_bob->unlock(m_bobTicket, {bobFile("shared.kel")}); },
         "Cannot unlock:"},
    };
    for (const Row& row : rows) {
        const Result result = row.operation();
        EXPECT_EQ(result.code, code::Failed) << row.name;
        EXPECT_NE(result.error.find(row.says), std::string::npos) << row.name << ": " << result.error;
    }
    Changelist described;
    ok(m_alice->describe(m_aliceTicket, mine, described));
    EXPECT_EQ(described.description, "mine");
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("shared.kel")).word,
              status::OpenedByOthers | status::LockedByOthers);
    std::vector<std::string> reverted;
    ok(m_bob->revertUnchanged(m_bobTicket, {bobFile("shared.kel")}, reverted));
    EXPECT_TRUE(reverted.empty()) << "bob has nothing open";
}

TEST_F(DepotOperations, ADepotWithoutChangeTimesGetsThemOnItsFirstWritableOpening)
{
    // A depot of an earlier build: its changes table has no time column.
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open(m_depotPath.c_str(), &raw), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(raw, "ALTER TABLE changes DROP COLUMN time", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(raw);

    fs::permissions(m_depotPath, fs::perms::owner_write, fs::perm_options::remove);
    std::vector<Changelist> submitted;
    EXPECT_NE(Depot(m_depotPath).changelists(m_aliceTicket, ChangelistState::Submitted, submitted).error.find(
                  "open it once with write permission"),
              std::string::npos);
    fs::permissions(m_depotPath, fs::perms::owner_write, fs::perm_options::add);

    Depot reopened(m_depotPath);
    ok(reopened.changelists(m_aliceTicket, ChangelistState::Submitted, submitted));
    ASSERT_EQ(submitted.size(), 1u);
    EXPECT_EQ(submitted[0].time, 0) << "unknown";
    ok(reopened.edit(m_aliceTicket, {aliceFile("shared.kel")}, ""));
    ok(submit(reopened, m_aliceTicket, "second"));
    ok(reopened.changelists(m_aliceTicket, ChangelistState::Submitted, submitted));
    ASSERT_EQ(submitted.size(), 2u);
    EXPECT_GT(submitted[1].time, 0);
}

}  // namespace
