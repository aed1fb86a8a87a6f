// Saves through the reference host with the plug-in loaded, on the embedded depot: what the hooks
// before and after a save do with read-only assets, deleted files and new assets, as the user
// answers their dialogs or as a batch run decides alone.
#include "savehooksfixture.h"

#include <borax/datamodel/iitemlibrarynotification.h>
#include <hbrchost/logcapture.h>

#include <QMessageBox>

#include <gmock/gmock.h>

namespace {

using hbrc::test::answerChangelistDialog;
using hbrc::test::answerPassword;
using hbrc::test::ChangelistAnswer;
using hbrc::test::DialogDriver;
using hbrc::test::SaveHooksFixture;

const QString kBeforeSaving = QStringLiteral("Check Out Before Saving");
const QString kMarkForAdd = QStringLiteral("Post-Saving: Mark For Add");
const QString kPasswordRequired = QStringLiteral("Data Source Password Required");
const QString kSessionExpired = QStringLiteral("Source control session expired. Password required to re-connect.");

class SaveHooks : public SaveHooksFixture
{
protected:
    // Any top-level widget makes the session interactive.
    std::unique_ptr<QWidget> OpenWindow() { return std::make_unique<QWidget>(); }
    void PromptForChangelists()
    {
        host->Preferences().SetBoolPref("RevControl.PromptForChangeListWhenCheckingOut", true, 1);
    }
    std::string ChangelistDescription(const std::string& changelist) const
    {
        std::string description;
        std::string error;
        DataControl()->GetChangeListDescription(changelist, description, error);
        return description;
    }
};

// --- before the save: read-only assets -----------------------------------------------------------------

TEST_F(SaveHooks, AReadOnlyAssetIsCheckedOutIntoANewChangelistThenSaved)
{
    const auto window = OpenWindow();
    Edit("Stone", "polished");
    Edit("Moss", "green");
    DialogDriver driver;
    driver.expect("check out before saving",
                  answerChangelistDialog(kBeforeSaving, {"Check Out", "before the save"}, [this](QWidget* dialog) {
                      EXPECT_EQ(hbrc::test::infoText(dialog),
                                "Some of the files of the following assets are read-only\n"
                                "Please select an option before saving continues");
                      EXPECT_EQ(hbrc::test::assetsText(dialog), "Moss\nStone (with External: stone.bin)\n");
                      QStringList files;
                      for (const char* asset : {"Moss", "Stone"}) {
                          for (const std::string& file : FilesOf(asset))
                              files << QString::fromStdString(file);
                      }
                      files.sort();
                      EXPECT_EQ(hbrc::test::listedFiles(dialog), files);
                  }));
    const hbrc::host::SaveReport report = Save();
    ExpectDriverFinished(driver);
    EXPECT_TRUE(report.Succeeded()) << report.DescribeFailures();
    EXPECT_TRUE(OnDiskWith("Stone", "polished") && OnDiskWith("Moss", "green"));
    const std::string changelist = StateOfFile(KelFileOf("Moss")).changelist;
    EXPECT_EQ(ChangelistDescription(changelist), "before the save");
    for (const char* asset : {"Stone", "Moss"})
        EXPECT_THAT(StatesOf(FilesOf(asset)), ::testing::Each(FileState{kel4::eStatusCheckedOut, changelist})) << asset;
}

TEST_F(SaveHooks, MakeWritableWithTheBoxTickedStopsTheQuestionForLaterSaves)
{
    const auto window = OpenWindow();
    Edit("Stone", "rough");
    {
        DialogDriver driver;
        driver.expect("check out before saving", answerChangelistDialog(kBeforeSaving, {"Make Writable", {}, true}));
        const hbrc::host::SaveReport first = Save();
        ExpectDriverFinished(driver);
        EXPECT_TRUE(first.Succeeded()) << first.DescribeFailures();
    }
    EXPECT_TRUE(OnDiskWith("Stone", "rough"));
    EXPECT_THAT(StatesOf(FilesOf("Stone")), ::testing::Each(FileState{})) << "writable, not opened";

    // The stored action is the settings' own (automatic check-out, into the default changelist).
    Edit("Leaf", "autumn");
    DialogDriver silent;
    const hbrc::host::SaveReport second = Save();
    ExpectDriverFinished(silent);
    EXPECT_TRUE(silent.seenTitles().isEmpty()) << silent.seenTitles().join(',').toStdString();
    EXPECT_TRUE(second.Succeeded()) << second.DescribeFailures();
    EXPECT_TRUE(OnDiskWith("Leaf", "autumn"));
    EXPECT_EQ(StateOfFile(KelFileOf("Leaf")), (FileState{kel4::eStatusCheckedOut, ""}));
}

TEST_F(SaveHooks, WhenOnlyTheAssetsWithExternalFilesCheckOutTheQuestionListsTheOthersFiles)
{
    BobHolds("Moss");
    const auto window = OpenWindow();
    Edit("Stone", "veined");
    Edit("Moss", "wet");
    const QString mossFile = QString::fromStdString(KelFileOf("Moss"));
    DialogDriver driver;
    driver.expect("check out before saving", answerChangelistDialog(kBeforeSaving, {"Check Out"}));
    driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Ok, QStringLiteral("bob"));
    driver.expect("asked again", answerChangelistDialog(kBeforeSaving, {"Cancel"}, [&](QWidget* dialog) {
                      EXPECT_EQ(hbrc::test::listedFiles(dialog), QStringList{mossFile});
                      EXPECT_EQ(hbrc::test::assetsText(dialog), "Moss\nStone (with External: stone.bin)\n");
                  }));
    const hbrc::host::SaveReport report = Save();
    ExpectDriverFinished(driver);
    EXPECT_TRUE(report.cancelled);
    EXPECT_THAT(StatesOf(FilesOf("Stone")), ::testing::Each(FileState{kel4::eStatusCheckedOut, ""}));
    EXPECT_TRUE(DirtyInMemoryWith("Stone", "veined") && DirtyInMemoryWith("Moss", "wet"));
}

