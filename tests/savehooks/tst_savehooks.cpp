// Saves through the reference host with the plug-in loaded, on the embedded depot: what the hooks
// before and after a save do with read-only assets, deleted files and new assets, as the user
// answers their dialogs or as a batch run decides alone.
#include "savehooksfixture.h"

#include <borax/datamodel/iitemlibrarynotification.h>

#include <QMessageBox>

namespace {

using namespace hbrc::test;
using ::testing::Each;

const QString kBeforeSaving = QStringLiteral("Check Out Before Saving");
const QString kMarkForAdd = QStringLiteral("Post-Saving: Mark For Add");
const QString kDeleteError = QStringLiteral("Mark-For-Delete Error");

class SaveHooks : public SaveHooksFixture
{
public:
    // Alice checks Sky out into a new changelist and deletes it: its .kel file and that changelist.
    std::pair<std::string, std::string> SkyCheckedOutThenDeleted()
    {
        const std::string skyFile = KelFileOf("Sky");
        const std::string changelist = NewChangelist("sky rework");
        AliceChecksOut("Sky", changelist);
        EXPECT_TRUE(workspace->DeleteAsset(Asset("Sky")));
        return {skyFile, changelist};
    }
};

// --- before the save: read-only assets -----------------------------------------------------------------

// A check-out into a new changelist, ticked, keeps that changelist for the next save, which asks
// nothing; Make Writable, ticked, leaves the files writable and not opened, and the settings keep
// an automatic check-out from then on.
TEST_F(SaveHooks, TheAnswerBeforeTheSaveIsFollowedAndATickedOneKeptForLaterSaves)
{
    Edit("Reed", "cut");
    Edit("Moss", "green");
    driver.expect("check out before saving",
                  answerChangelistDialog(kBeforeSaving, {"Check Out", "before the save", true}, [this](QWidget* dialog) {
                      EXPECT_EQ(infoText(dialog), "Some of the files of the following assets are read-only\n"
                                                  "Please select an option before saving continues");
                      EXPECT_EQ(assetsText(dialog), "Moss\nReed\n");
                      QStringList files;
                      for (const char* asset : {"Moss", "Reed"})
                          for (const std::string& file : FilesOf(asset))
                              files << QString::fromStdString(file);
                      files.sort();
                      EXPECT_EQ(listedFiles(dialog), files);
                  }));
    SaveAnswered();
    EXPECT_TRUE(OnDiskWith("Reed", "cut") && OnDiskWith("Moss", "green"));
    const std::string changelist = StateOfFile(KelFileOf("Moss")).changelist;
    EXPECT_EQ(ChangelistDescription(changelist), "before the save");
    EXPECT_EQ(StoredChangelist(), changelist);
    for (const char* asset : {"Reed", "Moss"})
        EXPECT_THAT(StatesOf(FilesOf(asset)), Each(FileState{kel4::eStatusCheckedOut, changelist})) << asset;

    Edit("Leaf", "autumn");
    SaveAnswered();
    EXPECT_TRUE(OnDiskWith("Leaf", "autumn"));
    EXPECT_EQ(StateOfFile(KelFileOf("Leaf")), (FileState{kel4::eStatusCheckedOut, changelist}));

    StoreAction(kPrompt);
    Edit("Stone", "rough");
    driver.expect("make writable", answerChangelistDialog(kBeforeSaving, {"Make Writable", {}, true}));
    SaveAnswered();
    EXPECT_TRUE(OnDiskWith("Stone", "rough"));
    EXPECT_TRUE(AllWritable("Stone")) << "the external file too";
    EXPECT_THAT(StatesOf(FilesOf("Stone")), Each(FileState{})) << "writable, not opened";
    EXPECT_EQ(StoredActionNow(), kCheckOut);
}

TEST_F(SaveHooks, WhenOnlyTheAssetsWithExternalFilesCheckOutTheQuestionListsTheOthersFiles)
{
    BobHolds("Moss");
    Edit("Stone", "veined");
    Edit("Moss", "wet");
    const QString mossFile = QString::fromStdString(KelFileOf("Moss"));
    driver.expect("check out before saving", answerChangelistDialog(kBeforeSaving, {"Check Out"}));
    driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Ok, QStringLiteral("bob"));
    driver.expect("asked again", answerChangelistDialog(kBeforeSaving, {"Cancel"}, [&](QWidget* dialog) {
                      EXPECT_EQ(listedFiles(dialog), QStringList{mossFile});
                      EXPECT_EQ(assetsText(dialog), "Moss\nStone (with External: stone.bin)\n");
                  }));
    EXPECT_TRUE(Save().cancelled);
    EXPECT_THAT(StatesOf(FilesOf("Stone")), Each(FileState{kel4::eStatusCheckedOut, ""}));
    EXPECT_TRUE(DirtyInMemoryWith("Stone", "veined") && DirtyInMemoryWith("Moss", "wet"));
}

