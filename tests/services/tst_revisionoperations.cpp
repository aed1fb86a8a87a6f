// Check-out, revert, mark-for-delete, make-writable and changelists through the services, as a
// Perforce user expects them to behave.
#include <serverhostfixture.h>

#include <kel4/revisionstatus.h>

#include <QFile>

#include <gmock/gmock.h>

using namespace kel4;

namespace {

class RevisionOperations : public ServerFixture
{
};
INSTANTIATE_TEST_SUITE_P(Servers, RevisionOperations, ServerKinds(), ServerKindName);

TEST_P(RevisionOperations, CheckOutAndMarkForDeleteIntoANewChangelistThenRevert)
{
    const std::string changelist = NewChangelist("Retexture the rock");
    EXPECT_TRUE(DataControl()->ChangeListExists(changelist));
    EXPECT_TRUE(DataControl()->ChangeListExists("")) << "the default changelist always exists";
    EXPECT_FALSE(DataControl()->ChangeListExists("9999"));
    List<std::string> pending;
    std::string error;
    ASSERT_EQ(DataControl()->GetPendingChangeLists(pending, error).GetCode(), 0);
    EXPECT_EQ(pending, List<std::string>{changelist});
    std::string description;
    ASSERT_EQ(DataControl()->GetChangeListDescription(changelist, description, error).GetCode(), 0);
    EXPECT_EQ(description, "Retexture the rock");

    AliceChecksOut("Rock", changelist);
    EXPECT_EQ(StatusOf("Rock"), eStatusCheckedOut);
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_FALSE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
    const List<std::string> sky = FilesOf("Sky");
    ASSERT_EQ(FileVersionControl()->MarkForDeleteInChangelist(AliceSession(), sky, changelist, error).GetCode(), 0)
        << error;
    // The file-level view names the changelist of every file.
    EXPECT_THAT(StatesOf(FilesOf("Rock")), ::testing::Each(FileState{eStatusCheckedOut, changelist}));
    EXPECT_THAT(StatesOf(sky), ::testing::ElementsAre(FileState{eStatusMarkedForDelete, changelist}));

    List<std::string> files = FilesOf("Rock");
    files.insert(files.end(), sky.begin(), sky.end());
    ASSERT_EQ(FileVersionControl()->Revert(AliceSession(), files, error, 0, 0).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_EQ(StatusOf("Sky"), 0u);
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
}

TEST_P(RevisionOperations, CheckOutOfAFileHeldByBobFailsWholeAndNamesHim)
{
    BobExpects(Bob().edit(BobTicket(), BobFilesOf("Tree"), ""));
    std::string error;
    EXPECT_EQ(DataControl()->CheckOut({Asset("Rock"), Asset("Tree")}, true, kPersistence, "", error).GetCode(),
              kResultFailed);
    EXPECT_NE(error.find("bob"), std::string::npos) << error;
    EXPECT_EQ(StatusOf("Rock"), 0u) << "nothing was opened";
    List<std::string> users;
    ASSERT_EQ(FileVersionControl()->GetUsersOfFiles(AliceSession(), FilesOf("Tree"), users, error).GetCode(), 0);
    EXPECT_EQ(users, List<std::string>{"bob"});
}

// Submitting one pending changelist takes its files only, leaves them read-only at the new head
// revision and ends the changelist; bob sees the change and syncs it.
TEST_P(RevisionOperations, SubmitOfOneChangelistTakesItsFilesAndBobSyncsThem)
{
    const std::string changelist = NewChangelist("Mossy rock");
    std::string error;
    AliceChecksOut("Rock", changelist);
    AliceChecksOut("Tree");
    for (const std::string& file : FilesOf("Rock")) {
        QFile edited(QFile::decodeName(file.c_str()));
        ASSERT_TRUE(edited.open(QIODevice::Append) && edited.write("moss") > 0) << file;
    }
    AliceSubmits("", changelist);
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_EQ(StatusOf("Tree"), eStatusCheckedOut) << "the default changelist stays pending";
    EXPECT_FALSE(DataControl()->ChangeListExists(changelist));
    List<std::string> pending;
    ASSERT_EQ(DataControl()->GetPendingChangeLists(pending, error).GetCode(), 0) << error;
    EXPECT_TRUE(pending.empty());

    const std::vector<std::string> bobFiles = BobFilesOf("Rock");
    std::vector<hbrc::revision::FileStatus> bobSees;
    BobExpects(Bob().status(BobTicket(), bobFiles, bobSees));
    ASSERT_EQ(bobSees.size(), 2u);
    EXPECT_EQ(bobSees[0].word, eStatusNotHeadRevision);
    BobExpects(Bob().sync(BobTicket(), {}));
    BobExpects(Bob().status(BobTicket(), bobFiles, bobSees));
    EXPECT_EQ(bobSees[0].word, 0u);
    QFile synced(QFile::decodeName(bobFiles[0].c_str()));
    ASSERT_TRUE(synced.open(QIODevice::ReadOnly));
    EXPECT_TRUE(synced.readAll().endsWith("moss"));
}

TEST_P(RevisionOperations, MakeWritableFollowsTheIncludeExternalFlagAndLeavesTheDepotAlone)
{
    EXPECT_TRUE(DataControl()->CanMakeWritable(Asset("Rock"), true, kPersistence));
    const auto before = services.connection->RoundTrips();
    std::string error;
    ASSERT_EQ(DataControl()->MakeWritable(Asset("Rock"), false, kPersistence, error).GetCode(), 0) << error;
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Rock"), false, kPersistence));
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence)) << "rock.bin is still read-only";
    ASSERT_EQ(DataControl()->MakeWritable(Asset("Rock"), true, kPersistence, error).GetCode(), 0) << error;
    EXPECT_EQ(services.connection->RoundTrips(), before);
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_FALSE(DataControl()->CanMakeWritable(Asset("Rock"), true, kPersistence));
    EXPECT_FALSE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
    EXPECT_EQ(StatusOf("Rock"), 0u) << "not opened";
}

