// Never lose an edit: whatever happens to the check-out before a save, and whatever the user
// answers, every edited read-only asset ends up on disk with its edit or still dirty in memory with
// it. A batch save shows no dialog; an interactive save asks once per answer the user gives.
#include "savehooksfixture.h"

#include <QMessageBox>

#include <gmock/gmock.h>

#include <cstdio>

namespace {

using hbrc::test::answerChangelistDialog;
using hbrc::test::answerPassword;
using hbrc::test::DialogDriver;

enum class Outcome { CheckOutSucceeds, CheckOutFails, MakeWritable, Cancel, PasswordRefused, DepotUnreachable };
enum class Mode { Interactive, Batch };

struct Row {
    Outcome outcome;
    int assets;
    Mode mode;
};

const char* nameOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::CheckOutSucceeds: return "CheckOutSucceeds";
    case Outcome::CheckOutFails: return "CheckOutFails";
    case Outcome::MakeWritable: return "MakeWritable";
    case Outcome::Cancel: return "Cancel";
    case Outcome::PasswordRefused: return "SessionExpiredPasswordRefused";
    case Outcome::DepotUnreachable: return "DepotUnreachable";
    }
    return "?";
}

bool savesTheEdits(Outcome outcome)
{
    return outcome == Outcome::CheckOutSucceeds || outcome == Outcome::MakeWritable;
}

const QString kBeforeSaving = QStringLiteral("Check Out Before Saving");

class NeverLoseAnEdit : public hbrc::test::SaveHooksFixture, public ::testing::WithParamInterface<Row>
{
protected:
    std::vector<std::string> EditableAssetNames() const override
    {
        std::vector<std::string> names;
        for (int i = 0; i < GetParam().assets; ++i) {
            char name[16];
            std::snprintf(name, sizeof name, "Asset%03d", i);
            names.emplace_back(name);
        }
        return names;
    }

    // Stages the outcome in the depot and the settings; in an interactive run, scripts the user's
    // answers: what they try, then Cancel when the dialog comes back after a failure.
    void Stage(DialogDriver& driver)
    {
        const Row row = GetParam();
        const bool interactive = row.mode == Mode::Interactive;
        auto setStoredAction = [&](int action) {
            host->Preferences().SetIntPref("RevControl.ActionWhenEditingReadOnlyAsset", action, 1);
        };
        switch (row.outcome) {
        case Outcome::CheckOutSucceeds:
            if (interactive)
                driver.expect("check out", answerChangelistDialog(kBeforeSaving, {"Check Out"}));
            break;
        case Outcome::CheckOutFails:
            BobHolds(EditableAssetNames().front());
            if (interactive) {
                driver.expect("check out", answerChangelistDialog(kBeforeSaving, {"Check Out"}));
                driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Ok, QStringLiteral("\nbob\n"));
                driver.expect("asked again", answerChangelistDialog(kBeforeSaving, {"Cancel"}));
            }
            break;
        case Outcome::MakeWritable:
            if (interactive)
                driver.expect("make writable", answerChangelistDialog(kBeforeSaving, {"Make Writable"}));
            else
                setStoredAction(3);
            break;
        case Outcome::Cancel:
            if (interactive)
                driver.expect("cancel", answerChangelistDialog(kBeforeSaving, {"Cancel"}));
            else
                setStoredAction(0);
            break;
        case Outcome::PasswordRefused:
            ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
            if (interactive) {
                driver.expect("check out", answerChangelistDialog(kBeforeSaving, {"Check Out"}));
                driver.expect("password", answerPassword({}, QStringLiteral("Source control session expired. "
                                                                            "Password required to re-connect.")));
                driver.expect("asked again", answerChangelistDialog(kBeforeSaving, {"Cancel"}));
            }
            break;
        case Outcome::DepotUnreachable:
            services.connection->Faults().failNextCalls(1000000, hbrc::revision::code::SessionUnusable,
                                                        "The depot cannot be reached.");
            if (interactive) {
                driver.expect("check out", answerChangelistDialog(kBeforeSaving, {"Check Out"}));
                driver.expectMessageBox(QStringLiteral("Connection Error"), QMessageBox::Ok,
                                        QStringLiteral("The depot cannot be reached."));
                driver.expect("asked again", answerChangelistDialog(kBeforeSaving, {"Cancel"}));
            }
            break;
        }
    }
};

TEST_P(NeverLoseAnEdit, EveryEditIsOnDiskOrStillInMemory)
{
    const Row row = GetParam();
    std::unique_ptr<QWidget> window;
    if (row.mode == Mode::Interactive)
        window = std::make_unique<QWidget>();
    const std::vector<std::string> assets = EditableAssetNames();
    for (const std::string& asset : assets)
        Edit(asset, "edited " + asset);

    DialogDriver driver;
    Stage(driver);
    if (HasFatalFailure())
        return;
    const hbrc::host::SaveReport report = Save();
    services.connection->Faults().clear();

    ExpectDriverFinished(driver);
    if (row.mode == Mode::Batch)
        EXPECT_TRUE(driver.seenTitles().isEmpty()) << driver.seenTitles().join(',').toStdString();
    else
        EXPECT_EQ(driver.seenTitles().size(), driver.answered()) << driver.seenTitles().join(',').toStdString();

    int onDisk = 0;
    int inMemory = 0;
    for (const std::string& asset : assets) {
        const std::string value = "edited " + asset;
        const bool saved = OnDiskWith(asset, value);
        const bool kept = DirtyInMemoryWith(asset, value);
        EXPECT_TRUE(saved || kept) << asset << " lost its edit";
        // Saved edits went to writable files; kept ones left the files read-only and untouched.
        EXPECT_THAT(Writable(FilesOf(asset)), ::testing::Each(saved)) << asset;
        onDisk += saved;
        inMemory += kept;
    }
    const int expectedOnDisk = savesTheEdits(row.outcome) ? row.assets : 0;
    EXPECT_EQ(onDisk, expectedOnDisk);
    EXPECT_EQ(inMemory, row.assets - expectedOnDisk);
    EXPECT_EQ(report.cancelled, !savesTheEdits(row.outcome));
}

std::vector<Row> allRows()
{
    std::vector<Row> rows;
    for (Outcome outcome : {Outcome::CheckOutSucceeds, Outcome::CheckOutFails, Outcome::MakeWritable, Outcome::Cancel,
                            Outcome::PasswordRefused, Outcome::DepotUnreachable})
        for (int assets : {1, 100})
            for (Mode mode : {Mode::Interactive, Mode::Batch})
                rows.push_back({outcome, assets, mode});
    return rows;
}

INSTANTIATE_TEST_SUITE_P(Matrix, NeverLoseAnEdit, ::testing::ValuesIn(allRows()), [](const auto& info) {
    return std::string(nameOf(info.param.outcome)) + "_" + std::to_string(info.param.assets) + "Assets_" +
           (info.param.mode == Mode::Interactive ? "Interactive" : "Batch");
});

}  // namespace