// A stored automatic check-out needs revision control switched on and its changelist still
// pending; otherwise the user is asked, and a batch save, which cannot ask, is cancelled.
TEST_F(SaveHooks, AStoredCheckOutThatCannotBeFollowedAsksOrCancels)
{
    struct Row {
        const char* name;
        bool useSourceDataControl;
        const char* storedChangelist;
        bool interactive;
    };
    for (const Row& row : {Row{"revision control off, interactive", false, "", true},
                           Row{"changelist gone, interactive", true, "999", true},
                           Row{"revision control off, batch", false, "", false},
                           Row{"changelist gone, batch", true, "999", false}}) {
        SCOPED_TRACE(row.name);
        StoreAction(kCheckOut, row.storedChangelist);
        SetRevisionControl(row.useSourceDataControl);
        if (!row.interactive)
            window.reset();
        Edit("Stone", row.name);
        if (row.interactive) {
            driver.expect("asked", answerChangelistDialog(kBeforeSaving, {"Cancel"}, [&](QWidget* dialog) {
                              // Without revision control the dialog offers no changelist.
                              EXPECT_EQ(dialog->findChild<QWidget*>(QStringLiteral("changeListCombo")) != nullptr,
                                        row.useSourceDataControl);
                          }));
        }
        EXPECT_TRUE(Save().cancelled);
        ExpectDriverFinished();
        EXPECT_TRUE(DirtyInMemoryWith("Stone", row.name));
    }
}

// A host may ask without wanting an answer: the hook then only acts.
TEST_F(SaveHooks, ANullCancelPointerIsAcceptedAndTheHookStillActs)
{
    StoreAction(kMakeWritable);
    Edit("Stone", "asked without an answer");
    auto* hooks = dynamic_cast<borax::datamodel::IItemLibraryNotification*>(
        host->System().GetSingleton("RevisionControlUIHelper"));
    ASSERT_NE(hooks, nullptr);
    borax::datamodel::ItemLibraryAccessor library = workspace->Accessor();
    hooks->OnPreCommit(library, nullptr);
    EXPECT_THAT(Writable(FilesOf("Stone")), ::testing::Contains(true));
}

// --- after the save: deleted files ---------------------------------------------------------------------

// A deleted asset checked out in a changelist is marked for delete there without a question; the
// other deleted files go to the changelist the user chooses.
TEST_F(SaveHooks, DeletedFilesInTheDepotGoToTheirChangelistOrTheOneTheUserChooses)
{
    SetPromptForChangelist(true);
    const auto [skyFile, changelist] = SkyCheckedOutThenDeleted();
    const std::string treeFile = KelFileOf("Tree");
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Tree")));
    driver.expect("mark for delete",
                  answerChangelistDialog(QStringLiteral("Mark For Delete"), {"Mark For Delete", "felled"},
                                         [&](QWidget* dialog) {
                                             EXPECT_EQ(infoText(dialog),
                                                       "The files below were deleted during the commit\n"
                                                       "We can now mark them for delete in your revision control");
                                             EXPECT_TRUE(assetsText(dialog).isEmpty());
                                             EXPECT_EQ(listedFiles(dialog).size(), 2) << "Tree's only";
                                         }));
    SaveAnswered();
    EXPECT_EQ(StateOfFile(skyFile), (FileState{kel4::eStatusMarkedForDelete, changelist}));
    EXPECT_FALSE(QFile::exists(QString::fromStdString(skyFile)));
    const auto state = StateOfFile(treeFile);
    EXPECT_EQ(state.status, kel4::eStatusMarkedForDelete);
    EXPECT_EQ(ChangelistDescription(state.changelist), "felled");
}

TEST_F(SaveHooks, AMarkForDeleteThatBobBlocksNamesHimAndOffersRetry)
{
    BobHolds("Tree");
    const std::string treeFile = KelFileOf("Tree");
    const QString expected = QStringLiteral("The following files have been deleted during the commit:\n\n%1\n%2\n\n"
                                            "but we couldn't mark them for delete in your revision control\n"
                                            "because the following users have checked out some of the files\n"
                                            "because the following users have locked some of the files\n\nbob\n")
                                 .arg(QString::fromStdString(treeFile), QString::fromStdString(AlicePath("tree.bin")));
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Tree")));
    driver.expectMessageBox(kDeleteError, QMessageBox::Retry, expected);
    driver.expectMessageBox(kDeleteError, QMessageBox::Ok, expected);
    SaveAnswered();
    EXPECT_EQ(StateOfFile(treeFile).status, kel4::eStatusCheckedOutByOthers | kel4::eStatusLockedByOthers);
}

// --- after the save: new assets ---------------------------------------------------------------------

