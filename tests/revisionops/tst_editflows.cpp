// The editability decision and the check-out flow as alice meets them in
// the reference host: her workspace on the embedded depot holds Rock (with rock.bin), Tree (with
// tree.bin) and Sky, submitted and read-only; bob works on the same depot. Dialogs are the real
// ones, answered by the dialog driver.
#include "helperhostfixture.h"

#include <hbrchost/logcapture.h>

#include <QMessageBox>

using namespace hbrc::test;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

using namespace std::chrono_literals;

using EditFlows = HelperOnHost;

// The editability prompt ("Check Out"): checks what it offers, then acts as the user would.
DialogDriver::Handler answerPrompt(const ChangelistAnswer& answer, bool makeWritableOffered = true,
                                   std::function<void(QWidget*)> inspect = {})
{
    return answerChangelistDialog(QStringLiteral("Check Out"), answer, [=](QWidget* dialog) {
        EXPECT_NE(visibleButton(dialog, QStringLiteral("Continue")), nullptr);
        EXPECT_EQ(visibleButton(dialog, QStringLiteral("Make Writable")) != nullptr, makeWritableOffered);
        if (inspect)
            inspect(dialog);
    });
}

bool canEdit(EditFlows& flows, const ServerHostFixture::ObjectList& objects, bool allowMakeWritable = true)
{
    return flows.helper.CanEditObjects(objects, true, allowMakeWritable, "Rock is about to change");
}

using EditFlowsOnServers = OnServers<EditFlows>;
INSTANTIATE_TEST_SUITE_P(Servers, EditFlowsOnServers,
                         ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe), ServerKindName);

TEST_P(EditFlowsOnServers, BobHoldsRockAliceChecksOutIntoANewChangeListAndRetriesOnceBobReverts)
{
    BobEdits("Rock");
    StoreAction(kPrompt);
    driver.expect("prompt", answerPrompt({"Check Out", "rock and sky fixes"}, true, [](QWidget* dialog) {
                      EXPECT_TRUE(assetsText(dialog).contains("Rock") && assetsText(dialog).contains("Sky"));
                      EXPECT_EQ(infoText(dialog), "Rock is about to change");
                  }));
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
        BobReverts("Rock");
        pressMessageBoxButton(box, QMessageBox::Retry);
    });

    EXPECT_TRUE(canEdit(*this, Assets({"Rock", "Sky"})));

    kel4::List<std::string> pending;
    std::string error;
    ASSERT_EQ(DataControl()->GetPendingChangeLists(pending, error).GetCode(), 0);
    ASSERT_EQ(pending.size(), 1u) << "Retry checks out again without asking for a changelist";
    EXPECT_THAT(OpenedIn("Rock"), Each(pending.front()));
    EXPECT_THAT(OpenedIn("Sky"), ElementsAre(pending.front()));
    EXPECT_THAT(OpenedIn("Tree"), Each("-"));
    EXPECT_EQ(StoredActionNow(), kPrompt) << "nothing stored without \"don't show again\"";
}

// The stored action and changelist decide without a dialog, or bring the prompt.
struct StoredCase {
    const char* name;
    RevisionHostFixture::StoredAction action;
    enum { DefaultChangeList, PendingChangeList, SubmittedChangeList } changelist;
    bool allowMakeWritable;
    std::optional<ChangelistAnswer> prompt;  // expected, answered so
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
    if (row.changelist == StoredCase::SubmittedChangeList) {
        AliceChecksOut("Tree", changelist);
        AliceSubmits("tree fixes", changelist);
    }
    StoreAction(row.action, changelist);
    if (row.prompt)
        driver.expect("prompt", answerPrompt(*row.prompt, row.allowMakeWritable));

    EXPECT_EQ(canEdit(*this, Assets({"Rock"}), row.allowMakeWritable), row.canEdit);

    EXPECT_THAT(OpenedIn("Rock"), Each(row.checkedOut ? changelist : "-"));
    EXPECT_EQ(AllWritable("Rock"), row.writable);
    // Forgetting a changelist that has gone stores 2 all the same: the settings always do.
    EXPECT_EQ(StoredActionNow(), row.action);
}

