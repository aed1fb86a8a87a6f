// The editability decision, the check-out flow and the make-writable flow as alice meets them in
// the reference host: her workspace on the embedded depot holds Rock (with rock.bin), Tree (with
// tree.bin) and Sky, submitted and read-only; bob works on the same depot. Dialogs are the real
// ones, answered by the dialog driver.
#include "changelistdialogui.h"
#include "hbrevisioncontrolpropertiesmgr.h"
#include "revisioncontroluihelper.h"

#include <serverhostfixture.h>

#include <hbrchost/logcapture.h>
#include <kel4/revisionstatus.h>

#include <QCheckBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

using namespace hbrc::test;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Settings = IRevisionControlPropertiesMgr;

namespace {

using namespace std::chrono_literals;

constexpr const char* kActionKey = CHBRevisionControlPropertiesMgr::kActionKey;
constexpr const char* kChangeListKey = CHBRevisionControlPropertiesMgr::kChangeListKey;
constexpr const char* kPromptKey = CHBRevisionControlPropertiesMgr::kPromptForChangeListKey;

class EditFlows : public ServerHostFixture
{
protected:
    void SetUp() override
    {
        ServerHostFixture::SetUp();
        ASSERT_TRUE(host->System().RegisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName(), &settings));
        // Straight into the preferences: the settings' own setter would hand the data control a
        // new account without alice's session.
        host->Preferences().SetBoolPref(CHBRevisionControlPropertiesMgr::kUseSourceDataControlKey, true, 1);
        helper.SetBatchRetryWait([this](std::chrono::milliseconds wait) {
            waits.push_back(wait);
            if (onWait)
                onWait(int(waits.size()));
        });
    }
    void TearDown() override
    {
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
        host->System().UnregisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName());
        ServerHostFixture::TearDown();
    }

    void storeAction(Settings::ActionWhenEditingReadOnlyAsset action, const std::string& changelist = {})
    {
        host->Preferences().SetIntPref(kActionKey, action, 1);
        host->Preferences().SetStringPref(kChangeListKey, changelist, 1);
    }
    int storedAction()
    {
        int action = -1;
        host->Preferences().GetIntPref(kActionKey, -1, action, 0);
        return action;
    }
    bool promptForChangeList()
    {
        bool prompt = false;
        host->Preferences().GetBoolPref(kPromptKey, true, prompt, 0);
        return prompt;
    }
    void setPromptForChangeList(bool prompt) { host->Preferences().SetBoolPref(kPromptKey, prompt, 1); }
    // Alice checks Tree out into changelist and submits it: the changelist is gone.
    void submitTreeIn(const std::string& changelist)
    {
        AliceChecksOut("Tree", changelist);
        AliceSubmits("tree fixes", changelist);
    }
    // Where alice has each file of the asset open: its changelist, or "-" when it is not open.
    std::vector<std::string> openedIn(const std::string& asset) const
    {
        std::vector<std::string> where;
        for (const FileState& state : StatesOf(FilesOf(asset)))
            where.push_back(state.status & kel4::eStatusCheckedOut ? state.changelist : "-");
        return where;
    }
    bool writable(const std::string& asset) const
    {
        const std::vector<bool> files = Writable(FilesOf(asset));
        return std::find(files.begin(), files.end(), false) == files.end();
    }
    void bobEdits(const std::string& asset) { BobExpects(Bob().edit(BobTicket(), BobFilesOf(asset), "")); }
    void bobReverts(const std::string& asset) { BobExpects(Bob().revert(BobTicket(), BobFilesOf(asset))); }
    bool canEdit(const ObjectList& objects, bool allowMakeWritable = true)
    {
        return helper.CanEditObjects(objects, true, allowMakeWritable, "Rock is about to change");
    }

    CHBRevisionControlPropertiesMgr settings;
    CRevisionControlUIHelper helper;
    std::unique_ptr<QWidget> mainWindow = std::make_unique<QWidget>();  // makes the session interactive
    DialogDriver driver;
    std::vector<std::chrono::milliseconds> waits;
    std::function<void(int waitNumber)> onWait;
};

