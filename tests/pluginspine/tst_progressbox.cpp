// The plug-in's progress box as the revision-control services' time-out delegate, on alice's host
// over the embedded depot and over svnserve: a slow operation shows it only while a window is visible, calls from
// inside it are turned away, it closes by itself when the operation ends, and Cancel aborts the
// operation, which then changes nothing.
#include "revisioncontroluihelper.h"

#include <dialogdriver.h>
#include <serverhostfixture.h>

#include <kel4/revisionstatus.h>

#include <QAbstractButton>
#include <QMessageBox>

using hbrc::test::DialogDriver;
using namespace std::chrono_literals;

namespace {

class ProgressBox : public ServerFixture
{
protected:
    void SetUp() override
    {
        ServerHostFixture::SetUp();
        helper.Init();
        helper.OnInitialConnectionToDB();  // the host's initial connection came before the helper
    }
    void TearDown() override
    {
        helper.Term();
        ServerHostFixture::TearDown();
    }

    int CheckOut(const char* asset)
    {
        error.clear();
        return DataControl()->CheckOut({Asset(asset)}, true, kPersistence, "", error).GetCode();
    }

    CRevisionControlUIHelper helper;
    std::string error;
};
INSTANTIATE_TEST_SUITE_P(Servers, ProgressBox, ::testing::Values(ServerKind::EmbeddedDepot, ServerKind::SvnServe),
                         ServerKindName);

TEST_P(ProgressBox, ShownForASlowOperationOnlyWithAWindowClosedWhenItEndsAndCancelAbortsIt)
{
    // Each round trip of the check-out takes latency; the box may show at once. Any other question
    // stays within the threshold.
    const auto checkOutSlowly = [&](const char* asset, std::chrono::milliseconds latency) {
        services.connection->Runner().SetThreshold(0ms);
        services.connection->Faults().setLatency(latency);
        const int code = CheckOut(asset);
        services.connection->Faults().clear();
        services.connection->Runner().SetThreshold(10min);
        return code;
    };
    DialogDriver driver;  // a box nobody expects is recorded as a failure
    EXPECT_EQ(checkOutSlowly("Rock", 50ms), 0) << error;
    EXPECT_TRUE(driver.finished()) << "no window, nobody to answer: no box";

    QWidget window;
    window.show();
    kelResult nested;
    std::string nestedError;
    driver.expect("progress box, closed when the operation ends", [&](QWidget* box) {
        EXPECT_EQ(qobject_cast<QMessageBox*>(box)->text(),
                  QStringLiteral("Perforce Operation in Progress, press Cancel to abort"));
        kel4::List<std::string> changelists;
        nested = DataControl()->GetPendingChangeLists(changelists, nestedError);
        EXPECT_TRUE(DialogDriver::waitUntil([box] { return !box->isVisible(); }));
    });
    EXPECT_EQ(checkOutSlowly("Sky", 50ms), 0) << error;
    EXPECT_EQ(StatusOf("Sky"), kel4::eStatusCheckedOut);
    EXPECT_EQ(nested.GetCode(), kel4::kResultFailed);
    EXPECT_NE(nestedError.find("still running"), std::string::npos) << nestedError;

    const unsigned treeBefore = StatusOf("Tree");
    const bool treeWasReadOnly = DataControl()->IsReadOnly(Asset("Tree"), true, kPersistence);
    driver.expect("progress box, Cancel pressed", [](QWidget* box) {
        qobject_cast<QMessageBox*>(box)->button(QMessageBox::Cancel)->click();
    });
    // Far longer than any test run: only the cancel can end the round trip early.
    EXPECT_EQ(checkOutSlowly("Tree", 10min), kel4::kResultFailed);
    EXPECT_NE(error.find("cancelled"), std::string::npos) << error;
    EXPECT_EQ(StatusOf("Tree"), treeBefore);
    EXPECT_EQ(DataControl()->IsReadOnly(Asset("Tree"), true, kPersistence), treeWasReadOnly);

    services.connection->Faults().setLatency(50ms);
    EXPECT_EQ(CheckOut("Tree"), 0) << error << ": within the threshold, no box";
    EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
}

}  // namespace