// Refused, the password leaves the edit in memory (tst_neverloseanedit); given, the save goes on.
TEST_F(SaveHooks, AnExpiredSessionBeforeTheSaveAsksForThePassword)
{
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    const auto window = OpenWindow();
    Edit("Leaf", "after expiry");
    DialogDriver driver;
    driver.expect("check out before saving", answerChangelistDialog(kBeforeSaving, {"Check Out"}));
    driver.expect("password", answerPassword(QStringLiteral("alice-pw"), kSessionExpired));
    const hbrc::host::SaveReport report = Save();
    ExpectDriverFinished(driver);
    EXPECT_TRUE(report.Succeeded()) << report.DescribeFailures();
    EXPECT_TRUE(OnDiskWith("Leaf", "after expiry"));
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
    const Row rows[] = {{"revision control off, interactive", false, "", true},
                        {"changelist gone, interactive", true, "999", true},
                        {"revision control off, batch", false, "", false},
                        {"changelist gone, batch", true, "999", false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        host->Preferences().SetIntPref("RevControl.ActionWhenEditingReadOnlyAsset", 2, 1);
        host->Preferences().SetStringPref("RevControl.ChangeListToUseWhenAutoCheckingOut", row.storedChangelist, 1);
        host->Preferences().SetBoolPref("RevControl.UseSourceDataControl", row.useSourceDataControl, 1);
        std::unique_ptr<QWidget> window = row.interactive ? OpenWindow() : nullptr;
        Edit("Stone", row.name);
        DialogDriver driver;
        if (row.interactive) {
            driver.expect("asked", answerChangelistDialog(kBeforeSaving, {"Cancel"}, [&](QWidget* dialog) {
                              // Without revision control the dialog offers no changelist.
                              EXPECT_EQ(dialog->findChild<QWidget*>(QStringLiteral("changeListCombo")) != nullptr,
                                        row.useSourceDataControl);
                          }));
        }
        EXPECT_TRUE(Save().cancelled);
        ExpectDriverFinished(driver);
        EXPECT_TRUE(DirtyInMemoryWith("Stone", row.name));
    }
}

// A host may ask without wanting an answer: the hook then only acts.
TEST_F(SaveHooks, ANullCancelPointerIsAcceptedAndTheHookStillActs)
{
    host->Preferences().SetIntPref("RevControl.ActionWhenEditingReadOnlyAsset", 3, 1);  // make writable
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
    PromptForChangelists();
    const std::string changelist = NewChangelist("sky rework");
    AliceChecksOut("Sky", changelist);
    const std::string skyFile = KelFileOf("Sky");
    const std::string treeFile = KelFileOf("Tree");
    const auto window = OpenWindow();
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Sky")));
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Tree")));
    DialogDriver driver;
    driver.expect("mark for delete",
                  answerChangelistDialog(QStringLiteral("Mark For Delete"), {"Mark For Delete", "felled"},
                                         [&](QWidget* dialog) {
                                             EXPECT_EQ(hbrc::test::infoText(dialog),
                                                       "The files below were deleted during the commit\n"
                                                       "We can now mark them for delete in your revision control");
                                             EXPECT_TRUE(hbrc::test::assetsText(dialog).isEmpty());
                                             EXPECT_EQ(hbrc::test::listedFiles(dialog).size(), 2) << "Tree's only";
                                         }));
    const hbrc::host::SaveReport report = Save();
    ExpectDriverFinished(driver);
    EXPECT_TRUE(report.Succeeded()) << report.DescribeFailures();
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
    const auto window = OpenWindow();
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Tree")));
    DialogDriver driver;
    driver.expectMessageBox(QStringLiteral("Mark-For-Delete Error"), QMessageBox::Retry, expected);
    driver.expectMessageBox(QStringLiteral("Mark-For-Delete Error"), QMessageBox::Ok, expected);
    EXPECT_TRUE(Save().Succeeded());
    ExpectDriverFinished(driver);
    EXPECT_EQ(StateOfFile(treeFile).status, kel4::eStatusCheckedOutByOthers | kel4::eStatusLockedByOthers);
}

// --- after the save: new assets ---------------------------------------------------------------------

// A new asset whose files are already open joins their changelist without a question; the others
// go to the changelist the user chooses, and with the box ticked later ones follow silently.
TEST_F(SaveHooks, NewAssetsAreMarkedForAddInTheirFilesOrTheUsersChangelist)
{
    PromptForChangelists();
    const std::string rockWork = NewChangelist("rock work");
    AliceChecksOut("Rock", rockWork);
    const auto window = OpenWindow();
    CreateAsset("Pebble", "rock.bin");  // shares Rock's open external file
    {
        DialogDriver silent;
        EXPECT_TRUE(Save().Succeeded());
        ExpectDriverFinished(silent);
    }
    EXPECT_EQ(StateOfFile(KelFileOf("Pebble")), (FileState{kel4::eStatusMarkedForAdd, rockWork}));

    CreateAsset("Fern", "fern.bin");
    {
        DialogDriver driver;
        driver.expect("mark for add",
                      answerChangelistDialog(kMarkForAdd, {"Mark For Add", "ferns", true}, [](QWidget* d) {
                          EXPECT_EQ(hbrc::test::infoText(d),
                                    "These assets have just been added during the save operation\n"
                                    "We can now mark them for add in the revision control");
                          EXPECT_EQ(hbrc::test::assetsText(d), "Fern\n");
                          EXPECT_EQ(hbrc::test::listedFiles(d).size(), 2);
                      }));
        EXPECT_TRUE(Save().Succeeded());
        ExpectDriverFinished(driver);
    }
    const std::string changelist = StateOfFile(KelFileOf("Fern")).changelist;
    EXPECT_EQ(ChangelistDescription(changelist), "ferns");
    EXPECT_THAT(StatesOf(FilesOf("Fern")), ::testing::Each(FileState{kel4::eStatusMarkedForAdd, changelist}));
    std::string stored;
    host->Preferences().GetStringPref("RevControl.ChangeListToUseWhenAutoCheckingOut", "", stored, 1);
    EXPECT_EQ(stored, changelist);
    CreateAsset("Bracken");
    DialogDriver silent;
    EXPECT_TRUE(Save().Succeeded());
    ExpectDriverFinished(silent);
    EXPECT_EQ(StateOfFile(KelFileOf("Bracken")).changelist, changelist);
}

TEST_F(SaveHooks, AnExpiredSessionAfterTheSaveAsksForThePasswordWithTheWorksPrefix)
{
    const std::string changelist = NewChangelist("sky rework");
    AliceChecksOut("Sky", changelist);
    const std::string skyFile = KelFileOf("Sky");
    const auto window = OpenWindow();

    // Deleted files: the password is given, the file is marked for delete in its changelist.
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Sky")));
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    {
        DialogDriver driver;
        driver.expect("password",
                      answerPassword(QStringLiteral("alice-pw"),
                                     QStringLiteral("Post-Save Mark-for-Delete: Revision control system needs to be "
                                                    "queried for file status but\nsession was lost. Enter a password "
                                                    "to re-connect, or cancel the mark-for-delete.")));
        EXPECT_TRUE(Save().Succeeded());
        ExpectDriverFinished(driver);
        EXPECT_EQ(StateOfFile(skyFile).status, kel4::eStatusMarkedForDelete);
    }

    // New assets: the password is refused, nothing is marked and nothing more is asked.
    CreateAsset("Fern");
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    {
        DialogDriver driver;
        driver.expect("password", answerPassword({}, QStringLiteral("Post-Save Mark-for-Add: Revision control "
                                                                     "system needs to be queried for file status "
                                                                     "but\nsession was lost. Enter a password to "
                                                                     "re-connect, or cancel the mark-for-add.")));
        EXPECT_TRUE(Save().Succeeded());
        ExpectDriverFinished(driver);
    }
    AliceLogsInAgain();
    EXPECT_EQ(StateOfFile(KelFileOf("Fern")).status, kel4::eStatusNotInDatabase);
}

// --- batch ---------------------------------------------------------------------------------------------

TEST_F(SaveHooks, ABatchSaveDecidesEverythingWithoutADialog)
{
    PromptForChangelists();
    const std::string changelist = NewChangelist("sky rework");
    AliceChecksOut("Sky", changelist);
    const std::string skyFile = KelFileOf("Sky");
    const std::string treeFile = KelFileOf("Tree");
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Sky")));
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Tree")));
    Edit("Moss", "batch");
    CreateAsset("Fern");

    DialogDriver driver;
    const hbrc::host::SaveReport report = Save();
    ExpectDriverFinished(driver);
    EXPECT_TRUE(driver.seenTitles().isEmpty()) << driver.seenTitles().join(',').toStdString();
    EXPECT_TRUE(report.Succeeded()) << report.DescribeFailures();
    // Read-only asset: checked out into the default changelist. Deleted files: the checked-out
    // one in its changelist, the other one in the default changelist (prompting would be needed).
    // New asset: marked for add in the default changelist.
    EXPECT_TRUE(OnDiskWith("Moss", "batch"));
    EXPECT_EQ(StateOfFile(KelFileOf("Moss")).status, kel4::eStatusCheckedOut);
    EXPECT_EQ(StateOfFile(skyFile).changelist, changelist);
    EXPECT_EQ(StateOfFile(treeFile).status, kel4::eStatusMarkedForDelete);
    EXPECT_EQ(StateOfFile(treeFile).changelist, "");
    const std::string fernFile = KelFileOf("Fern");
    EXPECT_EQ(StateOfFile(fernFile), (FileState{kel4::eStatusMarkedForAdd, ""}));

    // Deleted again before any submit, the new asset leaves revision control.
    ASSERT_TRUE(workspace->DeleteAsset(Asset("Fern")));
    EXPECT_TRUE(Save().Succeeded());
    ExpectDriverFinished(driver);
    EXPECT_EQ(StateOfFile(fernFile).status, kel4::eStatusNotInDatabase);
}

TEST_F(SaveHooks, ABatchFailureIsLoggedAndTheSaveCancelled)
{
    BobHolds("Moss");
    Edit("Moss", "logged");
    hbrc::host::LogCapture log;
    DialogDriver driver;
    const hbrc::host::SaveReport report = Save();
    ExpectDriverFinished(driver);
    EXPECT_TRUE(report.cancelled);
    EXPECT_TRUE(DirtyInMemoryWith("Moss", "logged"));
    ASSERT_FALSE(log.TextsOfType(Log::eError).empty());
    const std::string entry = log.TextsOfType(Log::eError).back();
    EXPECT_EQ(entry.rfind("Cannot checkout the assets\n", 0), 0u) << entry;
    EXPECT_NE(entry.find("\nDetails:\nFiles:\n"), std::string::npos) << entry;
}

}  // namespace