// The editability prompt ("Check Out"): checks what it offers, then acts as the user would.
struct PromptAnswer {
    QString button;                 // "Check Out", "Continue", "Make Writable" or "Cancel"
    QString newChangeList = {};     // with Check Out: a new changelist with this description
    bool dontShowAgain = false;
    bool makeWritableOffered = true;
};

DialogDriver::Handler answerPrompt(const PromptAnswer& answer)
{
    return [answer](QWidget* w) {
        auto* dialog = qobject_cast<hbChangeListSelectionDialog*>(w);
        ASSERT_NE(dialog, nullptr) << w->metaObject()->className();
        EXPECT_EQ(dialog->windowTitle(), "Check Out");
        EXPECT_TRUE(button(*dialog, "Continue")->isVisible());
        EXPECT_EQ(button(*dialog, "Make Writable")->isVisible(), answer.makeWritableOffered);
        if (!answer.newChangeList.isEmpty()) {
            combo(*dialog)->setCurrentIndex(0);
            QTest::keyClicks(descriptionEdit(*dialog), answer.newChangeList);
        }
        dialog->findChild<QCheckBox*>(QStringLiteral("dontShowAgain"))->setChecked(answer.dontShowAgain);
        click(*dialog, answer.button);
    };
}

// The flows that depend on what the server answers run on the embedded depot and on svnserve.
class EditFlowsOnServers : public EditFlows, public ::testing::WithParamInterface<ServerKind>
{
public:
    ServerKind Server() const override { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Servers, EditFlowsOnServers,
                         ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe), ServerKindName);

TEST_P(EditFlowsOnServers, BobHoldsRockAliceChecksOutIntoANewChangeListAndRetriesOnceBobReverts)
{
    bobEdits("Rock");
    storeAction(Settings::eActionPrompt);
    driver.expect("prompt", [&](QWidget* w) {
        const QString assetsText = w->findChild<QTextEdit*>(QStringLiteral("assetsEdit"))->toPlainText();
        EXPECT_TRUE(assetsText.contains("Rock") && assetsText.contains("Sky")) << assetsText.toStdString();
        EXPECT_EQ(w->findChild<QLabel*>(QStringLiteral("infoLabel"))->text(), "Rock is about to change");
        answerPrompt({"Check Out", "rock and sky fixes"})(w);
    });
    driver.expect("failure", [&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Checkout Error");
        // A Subversion check-out is a lock: the message names both causes.
        const std::string lockedLine =
            IsSubversion() ? "because the following users have locked some of the files\n" : "";
        EXPECT_EQ(box->text().toStdString(), "Cannot checkout the assets\nbecause the following users have checked "
                                             "out some of the files\n" + lockedLine + "\nbob\n");
        EXPECT_THAT(box->detailedText().toStdString(), HasSubstr(AlicePath("rock.bin")));
        EXPECT_EQ(box->standardButtons(), QMessageBox::Retry | QMessageBox::Ignore | QMessageBox::Cancel);
        EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::Retry));
        bobReverts("Rock");
        pressMessageBoxButton(box, QMessageBox::Retry);
    });

    EXPECT_TRUE(canEdit(Assets({"Rock", "Sky"})));

    kel4::List<std::string> pending;
    std::string error;
    ASSERT_EQ(DataControl()->GetPendingChangeLists(pending, error).GetCode(), 0);
    ASSERT_EQ(pending.size(), 1u) << "Retry checks out again without asking for a changelist";
    EXPECT_THAT(openedIn("Rock"), Each(pending.front()));
    EXPECT_THAT(openedIn("Sky"), ElementsAre(pending.front()));
    EXPECT_THAT(openedIn("Tree"), Each("-"));
    EXPECT_EQ(storedAction(), Settings::eActionPrompt) << "nothing stored without \"don't show again\"";
}

