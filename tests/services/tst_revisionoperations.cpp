// Check-out, revert, mark-for-delete, make-writable and changelists through the services, on
// every server.
#include <serverhostfixture.h>

#include <kel4/revisionstatus.h>

#include <gmock/gmock.h>

using namespace kel4;

namespace {

using RevisionOperations = ServerFixture;
INSTANTIATE_TEST_SUITE_P(Servers, RevisionOperations, ServerKinds(), ServerKindName);

// One walk through the operations: the files of objects, with and without external files and
// through a filter; a new changelist with the rock checked out and the sky marked for delete in it,
// both reverted; a part checked out with its asset (stored in its files: the object questions are
// the data model's, tst_datamodel); the tree made writable (.kel file, then its external file too)
// without asking the depot.
TEST_P(RevisionOperations, FilesChangelistsCheckOutMarkForDeleteRevertPartsAndMakeWritable)
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

    const std::string changelist = NewChangelist("Retexture the rock");
    EXPECT_TRUE(DataControl()->ChangeListExists(changelist));
    EXPECT_TRUE(DataControl()->ChangeListExists("")) << "the default changelist always exists";
    EXPECT_FALSE(DataControl()->ChangeListExists("9999"));
    List<std::string> pending;
    std::string error, description;
    ASSERT_EQ(DataControl()->GetPendingChangeLists(pending, error).GetCode(), 0);
    EXPECT_EQ(pending, List<std::string>{changelist});
    ASSERT_EQ(DataControl()->GetChangeListDescription(changelist, description, error).GetCode(), 0);
    EXPECT_EQ(description, "Retexture the rock");

    // (A check-out into a named changelist alone: tests/revisionops/tst_commands.)
    AliceChecksOut("Rock", changelist);
    const List<std::string> sky = FilesOf("Sky");
    ASSERT_EQ(FileVersionControl()->MarkForDeleteInChangelist(AliceSession(), sky, changelist, error).GetCode(), 0)
        << error;
    // The file-level view names the changelist of every file.
    EXPECT_THAT(StatesOf(sky), ::testing::ElementsAre(FileState{eStatusMarkedForDelete, changelist}));
    List<std::string> files = FilesOf("Rock");
    files.insert(files.end(), sky.begin(), sky.end());
    ASSERT_EQ(FileVersionControl()->Revert(AliceSession(), files, error, 0, 0).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Rock"), 0u);
    EXPECT_EQ(StatusOf("Sky"), 0u);
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Rock"), true, kPersistence));
    EXPECT_TRUE(DataControl()->NeedsAction(Asset("Rock"), true, kPersistence));

    const KELHandle<IDbObject> moss = workspace->AddPart(Asset("Rock"), "Layer", "Moss", error);
    ASSERT_FALSE(moss.IsNull()) << error;
    IDataControl::ObjectSet owners;
    ASSERT_EQ(DataControl()->GetOwningAssets(kPersistence, {moss}, owners, 0).GetCode(), 0);
    EXPECT_EQ(owners, IDataControl::ObjectSet{Asset("Rock")});
    ASSERT_EQ(DataControl()->CheckOut({moss}, false, kPersistence, "", error).GetCode(), 0) << error;
    EXPECT_EQ(StatusOf("Rock") & eStatusCheckedOut, eStatusCheckedOut);

    EXPECT_TRUE(DataControl()->CanMakeWritable(Asset("Tree"), true, kPersistence));
    const auto before = services.connection->RoundTrips();
    ASSERT_EQ(DataControl()->MakeWritable(Asset("Tree"), false, kPersistence, error).GetCode(), 0) << error;
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Tree"), false, kPersistence));
    EXPECT_TRUE(DataControl()->IsReadOnly(Asset("Tree"), true, kPersistence)) << "tree.bin is still read-only";
    ASSERT_EQ(DataControl()->MakeWritable(Asset("Tree"), true, kPersistence, error).GetCode(), 0) << error;
    EXPECT_EQ(services.connection->RoundTrips(), before);
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Tree"), true, kPersistence));
    EXPECT_FALSE(DataControl()->CanMakeWritable(Asset("Tree"), true, kPersistence));
    EXPECT_FALSE(DataControl()->NeedsAction(Asset("Tree"), true, kPersistence));
    EXPECT_EQ(StatusOf("Tree"), 0u) << "not opened";
}

}  // namespace
