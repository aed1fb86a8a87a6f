// The status word alice sees for a file after something happened to it, in either workspace.
#include "depotfixture.h"

using namespace hbrc::depot;

namespace {

using DepotStatus = DepotFixture;

TEST_F(DepotStatus, EveryFileIsAnsweredInOrderInOneRoundTrip)
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

}  // namespace