// The stored action and changelist decide without a dialog, or bring the prompt.
struct StoredCase {
    const char* name;
    Settings::ActionWhenEditingReadOnlyAsset action;
    enum { DefaultChangeList, PendingChangeList, SubmittedChangeList } changelist;
    bool allowMakeWritable;
    std::optional<PromptAnswer> prompt;  // expected, answered so
    bool canEdit;
    bool checkedOut;  // Rock, into the stored changelist
    bool writable;
};

class StoredAction : public EditFlows, public ::testing::WithParamInterface<StoredCase>
{
};

TEST_P(StoredAction, DecidesWithoutAskingOrAsks)
{
    const StoredCase& row = GetParam();
    std::string changelist;
    if (row.changelist != StoredCase::DefaultChangeList)
        changelist = NewChangelist("kept for check-outs");
    if (row.changelist == StoredCase::SubmittedChangeList)
        submitTreeIn(changelist);
    storeAction(row.action, changelist);
    if (row.prompt)
        driver.expect("prompt", answerPrompt(*row.prompt));

    EXPECT_EQ(canEdit(Assets({"Rock"}), row.allowMakeWritable), row.canEdit);

    EXPECT_THAT(openedIn("Rock"), Each(row.checkedOut ? changelist : "-"));
    EXPECT_EQ(writable("Rock"), row.writable);
    // Forgetting a changelist that has gone stores 2 all the same: the settings always do.
    EXPECT_EQ(storedAction(), row.action);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, StoredAction,
    ::testing::Values(
        StoredCase{"NoneEditsFreely", Settings::eActionNone, StoredCase::DefaultChangeList, true, {}, true, false, false},
        StoredCase{"PromptThenContinue", Settings::eActionPrompt, StoredCase::DefaultChangeList, true,
                   PromptAnswer{"Continue"}, true, false, false},
        StoredCase{"PromptThenCancel", Settings::eActionPrompt, StoredCase::DefaultChangeList, false,
                   PromptAnswer{"Cancel", {}, false, false}, false, false, false},
        StoredCase{"CheckOutIntoTheStoredChangeList", Settings::eActionCheckOut, StoredCase::PendingChangeList, true,
                   {}, true, true, true},
        StoredCase{"CheckOutIntoASubmittedChangeListAsksInstead", Settings::eActionCheckOut,
                   StoredCase::SubmittedChangeList, true, PromptAnswer{"Cancel"}, false, false, false},
        StoredCase{"MakeWritableWhereAllowed", Settings::eActionMakeWritable, StoredCase::DefaultChangeList, true, {},
                   true, false, true},
        StoredCase{"MakeWritableWhereNotAllowedAsks", Settings::eActionMakeWritable, StoredCase::DefaultChangeList,
                   false, PromptAnswer{"Cancel", {}, false, false}, false, false, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(EditFlows, PromptChoicesKeptWithDontShowAgainDecideTheNextQuestion)
{
    storeAction(Settings::eActionPrompt);
    driver.expect("prompt", answerPrompt({"Make Writable", {}, true}));
    EXPECT_TRUE(canEdit(Assets({"Sky"})));
    EXPECT_TRUE(writable("Sky"));
    EXPECT_THAT(openedIn("Sky"), Each("-"));
    // The settings keep "check out" whatever action they are given, with the changelist kept
    // before (none: the default one): the next question checks out without a dialog.
    EXPECT_EQ(storedAction(), Settings::eActionCheckOut);
    EXPECT_TRUE(canEdit(Assets({"Tree"})));
    EXPECT_THAT(openedIn("Tree"), Each(""));

    storeAction(Settings::eActionPrompt);
    driver.expect("prompt", answerPrompt({"Check Out", "always here", true}));
    EXPECT_TRUE(canEdit(Assets({"Rock"})));
    std::string kept;
    settings.GetChangeListToUseWhenAutoCheckingOut(kept);
    EXPECT_THAT(openedIn("Rock"), Each(kept));
    EXPECT_NE(kept, "");
    EXPECT_FALSE(promptForChangeList());
    EXPECT_EQ(storedAction(), Settings::eActionCheckOut);
}

TEST_F(EditFlows, ContinueAnswersTheSameQuestionUntilItChanges)
{
    storeAction(Settings::eActionPrompt);
    driver.expect("prompt", answerPrompt({"Continue"}));
    EXPECT_TRUE(canEdit(Assets({"Rock", "Sky"})));
    EXPECT_EQ(driver.answered(), 1);
    EXPECT_TRUE(canEdit(Assets({"Rock", "Sky"}))) << "the same work list: no dialog";
    EXPECT_EQ(driver.answered(), 1);

    driver.expect("prompt", answerPrompt({"Cancel"}));
    EXPECT_FALSE(canEdit(Assets({"Sky", "Rock"}))) << "another order asks again";
    driver.expect("prompt", answerPrompt({"Continue"}));
    EXPECT_TRUE(canEdit(Assets({"Rock", "Sky"}))) << "the cancelled question forgot the Continue";
    EXPECT_EQ(driver.answered(), 3);
    EXPECT_THAT(openedIn("Rock"), Each("-"));
}

// An expired session: every check-out asks for the password. Left closed, the editability question
// brings the prompt and a check-out of several assets ends at the first; given, the check-out goes on.
TEST_P(EditFlowsOnServers, AnExpiredSessionIsReopenedOnlyWithThePasswordTheUserTypes)
{
    storeAction(Settings::eActionCheckOut);
    setPromptForChangeList(false);
    ASSERT_EQ(services.ExpireSessionNow().GetCode(), 0);
    driver.expect("password", [](QWidget* w) { click(*w, "Cancel"); });
    driver.expect("prompt", answerPrompt({"Cancel"}));
    EXPECT_FALSE(canEdit(Assets({"Rock"})));
    EXPECT_FALSE(writable("Rock"));

    driver.expect("password", [](QWidget* w) { click(*w, "Cancel"); });
    bool cancelled = true;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock", "Sky"}), cancelled, true));
    EXPECT_FALSE(cancelled);
    EXPECT_EQ(driver.seenTitles().size(), 3) << "no box, no second asset";

    driver.expect("password", [](QWidget* w) {
        EXPECT_EQ(w->windowTitle(), "Data Source Password Required");
        QTest::keyClicks(w->findChild<QLineEdit*>(), "alice-pw");
        click(*w, "Ok");
    });
    EXPECT_TRUE(canEdit(Assets({"Rock"})));
    EXPECT_THAT(openedIn("Rock"), Each(""));
}

TEST_F(EditFlows, IgnoreEditsDespiteAFailureAndCancelRefuses)
{
    bobEdits("Rock");
    storeAction(Settings::eActionCheckOut);
    driver.expectMessageBox("Checkout Error", QMessageBox::Ignore, "bob");
    EXPECT_TRUE(canEdit(Assets({"Rock"})));
    driver.expectMessageBox("Checkout Error", QMessageBox::Cancel, "bob");
    EXPECT_FALSE(canEdit(Assets({"Rock"})));
    EXPECT_THAT(openedIn("Rock"), Each("-"));
}

// Batch runs: no window, so no dialog may appear (the driver fails the test if one does).
class BatchEditFlows : public EditFlows
{
protected:
    void SetUp() override
    {
        EditFlows::SetUp();
        mainWindow.reset();
    }
    hbrc::host::LogCapture log;
};

TEST_F(BatchEditFlows, APromptChecksOutIntoTheDefaultChangeListRetryingWithGrowingWaits)
{
    storeAction(Settings::eActionPrompt);
    bobEdits("Rock");
    onWait = [this](int waitNumber) {
        if (waitNumber == 3)
            bobReverts("Rock");
    };
    EXPECT_TRUE(canEdit(Assets({"Rock", "Sky"})));
    EXPECT_THAT(waits, ElementsAre(500ms, 1000ms, 2000ms));
    const auto entries = log.TextsOfType(Log::eError);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_THAT(entries.front(), HasSubstr("Cannot checkout the assets\n"));
    EXPECT_THAT(entries.front(), HasSubstr("bob\n\nDetails:\nFiles:\n"));
    EXPECT_THAT(openedIn("Rock"), Each(""));
    EXPECT_THAT(openedIn("Sky"), Each(""));
}

TEST_F(BatchEditFlows, CheckOutObjectsUsesTheDefaultChangeListAndLogsEachFailure)
{
    setPromptForChangeList(true);
    bobEdits("Tree");
    bool cancelled = true;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock", "Tree", "Sky"}), cancelled, true));
    EXPECT_FALSE(cancelled);
    EXPECT_THAT(openedIn("Rock"), Each(""));
    EXPECT_THAT(openedIn("Tree"), Each("-"));
    EXPECT_THAT(openedIn("Sky"), Each(""));
    const auto entries = log.TextsOfType(Log::eError);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_THAT(entries.front(), HasSubstr("bob\n\nDetails:\nFiles:\n" + AlicePath("Tree.kel") + "\n"));
}

TEST_F(EditFlows, EachCheckedOutAssetIsItsOwnUndoStep)
{
    setPromptForChangeList(true);
    driver.expect("changelist", [](QWidget* w) {
        EXPECT_EQ(w->windowTitle(), "Select Pending ChangeList");
        w->findChild<QCheckBox*>(QStringLiteral("dontShowAgain"))->setChecked(true);
        click(*w, "Check Out");  // "Default" is selected
    });
    auto& commands = host->Commands();
    const std::size_t stepsBefore = commands.GetUndoCount();
    bool cancelled = true;
    EXPECT_TRUE(helper.CheckOutObjects(Assets({"Rock", "Sky"}), cancelled, false));
    EXPECT_FALSE(cancelled);
    EXPECT_THAT(openedIn("Rock"), ElementsAre("", "-")) << "without external files";
    EXPECT_THAT(openedIn("Sky"), Each(""));
    EXPECT_FALSE(promptForChangeList());

    ASSERT_EQ(commands.GetUndoCount() - stepsBefore, 2u);
    EXPECT_STREQ(commands.GetUndoCommand()->GetCommandIdentifier(), "checkoutKELDbObjects");
    EXPECT_TRUE(commands.Undo());
    EXPECT_EQ(commands.GetUndoCount() - stepsBefore, 1u);

    cancelled = true;
    EXPECT_TRUE(helper.CheckOutObject(Asset("Tree"), cancelled, true)) << "the default changelist, silently";
    EXPECT_THAT(openedIn("Tree"), Each(""));
}

TEST_F(EditFlows, AFailedAssetIsReportedWithRetryAndTheOthersAreStillCheckedOut)
{
    setPromptForChangeList(false);
    bobEdits("Tree");
    driver.expect("failure", [](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Checkout Error");
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok | QMessageBox::Retry);
        EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::Retry));
        EXPECT_EQ(box->escapeButton(), box->button(QMessageBox::Ok));
        pressMessageBoxButton(box, QMessageBox::Ok);
    });
    bool cancelled = true;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock", "Tree", "Sky"}), cancelled, true));
    EXPECT_FALSE(cancelled);
    EXPECT_THAT(openedIn("Rock"), Each(""));
    EXPECT_THAT(openedIn("Tree"), Each("-"));
    EXPECT_THAT(openedIn("Sky"), Each(""));
}

