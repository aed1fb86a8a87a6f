// Opening, reverting, submitting and changelists, as a user of a Perforce-style server expects.
#include "depotfixture.h"

#include <filesystem>

using namespace hbrc::depot;
namespace fs = std::filesystem;

namespace {

using DepotOperations = DepotFixture;

TEST_F(DepotOperations, EditMakesWritableAndRevertRestoresContentAndReadOnly)
{
    const std::string shared = aliceFile("shared.kel");
    EXPECT_FALSE(isWritable(shared));
    ASSERT_TRUE(m_alice->edit(m_aliceTicket, {shared}, "").ok());
    EXPECT_TRUE(isWritable(shared));
    write(shared, "scribbles");
    ASSERT_TRUE(m_alice->revert(m_aliceTicket, {shared}).ok());
    EXPECT_EQ(read(shared), "v1");
    EXPECT_FALSE(isWritable(shared));
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, shared).word, 0u);
}

TEST_F(DepotOperations, RevertOfAnAddOnlyUnopensAndKeepsTheFile)
{
    const std::string added = aliceFile("new.kel");
    write(added, "draft");
    ASSERT_TRUE(m_alice->add(m_aliceTicket, {added}, "").ok());
    ASSERT_TRUE(m_alice->revert(m_aliceTicket, {added}).ok());
    EXPECT_EQ(read(added), "draft");
    EXPECT_TRUE(isWritable(added));
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, added).word, status::NotInDepot);
}

TEST_F(DepotOperations, DeleteRemovesTheLocalCopyAndRevertBringsItBack)
{
    const std::string shared = aliceFile("shared.kel");
    ASSERT_TRUE(m_alice->remove(m_aliceTicket, {shared}, "").ok());
    EXPECT_FALSE(fs::exists(shared));
    ASSERT_TRUE(m_alice->revert(m_aliceTicket, {shared}).ok());
    EXPECT_EQ(read(shared), "v1");
    EXPECT_FALSE(isWritable(shared));
}

TEST_F(DepotOperations, SubmittedEditReachesTheOtherWorkspaceOnSync)
{
    ASSERT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
    write(aliceFile("shared.kel"), "v2");
    ChangelistId submitted;
    ASSERT_TRUE(m_alice->submit(m_aliceTicket, "", "second", submitted).ok());
    EXPECT_FALSE(isWritable(aliceFile("shared.kel")));
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("shared.kel")).word, status::NotAtHead);
    ASSERT_TRUE(m_bob->sync(m_bobTicket, {bobFile("shared.kel")}).ok());
    EXPECT_EQ(read(bobFile("shared.kel")), "v2");
    EXPECT_FALSE(isWritable(bobFile("shared.kel")));
    Changelist described;
    ASSERT_TRUE(m_bob->describe(m_bobTicket, submitted, described).ok());
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(described.files[0].depotPath, "//depot/shared.kel");
    EXPECT_EQ(described.files[0].revision, 2);
    EXPECT_EQ(described.state, ChangelistState::Submitted);
}

TEST_F(DepotOperations, OpeningIsAllOrNothingAndNamesEveryRefusal)
{
    ASSERT_TRUE(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, "").ok());
    write(aliceFile("other.kel"), "x");
    const Result result = m_alice->edit(m_aliceTicket, {aliceFile("other.kel"), aliceFile("shared.kel")}, "");
    EXPECT_EQ(result.code, code::Failed);
    EXPECT_NE(result.error.find("//depot/other.kel is not in the depot"), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("//depot/shared.kel is opened for edit by bob@bob-ws"), std::string::npos);
    std::vector<OpenedFile> opened;
    ASSERT_TRUE(m_alice->opened(m_aliceTicket, false, opened).ok());
    EXPECT_TRUE(opened.empty());
}

TEST_F(DepotOperations, EditOfAFileNotAtHeadIsRefusedUntilSynced)
{
    bobSubmitsNewFile("ship.kel", "hull");
    ASSERT_TRUE(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, "").ok());
    write(bobFile("shared.kel"), "v2");
    ChangelistId submitted;
    ASSERT_TRUE(m_bob->submit(m_bobTicket, "", "bob's v2", submitted).ok());
    EXPECT_EQ(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").code, code::Failed);
    ASSERT_TRUE(m_alice->sync(m_aliceTicket, {}).ok());
    EXPECT_EQ(read(aliceFile("ship.kel")), "hull");
    EXPECT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
}

TEST_F(DepotOperations, SubmitIsAtomicWhenAFileCannotBeRead)
{
    const std::string added = aliceFile("new.kel");
    write(added, "draft");
    ASSERT_TRUE(m_alice->add(m_aliceTicket, {added}, "").ok());
    ASSERT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
    fs::remove(aliceFile("shared.kel"));
    ChangelistId submitted;
    const Result result = m_alice->submit(m_aliceTicket, "", "broken", submitted);
    EXPECT_EQ(result.code, code::IoError);
    EXPECT_TRUE(submitted.empty());
    std::vector<Changelist> done;
    ASSERT_TRUE(m_alice->changelists(m_aliceTicket, ChangelistState::Submitted, done).ok());
    EXPECT_EQ(done.size(), 1u);
    EXPECT_EQ(statusOf(*m_bob, m_bobTicket, bobFile("new.kel")).word, status::AddedByOthers | status::NotInDepot);
    EXPECT_TRUE(isWritable(added));
}