using Fixture = RevisionHostFixture;
INSTANTIATE_TEST_SUITE_P(
    Rows, StoredAction,
    ::testing::Values(
        StoredCase{"NoneEditsFreely", Fixture::kNone, StoredCase::DefaultChangeList, true, {}, true, false, false},
        StoredCase{"PromptThenCancel", Fixture::kPrompt, StoredCase::DefaultChangeList, false,
                   ChangelistAnswer{"Cancel"}, false, false, false},
        StoredCase{"CheckOutIntoTheStoredChangeList", Fixture::kCheckOut, StoredCase::PendingChangeList, true, {},
                   true, true, true},
        StoredCase{"CheckOutIntoASubmittedChangeListAsksInstead", Fixture::kCheckOut,
                   StoredCase::SubmittedChangeList, true, ChangelistAnswer{"Cancel"}, false, false, false},
        StoredCase{"MakeWritableWhereAllowed", Fixture::kMakeWritable, StoredCase::DefaultChangeList, true, {}, true,
                   false, true},
        StoredCase{"MakeWritableWhereNotAllowedAsks", Fixture::kMakeWritable, StoredCase::DefaultChangeList, false,
                   ChangelistAnswer{"Cancel"}, false, false, false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(EditFlows, PromptChoicesKeptWithDontShowAgainDecideTheNextQuestion)
{
    StoreAction(kPrompt);
    driver.expect("prompt", answerPrompt({"Make Writable", {}, true}));
    EXPECT_TRUE(canEdit(*this, Assets({"Sky"})));
    EXPECT_TRUE(AllWritable("Sky"));
    EXPECT_THAT(OpenedIn("Sky"), Each("-"));
    // The settings keep "check out" whatever action they are given, with the changelist kept
    // before (none: the default one): the next question checks out without a dialog.
    EXPECT_EQ(StoredActionNow(), kCheckOut);
    EXPECT_TRUE(canEdit(*this, Assets({"Tree"})));
    EXPECT_THAT(OpenedIn("Tree"), Each(""));

    StoreAction(kPrompt);
    driver.expect("prompt", answerPrompt({"Check Out", "always here", true}));
    EXPECT_TRUE(canEdit(*this, Assets({"Rock"})));
    const std::string kept = StoredChangelist();
    EXPECT_THAT(OpenedIn("Rock"), Each(kept));
    EXPECT_NE(kept, "");
    EXPECT_FALSE(PromptsForChangelist());
    EXPECT_EQ(StoredActionNow(), kCheckOut);
}

TEST_F(EditFlows, ContinueAnswersTheSameQuestionUntilItChanges)
{
    StoreAction(kPrompt);
    driver.expect("prompt", answerPrompt({"Continue"}));
    EXPECT_TRUE(canEdit(*this, Assets({"Rock", "Sky"})));
    EXPECT_TRUE(canEdit(*this, Assets({"Rock", "Sky"}))) << "the same work list: no dialog";

    driver.expect("prompt", answerPrompt({"Cancel"}));
    EXPECT_FALSE(canEdit(*this, Assets({"Sky", "Rock"}))) << "another order asks again";
    driver.expect("prompt", answerPrompt({"Continue"}));
    EXPECT_TRUE(canEdit(*this, Assets({"Rock", "Sky"}))) << "the cancelled question forgot the Continue";
    EXPECT_THAT(OpenedIn("Rock"), Each("-"));
    EXPECT_FALSE(AllWritable("Rock"));
    EXPECT_EQ(StoredActionNow(), kPrompt);
}

// An expired session: every check-out asks for the password. Left closed, the editability question
// brings the prompt and a check-out of several assets ends at the first; given, the check-out goes on.
TEST_P(EditFlowsOnServers, AnExpiredSessionIsReopenedOnlyWithThePasswordTheUserTypes)
{
    StoreAction(kCheckOut);
    SetPromptForChangelist(false);
    ASSERT_EQ(services.ExpireSessionNow().GetCode(), 0);
    driver.expect("password", answerPassword({}));
    driver.expect("prompt", answerPrompt({"Cancel"}));
    EXPECT_FALSE(canEdit(*this, Assets({"Rock"})));
    EXPECT_FALSE(AllWritable("Rock"));

    driver.expect("password", answerPassword({}));
    bool cancelled = true;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock", "Sky"}), cancelled, true));
    EXPECT_FALSE(cancelled) << "no box, no second asset: the driver fails on any dialog not expected";

    driver.expect("password", answerPassword(QStringLiteral("alice-pw")));
    EXPECT_TRUE(canEdit(*this, Assets({"Rock"})));
    EXPECT_THAT(OpenedIn("Rock"), Each(""));
}

// Bob holds Rock. A user's Ignore edits despite the failure and Cancel refuses; a batch run, where
// no dialog may appear, checks out into the default changelist, retrying with growing waits until
// bob lets go.
TEST_F(EditFlows, ACheckOutBobRefusesIsIgnoredOrCancelledByTheUserAndRetriedInABatch)
{
    BobEdits("Rock");
    StoreAction(kCheckOut);
    driver.expectMessageBox("Checkout Error", QMessageBox::Ignore, "bob");
    EXPECT_TRUE(canEdit(*this, Assets({"Rock"})));
    driver.expectMessageBox("Checkout Error", QMessageBox::Cancel, "bob");
    EXPECT_FALSE(canEdit(*this, Assets({"Rock"})));
    EXPECT_THAT(OpenedIn("Rock"), Each("-"));

    window.reset();
    hbrc::host::LogCapture log;
    StoreAction(kPrompt);
    onWait = [this](int waitNumber) {
        if (waitNumber == 3)
            BobReverts("Rock");
    };
    EXPECT_TRUE(canEdit(*this, Assets({"Rock", "Sky"})));
    EXPECT_THAT(waits, ElementsAre(500ms, 1000ms, 2000ms));
    const auto entries = log.TextsOfType(Log::eError);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_THAT(entries.front(), HasSubstr("Cannot checkout the assets\n"));
    EXPECT_THAT(entries.front(), HasSubstr("bob\n\nDetails:\nFiles:\n"));
    EXPECT_THAT(OpenedIn("Rock"), Each(""));
    EXPECT_THAT(OpenedIn("Sky"), Each(""));
}

// The assets that can be checked out are, each failure is logged in a batch run (into the default
// changelist although prompting is stored) and shown with Retry to a user.
TEST_F(EditFlows, AFailedAssetIsLoggedOrShownWithRetryAndTheOthersAreStillCheckedOut)
{
    window.reset();
    hbrc::host::LogCapture log;
    SetPromptForChangelist(true);
    BobEdits("Tree");
    bool cancelled = true;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock", "Tree", "Sky"}), cancelled, true));
    EXPECT_FALSE(cancelled);
    EXPECT_THAT(OpenedIn("Rock"), Each(""));
    EXPECT_THAT(OpenedIn("Tree"), Each("-"));
    EXPECT_THAT(OpenedIn("Sky"), Each(""));
    const auto entries = log.TextsOfType(Log::eError);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_THAT(entries.front(), HasSubstr("bob\n\nDetails:\nFiles:\n" + AlicePath("Tree.kel") + "\n"));

    window = std::make_unique<QWidget>();
    SetPromptForChangelist(false);
    driver.expect("failure", [](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Checkout Error");
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok | QMessageBox::Retry);
        EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::Retry));
        EXPECT_EQ(box->escapeButton(), box->button(QMessageBox::Ok));
        pressMessageBoxButton(box, QMessageBox::Ok);
    });
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Tree"}), cancelled, true));
    EXPECT_FALSE(cancelled);
    EXPECT_THAT(OpenedIn("Tree"), Each("-"));
}