// The check-out is cancelled by the changelist dialog, which comes back when the changelist kept
// for check-outs was submitted meanwhile, and at once when revision control is off (when an edit
// is let through without a question).
TEST_P(EditFlowsOnServers, CheckOutIsCancelledByTheDialogOrWhenRevisionControlIsOff)
{
    const std::string kept = NewChangelist("kept for check-outs");
    host->Preferences().SetStringPref(kChangeListKey, kept, 1);
    setPromptForChangeList(false);
    submitTreeIn(kept);
    driver.expect("changelist", [](QWidget* w) {
        EXPECT_EQ(w->windowTitle(), "Select Pending ChangeList");
        click(*w, "Cancel");
    });
    bool cancelled = false;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock"}), cancelled, true));
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(promptForChangeList());

    host->Preferences().SetBoolPref(CHBRevisionControlPropertiesMgr::kUseSourceDataControlKey, false, 1);
    cancelled = false;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock"}), cancelled, true));
    EXPECT_TRUE(cancelled);
    EXPECT_THAT(openedIn("Rock"), Each("-"));
    EXPECT_TRUE(helper.CanEditObjects(Assets({"Rock"}), true, true, "an edit")) << "off: no question, no check-out";
    EXPECT_THAT(openedIn("Rock"), Each("-"));
}

