// Showing a retryable failure: a critical box with Ok and Retry when a user is present, the host
// log otherwise; and how long a batch run waits before it tries a failed operation again.
#include "errorreporting.h"
#include "retrybackoff.h"

#include <dialogdriver.h>

#include <hbrchost/logcapture.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QWidget>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

using hbrc::internal::HandleError;
using hbrc::test::DialogDriver;

namespace {

TEST(HandleErrorInteractive, ShowsACriticalBoxAndRetriesOnlyOnRetry)
{
    QWidget mainWindow;  // makes the session interactive
    for (const auto& [button, retry] : {std::pair(QMessageBox::Retry, true), std::pair(QMessageBox::Ok, false)}) {
        DialogDriver driver;
        driver.expect("error box", [button = button](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(box->windowTitle(), "Revert Error");
            EXPECT_EQ(box->text(), "Cannot revert\nbecause some of the files are not in the database\n");
            EXPECT_EQ(box->icon(), QMessageBox::Critical);
            EXPECT_EQ(box->standardButtons(), QMessageBox::Ok | QMessageBox::Retry);
            EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::Retry));
            EXPECT_EQ(box->escapeButton(), box->button(QMessageBox::Ok));
            EXPECT_EQ(box->parentWidget(), nullptr);
            box->button(button)->click();
        });
        EXPECT_EQ(HandleError("Revert Error", "Cannot revert\nbecause some of the files are not in the database\n"),
                  retry);
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
    }
}

TEST(HandleErrorBatch, LogsTheTitleAndEachLineAsAnErrorAndDoesNotRetry)
{
    ASSERT_TRUE(QApplication::topLevelWidgets().isEmpty());
    hbrc::host::LogCapture log;
    DialogDriver driver;  // fails the test if any box appears
    EXPECT_FALSE(HandleError("Mark-For-Delete Error", "Cannot mark-for-delete\n\nbob\namy\n"));
    ASSERT_EQ(log.Entries().size(), 1u);
    EXPECT_EQ(log.Entries().front().type, 2);
    EXPECT_EQ(log.Entries().front().text, "Mark-For-Delete Error:\n  Cannot mark-for-delete\n  bob\n  amy");
    EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
}

TEST(BatchRetry, WaitsHalfASecondThenTwiceAsLongUpToThirtySeconds)
{
    using namespace std::chrono_literals;
    hbrc::internal::RetryBackoff backoff;
    std::vector<std::chrono::milliseconds> waits;
    for (int attempt = 0; attempt < 9; ++attempt)
        waits.push_back(backoff.Next());
    EXPECT_THAT(waits, ::testing::ElementsAre(500ms, 1s, 2s, 4s, 8s, 16s, 30s, 30s, 30s));
}

}  // namespace