TEST_F(DepotOperations, PendingChangelistsAreCreatedListedDescribedAndEndWithTheirSubmit)
{
    ChangelistId created;
    ASSERT_TRUE(m_alice->createChangelist(m_aliceTicket, "rework the hull", created).ok());
    ASSERT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, created).ok());
    std::vector<Changelist> pending;
    ASSERT_TRUE(m_alice->changelists(m_aliceTicket, ChangelistState::Pending, pending).ok());
    ASSERT_EQ(pending.size(), 1u);
    EXPECT_EQ(pending[0].id, created);
    EXPECT_EQ(pending[0].description, "rework the hull");
    ASSERT_TRUE(m_bob->changelists(m_bobTicket, ChangelistState::Pending, pending).ok());
    EXPECT_TRUE(pending.empty()) << "bob lists only his own workspace's pending changelists";
    bool exists = false;
    ASSERT_TRUE(m_alice->changelistExists(m_aliceTicket, created, exists).ok());
    EXPECT_TRUE(exists);
    ASSERT_TRUE(m_bob->changelistExists(m_bobTicket, created, exists).ok());
    EXPECT_FALSE(exists);
    EXPECT_EQ(m_bob->edit(m_bobTicket, {bobFile("other.kel")}, created).code, code::Failed);

    Changelist described;
    ASSERT_TRUE(m_alice->describe(m_aliceTicket, created, described).ok());
    ASSERT_EQ(described.files.size(), 1u);
    EXPECT_EQ(described.files[0].action, FileAction::Edit);
    ASSERT_TRUE(m_alice->describe(m_aliceTicket, "", described).ok());
    EXPECT_TRUE(described.files.empty()) << "the default changelist holds nothing";

    ChangelistId submitted;
    ASSERT_TRUE(m_alice->submit(m_aliceTicket, created, "", submitted).ok());
    EXPECT_EQ(submitted, created);
    ASSERT_TRUE(m_alice->changelistExists(m_aliceTicket, created, exists).ok());
    EXPECT_FALSE(exists) << "a submitted changelist is no longer pending";
    EXPECT_EQ(m_alice->submit(m_aliceTicket, created, "", submitted).code, code::Failed);
}

TEST_F(DepotOperations, SubmitRefusesAnEmptyChangelistAndADefaultOneWithoutDescription)
{
    ChangelistId submitted;
    EXPECT_NE(m_alice->submit(m_aliceTicket, "", "nothing", submitted).error.find("No files"), std::string::npos);
    ASSERT_TRUE(m_alice->edit(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
    EXPECT_EQ(m_alice->submit(m_aliceTicket, "", "", submitted).code, code::Failed);
    Changelist described;
    EXPECT_EQ(m_alice->describe(m_aliceTicket, "not-a-number", described).code, code::Failed);
    EXPECT_EQ(m_alice->describe(m_aliceTicket, "99", described).error, "Change 99 unknown.");
}

TEST_F(DepotOperations, SubmittedDeleteRemovesTheFileFromTheDepot)
{
    ASSERT_TRUE(m_alice->remove(m_aliceTicket, {aliceFile("shared.kel")}, "").ok());
    ChangelistId submitted;
    ASSERT_TRUE(m_alice->submit(m_aliceTicket, "", "retire", submitted).ok());
    EXPECT_EQ(statusOf(*m_alice, m_aliceTicket, aliceFile("shared.kel")).word, status::NotInDepot);
    ASSERT_TRUE(m_bob->sync(m_bobTicket, {}).ok());
    EXPECT_FALSE(fs::exists(bobFile("shared.kel")));
    write(bobFile("shared.kel"), "reborn");
    EXPECT_TRUE(m_bob->add(m_bobTicket, {bobFile("shared.kel")}, "").ok()) << "a deleted file can be added again";
}

TEST_F(DepotOperations, OpenedListsEveryWorkspaceOnRequest)
{
    ASSERT_TRUE(m_bob->edit(m_bobTicket, {bobFile("shared.kel")}, "").ok());
    ASSERT_TRUE(m_bob->lock(m_bobTicket, {bobFile("shared.kel")}).ok());
    std::vector<OpenedFile> opened;
    ASSERT_TRUE(m_alice->opened(m_aliceTicket, false, opened).ok());
    EXPECT_TRUE(opened.empty());
    ASSERT_TRUE(m_alice->opened(m_aliceTicket, true, opened).ok());
    ASSERT_EQ(opened.size(), 1u);
    EXPECT_EQ(opened[0].user, "bob");
    EXPECT_EQ(opened[0].localPath, bobFile("shared.kel"));
    EXPECT_TRUE(opened[0].locked);
    EXPECT_EQ(m_alice->lock(m_aliceTicket, {aliceFile("shared.kel")}).code, code::Failed) << "not opened by alice";
}

}  // namespace
