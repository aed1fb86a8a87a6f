// Never lose an edit: whatever happens to the check-out before a save, and whatever the user
// answers, every edited read-only asset ends up on disk with its edit (its files, the first asset's
// external file included, writable) or still dirty in memory with it (its files untouched). A batch
// save shows no dialog (a refused check-out goes to the log); an interactive save asks once per
// answer the user gives.
#include "savehooksfixture.h"

#include <hbrchost/logcapture.h>

#include <QMessageBox>

#include <cstdio>

namespace {

using namespace hbrc::test;

enum class Outcome { CheckOutSucceeds, CheckOutFails, MakeWritable, Cancel, PasswordRefused, DepotUnreachable };
const char* const kOutcomeNames[] = {"CheckOutSucceeds", "CheckOutFails", "MakeWritable", "Cancel",
                                     "SessionExpiredPasswordRefused", "DepotUnreachable"};

struct Row {
    Outcome outcome;
    int assets;
    bool interactive;
};

const QString kBeforeSaving = QStringLiteral("Check Out Before Saving");

class NeverLoseAnEdit : public SaveHooksFixture, public ::testing::WithParamInterface<Row>
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
    void Stage()
    {
        const Row row = GetParam();
        auto answer = [&](const QString& button) {
            if (row.interactive)
                driver.expect(button, answerChangelistDialog(kBeforeSaving, {button}));
        };
        switch (row.outcome) {
        case Outcome::CheckOutSucceeds: answer("Check Out"); break;
        case Outcome::CheckOutFails:
            BobHolds(EditableAssetNames().front());
            answer("Check Out");
            if (row.interactive)
                driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Ok, QStringLiteral("\nbob\n"));
            answer("Cancel");
            break;
        case Outcome::MakeWritable:
        case Outcome::Cancel:
            if (!row.interactive)
                StoreAction(row.outcome == Outcome::Cancel ? kNone : kMakeWritable);
            answer(row.outcome == Outcome::Cancel ? "Cancel" : "Make Writable");
            break;
        case Outcome::PasswordRefused:
            ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
            answer("Check Out");
            if (row.interactive)
                driver.expect("password", answerPassword({}));
            answer("Cancel");
            break;
        case Outcome::DepotUnreachable:
            services.connection->Faults().failNextCalls(1000000, hbrc::revision::code::SessionUnusable,
                                                        "The depot cannot be reached.");
            answer("Check Out");
            if (row.interactive)
                driver.expectMessageBox(QStringLiteral("Connection Error"), QMessageBox::Ok,
                                        QStringLiteral("The depot cannot be reached."));
            answer("Cancel");
            break;
        }
    }
};

TEST_P(NeverLoseAnEdit, EveryEditIsOnDiskOrStillInMemory)
{
    const Row row = GetParam();
    if (!row.interactive)
        window.reset();
    const std::vector<std::string> assets = EditableAssetNames();
    for (const std::string& asset : assets)
        Edit(asset, "edited " + asset);

    Stage();
    if (HasFatalFailure())
        return;
    hbrc::host::LogCapture log;
    const hbrc::host::SaveReport report = Save();
    services.connection->Faults().clear();
    ExpectDriverFinished();  // also fails on a dialog not expected
    if (row.outcome == Outcome::CheckOutFails && !row.interactive) {
        // What a batch cannot ask goes to the log.
        const std::vector<std::string> errors = log.TextsOfType(Log::eError);
        ASSERT_FALSE(errors.empty());
        EXPECT_EQ(errors.back().rfind("Cannot checkout the assets\n", 0), 0u) << errors.back();
        EXPECT_NE(errors.back().find("\nDetails:\nFiles:\n"), std::string::npos) << errors.back();
    }

    const bool savesTheEdits = row.outcome == Outcome::CheckOutSucceeds || row.outcome == Outcome::MakeWritable;
    int onDisk = 0;
    int inMemory = 0;
    for (const std::string& asset : assets) {
        const std::string value = "edited " + asset;
        const bool saved = OnDiskWith(asset, value);
        const bool kept = DirtyInMemoryWith(asset, value);
        EXPECT_TRUE(saved || kept) << asset << " lost its edit";
        EXPECT_THAT(Writable(FilesOf(asset)), ::testing::Each(saved)) << asset;
        onDisk += saved;
        inMemory += kept;
    }
    EXPECT_EQ(onDisk, savesTheEdits ? row.assets : 0);
    EXPECT_EQ(inMemory, savesTheEdits ? 0 : row.assets);
    EXPECT_EQ(report.cancelled, !savesTheEdits);
}

std::vector<Row> allRows()
{
    std::vector<Row> rows;
    for (int outcome = 0; outcome < 6; ++outcome)
        for (int assets : {1, 100})
            for (bool interactive : {true, false})
                rows.push_back({Outcome(outcome), assets, interactive});
    return rows;
}

INSTANTIATE_TEST_SUITE_P(Matrix, NeverLoseAnEdit, ::testing::ValuesIn(allRows()), [](const auto& info) {
    return std::string(kOutcomeNames[int(info.param.outcome)]) + "_" + std::to_string(info.param.assets) + "Assets_" +
           (info.param.interactive ? "Interactive" : "Batch");
});

}  // namespace
