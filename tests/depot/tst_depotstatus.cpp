// The status word alice sees for a file after something happened to it, in either workspace.
#include "depotfixture.h"

#include <functional>

using namespace hbrc::depot;

namespace {

struct StatusCase
{
    const char* name;
    std::function<void(DepotFixture&)> happen;
    std::uint32_t word = 0;
    std::vector<std::string> holders = {};
    ChangelistId changelist = {};
    std::string file = "alice/shared.kel";  // below the test's folder
};

void bobEdits(DepotFixture& f)
{
    f.ok(f.m_bob->edit(f.m_bobTicket, {f.bobFile("shared.kel")}, ""));
}

void bobDeletes(DepotFixture& f)
{
    f.ok(f.m_bob->remove(f.m_bobTicket, {f.bobFile("shared.kel")}, ""));
}

void bobSubmits(DepotFixture& f)
{
    f.ok(f.submit(*f.m_bob, f.m_bobTicket, "bob's change"));
}

const StatusCase kCases[] = {
    {"SyncedAndUntouched", [](DepotFixture&) {}},
    {"BobEdits", bobEdits, status::OpenedByOthers, {"bob"}},
    {"BobEditsAndLocks",
     [](DepotFixture& f) {
         bobEdits(f);
         f.ok(f.m_bob->lock(f.m_bobTicket, {f.bobFile("shared.kel")}));
     },
     status::OpenedByOthers | status::LockedByOthers, {"bob"}},
    {"BobDeletes", bobDeletes, status::DeletedByOthers, {"bob"}},
    {"BobSubmitsAnEdit", [](DepotFixture& f) { bobEdits(f); bobSubmits(f); }, status::NotAtHead},
    {"BobSubmitsADelete", [](DepotFixture& f) { bobDeletes(f); bobSubmits(f); }, status::NotInDepot | status::NotAtHead},
    {"BobSubmitsANewFileAliceNeverSynced", [](DepotFixture& f) { f.bobSubmitsNewFile("ship.kel", "hull"); },
     status::NotAtHead, {}, {}, "alice/ship.kel"},
    {"BobAddsANewFile",
     [](DepotFixture& f) {
         f.write(f.bobFile("ship.kel"), "hull");
         f.ok(f.m_bob->add(f.m_bobTicket, {f.bobFile("ship.kel")}, ""));
     },
     status::AddedByOthers | status::NotInDepot, {"bob"}, {}, "alice/ship.kel"},
    {"NewLocalFile", [](DepotFixture& f) { f.write(f.aliceFile("new.kel"), "x"); }, status::NotInDepot, {}, {},
     "alice/new.kel"},
    {"AliceEditsInAChangelist",
     [](DepotFixture& f) {
         ChangelistId created;
         f.ok(f.m_alice->createChangelist(f.m_aliceTicket, "rework", created));
         f.ok(f.m_alice->edit(f.m_aliceTicket, {f.aliceFile("shared.kel")}, created));
     },
     status::OpenedForEdit, {}, "2"},
    {"AliceDeletes", [](DepotFixture& f) { f.ok(f.m_alice->remove(f.m_aliceTicket, {f.aliceFile("shared.kel")}, "")); },
     status::OpenedForDelete},
    {"AliceAdds",
     [](DepotFixture& f) {
         f.write(f.aliceFile("new.kel"), "x");
         f.ok(f.m_alice->add(f.m_aliceTicket, {f.aliceFile("new.kel")}, ""));
     },
     status::OpenedForAdd, {}, {}, "alice/new.kel"},
    {"PathOutsideTheWorkspace", [](DepotFixture&) {}, status::NotInDepot, {}, {}, "bob/shared.kel"},
    {"FolderWhereAFileShouldBe", [](DepotFixture& f) { std::filesystem::create_directories(f.aliceFile("folder.kel")); },
     status::NotInDepot | status::IoError, {}, {}, "alice/folder.kel"},
    {"BelowAFile", [](DepotFixture&) {}, status::NotInDepot, {}, {}, "alice/shared.kel/inner.kel"},
};

class DepotStatus : public DepotFixture, public ::testing::WithParamInterface<StatusCase>
{
};

TEST_P(DepotStatus, AliceSeesTheWord)
{
    const StatusCase& row = GetParam();
    row.happen(*this);
    const FileStatus seen = statusOf(*m_alice, m_aliceTicket, path(row.file));
    EXPECT_EQ(seen.word, row.word) << std::hex << "0x" << seen.word;
    EXPECT_EQ(seen.holders, row.holders);
    EXPECT_EQ(seen.changelist, row.changelist);
}

INSTANTIATE_TEST_SUITE_P(Depot, DepotStatus, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<StatusCase>& info) { return info.param.name; });

TEST_F(DepotFixture, StatusAndHoldersAnswerEveryFileInOrderInOneRoundTripEach)
{
    // Names that a list question must pass through unchanged, each submitted by bob.
    const std::vector<std::string> oddNames = {
        "quote\".kel", "back\\slash.kel", "line\nbreak.kel", "tab\t.kel", "control\x01.kel",
        "\xff\xfe not utf-8.kel", "ünïcödé.kel", "[bracket],comma.kel",
    };
    for (const std::string& name : oddNames)
        bobSubmitsNewFile("odd/" + name, name);
    ok(m_bob->sync(m_bobTicket, {}));
    ok(m_bob->edit(m_bobTicket, {bobFile("odd/" + oddNames.front())}, ""));
    ok(m_alice->sync(m_aliceTicket, {}));
    write(aliceFile("new.kel"), "x");
    ok(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, ""));

    struct Asked
    {
        std::string file;
        std::uint32_t word;
        std::vector<std::string> holders;
    };
    std::vector<Asked> asked = {
        {aliceFile("new.kel"), status::NotInDepot, {}},
        {aliceFile("shared.kel"), status::OpenedByOthers, {"bob"}},
        {"shared.kel", status::OpenedByOthers, {"bob"}},  // relative to the workspace root
        {aliceFile("odd/../shared.kel"), status::OpenedByOthers, {"bob"}},
        {aliceFile("new.kel"), status::NotInDepot, {}},  // asked twice
        {bobFile("shared.kel"), status::NotInDepot, {}},  // outside alice's workspace
    };
    for (const std::string& name : oddNames)
        asked.push_back({aliceFile("odd/" + name), name == oddNames.front() ? status::OpenedByOthers : 0u,
                         name == oddNames.front() ? std::vector<std::string>{"bob"} : std::vector<std::string>{}});
    std::vector<std::string> files;
    for (const Asked& row : asked)
        files.push_back(row.file);

    const std::uint64_t before = m_alice->roundTrips();
    std::vector<FileStatus> statuses;
    ok(m_alice->status(m_aliceTicket, files, statuses));
    std::vector<std::vector<std::string>> holders;
    ok(m_alice->holders(m_aliceTicket, files, holders));
    EXPECT_EQ(m_alice->roundTrips() - before, 2u);
    ASSERT_EQ(statuses.size(), asked.size());
    ASSERT_EQ(holders.size(), asked.size());
    for (std::size_t i = 0; i < asked.size(); ++i) {
        EXPECT_EQ(statuses[i].word, asked[i].word) << asked[i].file;
        EXPECT_EQ(statuses[i].holders, asked[i].holders) << asked[i].file;
        EXPECT_EQ(holders[i], asked[i].holders) << asked[i].file;
    }
}

}  // namespace