TEST_F(EditFlows, EachCheckedOutAssetIsItsOwnUndoStep)
{
    SetPromptForChangelist(true);
    driver.expect("changelist", answerChangelistDialog(QStringLiteral("Select Pending ChangeList"),
                                                       {"Check Out", {}, true}));  // "Default" is selected
    auto& commands = host->Commands();
    const std::size_t stepsBefore = commands.GetUndoCount();
    bool cancelled = true;
    EXPECT_TRUE(helper.CheckOutObjects(Assets({"Rock", "Sky"}), cancelled, false));
    EXPECT_FALSE(cancelled);
    EXPECT_THAT(OpenedIn("Rock"), ElementsAre("", "-")) << "without external files";
    EXPECT_THAT(OpenedIn("Sky"), Each(""));
    EXPECT_FALSE(PromptsForChangelist());

    ASSERT_EQ(commands.GetUndoCount() - stepsBefore, 2u);
    EXPECT_TRUE(commands.Undo());
    EXPECT_EQ(commands.GetUndoCount() - stepsBefore, 1u);

    cancelled = true;
    EXPECT_TRUE(helper.CheckOutObject(Asset("Tree"), cancelled, true)) << "the default changelist, silently";
    EXPECT_THAT(OpenedIn("Tree"), Each(""));
}

// The check-out is cancelled by the changelist dialog, which comes back when the changelist kept
// for check-outs was submitted meanwhile, and at once when revision control is off (when an edit
// is let through without a question).
TEST_P(EditFlowsOnServers, CheckOutIsCancelledByTheDialogOrWhenRevisionControlIsOff)
{
    const std::string kept = NewChangelist("kept for check-outs");
    StoreAction(kPrompt, kept);
    SetPromptForChangelist(false);
    AliceChecksOut("Tree", kept);
    AliceSubmits("tree fixes", kept);
    driver.expect("changelist", answerChangelistDialog(QStringLiteral("Select Pending ChangeList"), {"Cancel"}));
    bool cancelled = false;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock"}), cancelled, true));
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(PromptsForChangelist());

    SetRevisionControl(false);
    cancelled = false;
    EXPECT_FALSE(helper.CheckOutObjects(Assets({"Rock"}), cancelled, true));
    EXPECT_TRUE(cancelled);
    EXPECT_THAT(OpenedIn("Rock"), Each("-"));
    EXPECT_TRUE(helper.CanEditObjects(Assets({"Rock"}), true, true, "an edit")) << "off: no question, no check-out";
    EXPECT_THAT(OpenedIn("Rock"), Each("-"));
}

}  // namespace
