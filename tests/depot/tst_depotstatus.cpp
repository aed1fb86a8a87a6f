// The status word alice sees for a file after something happened to it, in either workspace.
#include "depotfixture.h"

#include <filesystem>
#include <functional>

using namespace hbrc::depot;

namespace {

struct StatusCase
{
    const char* name;
    std::function<void(DepotFixture&)> happen;
    std::function<std::string(DepotFixture&)> file;
    std::uint32_t word;
    std::vector<std::string> holders;
    ChangelistId changelist;
};

void ok(const Result& result)
{
    ASSERT_TRUE(result.ok()) << result.error;
}

std::string sharedForAlice(DepotFixture& f)
{
    return f.aliceFile("shared.kel");
}

void bobEdits(DepotFixture& f)
{
    ok(f.m_bob->edit(f.m_bobTicket, {f.bobFile("shared.kel")}, ""));
}

void bobSubmits(DepotFixture& f)
{
    ChangelistId submitted;
    ok(f.m_bob->submit(f.m_bobTicket, "", "bob's change", submitted));
}

const StatusCase kCases[] = {
    {"SyncedAndUntouched", [](DepotFixture&) {}, sharedForAlice, 0, {}, ""},
    {"BobEdits", bobEdits, sharedForAlice, status::OpenedByOthers, {"bob"}, ""},
    {"BobEditsAndLocks",
     [](DepotFixture& f) {
         bobEdits(f);
         ok(f.m_bob->lock(f.m_bobTicket, {f.bobFile("shared.kel")}));
     },
     sharedForAlice, status::OpenedByOthers | status::LockedByOthers, {"bob"}, ""},
    {"BobDeletes",
     [](DepotFixture& f) { ok(f.m_bob->remove(f.m_bobTicket, {f.bobFile("shared.kel")}, "")); },
     sharedForAlice, status::DeletedByOthers, {"bob"}, ""},
    {"BobSubmitsAnEdit",
     [](DepotFixture& f) {
         bobEdits(f);
         bobSubmits(f);
     },
     sharedForAlice, status::NotAtHead, {}, ""},
    {"BobSubmitsADelete",
     [](DepotFixture& f) {
         ok(f.m_bob->remove(f.m_bobTicket, {f.bobFile("shared.kel")}, ""));
         bobSubmits(f);
     },
     sharedForAlice, status::NotInDepot | status::NotAtHead, {}, ""},
    {"BobSubmitsANewFileAliceNeverSynced", [](DepotFixture& f) { f.bobSubmitsNewFile("ship.kel", "hull"); },
     [](DepotFixture& f) { return f.aliceFile("ship.kel"); }, status::NotAtHead, {}, ""},
    {"BobAddsANewFile",
     [](DepotFixture& f) {
         f.write(f.bobFile("ship.kel"), "hull");
         ok(f.m_bob->add(f.m_bobTicket, {f.bobFile("ship.kel")}, ""));
     },
     [](DepotFixture& f) { return f.aliceFile("ship.kel"); }, status::AddedByOthers | status::NotInDepot, {"bob"}, ""},
    {"NewLocalFile", [](DepotFixture& f) { f.write(f.aliceFile("new.kel"), "x"); },
     [](DepotFixture& f) { return f.aliceFile("new.kel"); }, status::NotInDepot, {}, ""},
    {"AliceEditsInAChangelist",
     [](DepotFixture& f) {
         ChangelistId created;
         ok(f.m_alice->createChangelist(f.m_aliceTicket, "rework", created));
         ok(f.m_alice->edit(f.m_aliceTicket, {f.aliceFile("shared.kel")}, created));
     },
     sharedForAlice, status::OpenedForEdit, {}, "2"},
    {"AliceDeletes",
     [](DepotFixture& f) { ok(f.m_alice->remove(f.m_aliceTicket, {f.aliceFile("shared.kel")}, "")); },
     sharedForAlice, status::OpenedForDelete, {}, ""},
    {"AliceAdds",
     [](DepotFixture& f) {
         f.write(f.aliceFile("new.kel"), "x");
         ok(f.m_alice->add(f.m_aliceTicket, {f.aliceFile("new.kel")}, ""));
     },
     [](DepotFixture& f) { return f.aliceFile("new.kel"); }, status::OpenedForAdd, {}, ""},
    {"PathOutsideTheWorkspace", [](DepotFixture&) {}, [](DepotFixture& f) { return f.bobFile("shared.kel"); },
     status::NotInDepot, {}, ""},
    {"FolderWhereAFileShouldBe",
     [](DepotFixture& f) { std::filesystem::create_directories(f.aliceFile("folder.kel")); },
     [](DepotFixture& f) { return f.aliceFile("folder.kel"); }, status::NotInDepot | status::IoError, {}, ""},
};

class DepotStatus : public DepotFixture, public ::testing::WithParamInterface<StatusCase>
{
};

TEST_P(DepotStatus, AliceSeesTheWord)
{
    const StatusCase& row = GetParam();
    row.happen(*this);
    const FileStatus seen = statusOf(*m_alice, m_aliceTicket, row.file(*this));
    EXPECT_EQ(seen.word, row.word) << std::hex << "0x" << seen.word;
    EXPECT_EQ(seen.holders, row.holders);
    EXPECT_EQ(seen.changelist, row.changelist);
}

INSTANTIATE_TEST_SUITE_P(Depot, DepotStatus, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<StatusCase>& info) { return info.param.name; });

TEST_F(DepotFixture, StatusAnswersEveryFileInOrderInOneRoundTrip)
{
    write(aliceFile("new.kel"), "x");
    ASSERT_TRUE(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, "").ok());
    const std::uint64_t before = m_alice->roundTrips();
    std::vector<FileStatus> statuses;
    ASSERT_TRUE(m_alice->status(m_aliceTicket, {aliceFile("new.kel"), aliceFile("shared.kel")}, statuses).ok());
    EXPECT_EQ(m_alice->roundTrips() - before, 1u);
    ASSERT_EQ(statuses.size(), 2u);
    EXPECT_EQ(statuses[0].word, status::NotInDepot);
    EXPECT_EQ(statuses[1].word, status::OpenedByOthers);
    std::vector<std::vector<std::string>> holders;
    ASSERT_TRUE(m_alice->holders(m_aliceTicket, {aliceFile("new.kel"), aliceFile("shared.kel")}, holders).ok());
    EXPECT_EQ(holders, (std::vector<std::vector<std::string>>{{}, {"bob"}}));
}

}  // namespace