TEST_P(RevisionOperations, FilesOfObjectsWithAndWithoutExternalFilesAndAFilter)
{
    Set<std::string> all;
    List<Set<std::string>> perObject;
    ASSERT_EQ(DataControl()->GetFiles({Asset("Rock"), Asset("Sky")}, false, kPersistence, "", all, perObject).GetCode(), 0);
    ASSERT_EQ(perObject.size(), 2u);
    EXPECT_EQ(all.size(), 2u) << "one .kel file each";
    all.clear();
    perObject.clear();
    ASSERT_EQ(DataControl()->GetFiles({Asset("Rock"), Asset("Sky")}, true, kPersistence, ".bin", all, perObject).GetCode(), 0);
    EXPECT_EQ(all, Set<std::string>{AlicePath("rock.bin")});
    EXPECT_TRUE(perObject.back().empty());
    EXPECT_TRUE(DataControl()->HasExternalFile(Asset("Rock"), kPersistence));
    EXPECT_FALSE(DataControl()->HasExternalFile(Asset("Sky"), kPersistence));
    Set<std::string> external;
    ASSERT_EQ(DataControl()->GetExternalFiles(Asset("Rock"), kPersistence, external).GetCode(), 0);
    EXPECT_EQ(external, Set<std::string>{AlicePath("rock.bin")});
}

TEST_P(RevisionOperations, ObjectQuestionsFollowTheDataModel)
{
    std::string error;
    const KELHandle<IDbObject> moss = workspace->AddPart(Asset("Rock"), "Layer", "Moss", error);
    ASSERT_FALSE(moss.IsNull()) << error;
    IDataControl::ObjectSet related;
    ASSERT_EQ(DataControl()->GetRelatedObjects({Asset("Rock")}, related).GetCode(), 0);
    EXPECT_EQ(related, IDataControl::ObjectSet{moss});
    IDataControl::ObjectSet owners;
    ASSERT_EQ(DataControl()->GetOwningAssets(kPersistence, {moss}, owners, 0).GetCode(), 0);
    EXPECT_EQ(owners, IDataControl::ObjectSet{Asset("Rock")});
    EXPECT_EQ(DataControl()->GetAssetDisplayName(moss), "Rock/Moss");
    List<DbObjectId> ids;
    ASSERT_EQ(DataControl()->GetDbObjectIds({Asset("Rock")}, ids).GetCode(), 0);
    EXPECT_EQ(ids, (List<DbObjectId>{Asset("Rock").GetDbObjectId(), moss.GetDbObjectId()}));
    // A part is stored in its asset's files, so it has the asset's status.
    ASSERT_EQ(DataControl()->CheckOut({moss}, false, kPersistence, "", error).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Rock") & eStatusCheckedOut, eStatusCheckedOut);
}

}  // namespace