// A new asset whose files are already open joins their changelist without a question; the others
// go to the changelist the user chooses, and with the box ticked later ones follow silently.
TEST_F(SaveHooks, NewAssetsAreMarkedForAddInTheirFilesOrTheUsersChangelist)
{
    SetPromptForChangelist(true);
    const std::string rockWork = NewChangelist("rock work");
    AliceChecksOut("Rock", rockWork);
    CreateAsset("Pebble", "rock.bin");  // shares Rock's open external file
    SaveAnswered();
    EXPECT_EQ(StateOfFile(KelFileOf("Pebble")), (FileState{kel4::eStatusMarkedForAdd, rockWork}));

    CreateAsset("Fern", "fern.bin");
    driver.expect("mark for add", answerChangelistDialog(kMarkForAdd, {"Mark For Add", "ferns", true}, [](QWidget* d) {
                      EXPECT_EQ(infoText(d), "These assets have just been added during the save operation\n"
                                             "We can now mark them for add in the revision control");
                      EXPECT_EQ(assetsText(d), "Fern\n");
                      EXPECT_EQ(listedFiles(d).size(), 2);
                  }));
    SaveAnswered();
    const std::string changelist = StateOfFile(KelFileOf("Fern")).changelist;
    EXPECT_EQ(ChangelistDescription(changelist), "ferns");
    EXPECT_THAT(StatesOf(FilesOf("Fern")), Each(FileState{kel4::eStatusMarkedForAdd, changelist}));
    EXPECT_EQ(StoredChangelist(), changelist);
    CreateAsset("Bracken");
    SaveAnswered();
    EXPECT_EQ(StateOfFile(KelFileOf("Bracken")).changelist, changelist);
}

// Deleted files: the password is given, the file is marked for delete in its changelist. New
// assets: the password is refused, nothing is marked and nothing more is asked; deleted before
// it ever reached the depot, the new asset is left alone.
TEST_F(SaveHooks, AnExpiredSessionAfterTheSaveAsksForThePasswordWithTheWorksPrefix)
{
    const std::string skyFile = SkyCheckedOutThenDeleted().first;
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    driver.expect("password", answerPassword(QStringLiteral("alice-pw"),
                                             QStringLiteral("Post-Save Mark-for-Delete: Revision control system needs "
                                                            "to be queried for file status but\nsession was lost. Enter "
                                                            "a password to re-connect, or cancel the mark-for-delete.")));
    SaveAnswered();
    EXPECT_EQ(StateOfFile(skyFile).status, kel4::eStatusMarkedForDelete);

    CreateAsset("Fern");
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    driver.expect("password", answerPassword({}, QStringLiteral("Post-Save Mark-for-Add: Revision control system "
                                                                 "needs to be queried for file status but\nsession was "
                                                                 "lost. Enter a password to re-connect, or cancel the "
                                                                 "mark-for-add.")));
    SaveAnswered();
    AliceLogsInAgain();
    const std::string fernFile = KelFileOf("Fern");
    EXPECT_EQ(StateOfFile(fernFile).status, kel4::eStatusNotInDatabase);

    ASSERT_TRUE(workspace->DeleteAsset(Asset("Fern")));
    SaveAnswered();
    EXPECT_EQ(StateOfFile(fernFile).status, kel4::eStatusNotInDatabase);
}

// --- batch ---------------------------------------------------------------------------------------------

TEST_F(SaveHooks, ABatchSaveDecidesEverythingWithoutADialog)
{
    window.reset();
    SetPromptForChangelist(true);
    const auto [skyFile, changelist] = SkyCheckedOutThenDeleted();
    const std::string treeFile = KelFileOf("Tree");
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Tree")));
    Edit("Moss", "batch");
    CreateAsset("Fern");
    SaveAnswered();
    // Read-only asset: checked out into the default changelist. Deleted files: the checked-out
    // one in its changelist, the other one in the default changelist (prompting would be needed).
    // New asset: marked for add in the default changelist.
    EXPECT_TRUE(OnDiskWith("Moss", "batch"));
    EXPECT_EQ(StateOfFile(KelFileOf("Moss")).status, kel4::eStatusCheckedOut);
    EXPECT_EQ(StateOfFile(skyFile).changelist, changelist);
    EXPECT_EQ(StateOfFile(treeFile), (FileState{kel4::eStatusMarkedForDelete, ""}));
    const std::string fernFile = KelFileOf("Fern");
    EXPECT_EQ(StateOfFile(fernFile), (FileState{kel4::eStatusMarkedForAdd, ""}));

    // Deleted again before any submit, the new asset leaves revision control.
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Fern")));
    SaveAnswered();
    EXPECT_EQ(StateOfFile(fernFile).status, kel4::eStatusNotInDatabase);

    // Revision control switched off: the hook follows nothing the save did.
    SetRevisionControl(false);
    const std::string rockFile = KelFileOf("Rock");
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Rock")));
    CreateAsset("Heath");
    SaveAnswered();
    EXPECT_EQ(StateOfFile(KelFileOf("Heath")).status, kel4::eStatusNotInDatabase);
    EXPECT_FALSE(StateOfFile(rockFile).status & kel4::eStatusMarkedForDelete);
}

}  // namespace