TEST_F(EditFlows, ARefusedCommandIsReportedAsSuch)
{
    host->System().UnregisterSingleton("UndoManager");
    std::string errorString = "kept", message, details = "kept";
    const kelResult result = helper.CheckOutObjectsInChangelist(DataControl(), Assets({"Rock"}), true, "", errorString,
                                                                message, details);
    EXPECT_TRUE(result.IsFailure());
    EXPECT_EQ(message, "Could not execute command: Unknown error");
    EXPECT_EQ(errorString, "kept");
    ASSERT_TRUE(host->System().RegisterSingleton("UndoManager", &host->Commands()));
}

TEST_F(EditFlows, MakeObjectWritableWritesTheFilesWithoutCheckingOutAndShowsAFailureOnce)
{
    EXPECT_TRUE(helper.MakeObjectWritable(Asset("Rock"), true));
    EXPECT_TRUE(writable("Rock"));
    EXPECT_THAT(openedIn("Rock"), Each("-"));

    // tree.bin becomes a read-only entry whose mode nobody may change, not even root.
    const QString unchangeable = QStringLiteral("/proc/sys/kernel/osrelease");
    if (!QFileInfo::exists(unchangeable))
        GTEST_SKIP() << "no file whose mode cannot be changed";
    const QString tree = QString::fromStdString(AlicePath("tree.bin"));
    ASSERT_TRUE(QFile::remove(tree));
    ASSERT_TRUE(QFile::link(unchangeable, tree));
    const std::string name = DataControl()->GetAssetDisplayName(Asset("Tree"));
    driver.expect("failure", [&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "I/O Error");
        EXPECT_THAT(box->text().toStdString(),
                    HasSubstr("Error found while trying to make the asset " + name + " writable:\n"));
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok);
        EXPECT_EQ(box->detailedText().toStdString(), AlicePath("Tree.kel") + "\n" + AlicePath("tree.bin") + "\n");
        pressMessageBoxButton(box, QMessageBox::Ok);
    });
    EXPECT_FALSE(helper.MakeObjectWritable(Asset("Tree"), true));

    mainWindow.reset();
    hbrc::host::LogCapture log;
    EXPECT_FALSE(helper.MakeObjectWritable(Asset("Tree"), true));
    ASSERT_EQ(log.TextsOfType(Log::eError).size(), 1u);
    EXPECT_THAT(log.TextsOfType(Log::eError).front(), HasSubstr("writable:\n"));
    EXPECT_THAT(log.TextsOfType(Log::eError).front(), HasSubstr("\nDetails:\n" + AlicePath("Tree.kel") + "\n"));
}

}  // namespace
