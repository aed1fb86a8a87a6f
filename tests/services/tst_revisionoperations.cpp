// Check-out, mark-for-add, revert, mark-for-delete, make-writable and changelists through the
// services, as a Perforce user expects them to behave.
#include <depothostfixture.h>

#include <hbrcservices/filepermissions.h>

#include <kel4/revisionstatus.h>

using namespace kel4;
using hbrc::host::FilePermissions::IsReadOnly;

namespace {

class RevisionOperations : public DepotHostFixture
{
protected:
    List<std::string> FilesOf(const std::string& assetName) const
    {
        Set<std::string> files;
        DataControl()->GetFiles(Asset(assetName), true, kPersistence, "", files);
        return {files.begin(), files.end()};
    }
    std::string NewChangelist(const std::string& description) const
    {
        std::string changelist;
        std::string error;
        EXPECT_EQ(DataControl()->CreateChangeList(description, changelist, error).GetCode(), 0) << error;
        return changelist;
    }
};

TEST_F(RevisionOperations, CheckOutIntoANewChangelistThenRevert)
{
    const std::string changelist = NewChangelist("Retexture the rock");
    EXPECT_TRUE(DataControl()->ChangeListExists(changelist));
    List<std::string> pending;
    std::string error;
    ASSERT_EQ(DataControl()->GetPendingChangeLists(pending, error).GetCode(), 0);
    EXPECT_EQ(pending, List<std::string>{changelist});
    std::string description;
    ASSERT_EQ(DataControl()->GetChangeListDescription(changelist, description, error).GetCode(), 0);
    EXPECT_EQ(description, "Retexture the rock");

    ASSERT_EQ(DataControl()->CheckOut({Asset("Rock")}, true, kPersistence, changelist, error).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Rock"), eStatusCheckedOut);
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_FALSE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
    // The file-level view names the changelist of every file.
    List<unsigned> words;
    List<std::string> changelists;
    const List<std::string> files = FilesOf("Rock");
    ASSERT_EQ(FileVersionControl()->GetStatus(AliceSession(), files, words, changelists, error, 0).GetCode(), 0);
    EXPECT_EQ(words, List<unsigned>(files.size(), eStatusCheckedOut));
    EXPECT_EQ(changelists, List<std::string>(files.size(), changelist));

    ASSERT_EQ(FileVersionControl()->Revert(AliceSession(), files, error, 0, 0).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));
}

TEST_F(RevisionOperations, CheckOutOfAFileHeldByBobFailsWholeAndNamesHim)
{
    BobExpects(Bob().edit(BobTicket(), BobFilesOf("Tree"), ""));
    std::string error;
    const kelResult result = DataControl()->CheckOut({Asset("Rock"), Asset("Tree")}, true, kPersistence, "", error);
    EXPECT_EQ(result.GetCode(), kResultFailed);
    EXPECT_NE(error.find("bob"), std::string::npos) << error;
    EXPECT_EQ(StatusOf("Rock"), 0u) << "nothing was opened";
    EXPECT_EQ(StatusOf("Tree"), eStatusCheckedOutByOthers);

    List<std::string> users;
    ASSERT_EQ(FileVersionControl()->GetUsersOfFiles(AliceSession(), FilesOf("Tree"), users, error).GetCode(), 0);
    EXPECT_EQ(users, List<std::string>{"bob"});
}

TEST_F(RevisionOperations, MarkForDeleteInAChangelistAndRevertIt)
{
    const std::string changelist = NewChangelist("Remove the sky");
    const List<std::string> files = FilesOf("Sky");
    std::string error;
    ASSERT_EQ(FileVersionControl()->MarkForDeleteInChangelist(AliceSession(), files, changelist, error).GetCode(), 0)
        << error;
    List<unsigned> words;
    List<std::string> changelists;
    ASSERT_EQ(FileVersionControl()->GetStatus(AliceSession(), files, words, changelists, error, 0).GetCode(), 0);
    EXPECT_EQ(words, List<unsigned>{eStatusMarkedForDelete});
    EXPECT_EQ(changelists, List<std::string>{changelist});

    BobExpects(Bob().sync(BobTicket(), {}));
    std::vector<hbrc::depot::FileStatus> bobSees;
    BobExpects(Bob().status(BobTicket(), BobFilesOf("Sky"), bobSees));
    EXPECT_EQ(bobSees.at(0).word, eStatusMarkedForDeleteByOthers);

    ASSERT_EQ(FileVersionControl()->Revert(AliceSession(), files, error, 0, 0).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Sky"), 0u);
}

TEST_F(RevisionOperations, RevertOfAnAddOnlyUnopensTheNewFiles)
{
    const auto lamp = CreateSavedAsset("Lamp", "lamp.bin");
    std::string error;
    ASSERT_EQ(DataControl()->MarkForAdd({lamp}, true, kPersistence, "", error).GetCode(), 0) << error;
    const List<std::string> files = FilesOf("Lamp");
    ASSERT_EQ(FileVersionControl()->Revert(AliceSession(), files, error, 0, 0).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Lamp"), eStatusNotInDatabase);
    for (const std::string& file : files)
        EXPECT_FALSE(IsReadOnly(file)) << file << " keeps its content and stays writable";
}

TEST_F(RevisionOperations, MakeWritableLeavesTheDepotAlone)
{
    EXPECT_TRUE(DataControl()->CanMakeWritable(Asset("Tree"), true, kPersistence));
    std::string error;
    const auto before = services.connection->RoundTrips();
    ASSERT_EQ(DataControl()->MakeWritable(Asset("Tree"), true, kPersistence, error).GetCode(), 0) << error;
    EXPECT_EQ(services.connection->RoundTrips(), before);
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Tree"), true, kPersistence));
    EXPECT_FALSE(DataControl()->CanMakeWritable(Asset("Tree"), true, kPersistence));
    EXPECT_FALSE(DataControl()->NeedsAction(Asset("Tree"), true, kPersistence));
    EXPECT_EQ(StatusOf("Tree"), 0u) << "not opened";
}

TEST_F(RevisionOperations, ReadOnlyTestFollowsTheIncludeExternalFlag)
{
    // Only the external file is made writable: the .kel file alone is still read-only.
    std::string error;
    ASSERT_TRUE(hbrc::host::FilePermissions::MakeWritable(AlicePath("rock.bin"), error)) << error;
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), false, kPersistence));
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    ASSERT_EQ(DataControl()->MakeWritable(Asset("Rock"), false, kPersistence, error).GetCode(), 0) << error;
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_TRUE(DataControl()->HasExternalFile(Asset("Rock"), kPersistence));
    EXPECT_FALSE(DataControl()->HasExternalFile(Asset("Sky"), kPersistence));
    Set<std::string> external;
    ASSERT_EQ(DataControl()->GetExternalFiles(Asset("Rock"), kPersistence, external).GetCode(), 0);
    EXPECT_EQ(external, Set<std::string>{AlicePath("rock.bin")});
}

TEST_F(RevisionOperations, FilesOfObjectsWithAndWithoutExternalFilesAndAFilter)
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
}

TEST_F(RevisionOperations, SubmittedChangelistNoLongerExists)
{
    const std::string changelist = NewChangelist("Brighter sky");
    std::string error;
    ASSERT_EQ(DataControl()->CheckOut({Asset("Sky")}, true, kPersistence, changelist, error).GetCode(), 0) << error;
    ASSERT_EQ(services.connection
                  ->Run(AliceSession(),
                        [&](hbrc::depot::Depot& depot, const std::string& ticket, const hbrc::depot::CancelCheck&) {
                            hbrc::depot::ChangelistId submitted;
                            return depot.submit(ticket, changelist, "", submitted);
                        },
                        error)
                  .GetCode(),
              0)
        << error;
    EXPECT_FALSE(DataControl()->ChangeListExists(changelist));
    EXPECT_TRUE(DataControl()->ChangeListExists("")) << "the default changelist always exists";
    EXPECT_FALSE(DataControl()->ChangeListExists("9999"));
}

TEST_F(RevisionOperations, ObjectQuestionsFollowTheDataModel)
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
