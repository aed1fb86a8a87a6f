// Showing a retryable failure: a critical box with Ok and Retry when a user is present, the host
// log otherwise.
#include "errorreporting.h"

#include <dialogdriver.h>

#include <hbrchost/logcapture.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

using hbrc::internal::HandleError;
using hbrc::test::DialogDriver;

namespace {

struct AnswerCase {
    const char* name;
    std::function<void(QMessageBox*)> answer;
    bool retry;
};

class HandleErrorInteractive : public ::testing::TestWithParam<AnswerCase>
{
protected:
    QWidget mainWindow;  // makes the session interactive
};

TEST_P(HandleErrorInteractive, ShowsACriticalBoxAndRetriesOnlyOnRetry)
{
    DialogDriver driver;
    driver.expect("error box", [](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Revert Error");
        EXPECT_EQ(box->text(), "Cannot revert\nbecause some of the files are not in the database\n");
        EXPECT_EQ(box->icon(), QMessageBox::Critical);
        EXPECT_EQ(box->standardButtons(), QMessageBox::Ok | QMessageBox::Retry);
        EXPECT_EQ(box->defaultButton(), box->button(QMessageBox::Retry));
        EXPECT_EQ(box->escapeButton(), box->button(QMessageBox::Ok));
        EXPECT_EQ(box->parentWidget(), nullptr);
        GetParam().answer(box);
    });
    EXPECT_EQ(HandleError("Revert Error", "Cannot revert\nbecause some of the files are not in the database\n"),
              GetParam().retry);
    EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Answers, HandleErrorInteractive,
    ::testing::Values(AnswerCase{"Retry", [](QMessageBox* b) { b->button(QMessageBox::Retry)->click(); }, true},
                      AnswerCase{"Ok", [](QMessageBox* b) { b->button(QMessageBox::Ok)->click(); }, false},
                      AnswerCase{"EnterPressesTheDefault", [](QMessageBox* b) { QTest::keyClick(b, Qt::Key_Return); },
                                 true},
                      AnswerCase{"EscapeMeansOk", [](QMessageBox* b) { QTest::keyClick(b, Qt::Key_Escape); }, false}),
    [](const auto& info) { return std::string(info.param.name); });

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

}  // namespace
