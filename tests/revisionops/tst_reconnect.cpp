// Re-opening an expired session: the password dialog on its own, then the empty-password attempt,
// the password loop through the real dialog (which shows empty each time), and every way out of it.
#include "hbpasswordrequireddialog.h"
#include "hbrevisioncontrolpropertiesmgr.h"
#include "revisioncontroluihelper.h"

#include <dialogdriver.h>
#include <hostfakes.h>

#include <hbrchost/debugoutputcapture.h>
#include <hbrchost/logcapture.h>

#include <QApplication>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using hbrc::test::DialogDriver;
using hbrc::test::FakeUserParameters;
using ::testing::_;

namespace {

using Session = KELPtr<kel4::IUserParameters>;

const char* const kReason = "Source control session expired. Password required to re-connect.";
const char* const kSettings = CHBRevisionControlPropertiesMgr::GetSingletonName();
const std::string kUser = "ann";
const std::string kWorkspace = "ann-ws";
const std::string kServer = "depot:1666";

bool waitCursorShown()
{
    return QApplication::overrideCursor() && QApplication::overrideCursor()->shape() == Qt::WaitCursor;
}

QString labelAt(const QDialog& dialog, int index)
{
    auto* label = qobject_cast<QLabel*>(dialog.layout()->itemAt(index)->widget());
    return label ? label->text() : QString();
}

// Checks that the password dialog starts empty with OK disabled under the reason, then types
// password and presses OK (or, with an empty password, Cancel).
DialogDriver::Handler answerPasswordDialog(const QString& password)
{
    return [password](QWidget* w) {
        auto* dialog = qobject_cast<PasswordRequiredDialog*>(w);
        ASSERT_NE(dialog, nullptr) << w->metaObject()->className();
        EXPECT_FALSE(waitCursorShown());
        EXPECT_EQ(labelAt(*dialog, 0), kReason);
        auto* field = dialog->findChild<QLineEdit*>();
        const auto buttons = dialog->findChildren<QPushButton*>();  // Ok, Cancel
        ASSERT_TRUE(field && buttons.size() == 2);
        EXPECT_TRUE(field->text().isEmpty());
        EXPECT_FALSE(buttons[0]->isEnabled());
        QTest::keyClicks(field, password);
        QTest::mouseClick(buttons[password.isEmpty() ? 1 : 0], Qt::LeftButton);
    };
}

TEST(PasswordDialog, MasksThePasswordUnderItsReasonAndOkFollowsWhatTheUserTypes)
{
    PasswordRequiredDialog dialog(nullptr);
    auto* field = dialog.findChild<QLineEdit*>();
    const QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();  // Ok, Cancel
    ASSERT_TRUE(field && buttons.size() == 2);
    QPushButton* ok = buttons[0];
    EXPECT_EQ(field->echoMode(), QLineEdit::Password);
    dialog.SetReason(kReason);
    EXPECT_EQ(labelAt(dialog, 0), kReason);
    EXPECT_EQ(labelAt(dialog, 1), "Please enter the password");

    dialog.show();
    EXPECT_FALSE(ok->isEnabled());
    QTest::keyClicks(field, "pw");
    EXPECT_TRUE(ok->isEnabled());
    EXPECT_TRUE(ok->isDefault());
    QTest::keyClick(field, Qt::Key_Backspace);
    EXPECT_TRUE(ok->isEnabled());
    QTest::keyClick(field, Qt::Key_Backspace);
    EXPECT_FALSE(ok->isEnabled());
    field->setText("set by program");  // not an edit by the user
    EXPECT_FALSE(ok->isEnabled());
}

// The first attempt logs in with the empty password (firstAnswer: the server's refusal, "" for a
// session, nullptr when no log-in may happen at all). Refused as an invalid password (the test is
// case-sensitive), the password loop follows: each attempt types a password (none: Cancel) that
// the server answers with a message (none: a session). Any other first failure is shown once.
struct ReconnectCase {
    const char* name;
    const char* firstAnswer;
    std::vector<std::pair<QString, std::string>> attempts;
    bool connects;
    const char* box = nullptr;      // the one "Connection Error" before any password dialog
    const char* missing = nullptr;  // singleton taken from the host
    bool batch = false;
};

class Reconnect : public ::testing::TestWithParam<ReconnectCase>
{
protected:
    void SetUp() override
    {
        host.system.RegisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName(), settings.get());
        settings->SetAccountProperties(kUser, kServer, kWorkspace);
    }

    bool reconnect() { return helper.AttemptReconnect(host.dataControl, "", kReason); }
    // The log-in with this password answers the session (null: a failure) and the message; the
    // wait cursor is up during the call.
    void expectLogIn(const std::string& password, Session answer, const std::string& message = {})
    {
        EXPECT_CALL(*host.fileVersionControl, Login(kUser, password, kWorkspace, kServer, _))
            .WillOnce([answer, message](auto&&, auto&&, auto&&, auto&&, std::string& errorText) {
                EXPECT_TRUE(waitCursorShown());
                errorText = message;
                return answer;
            })
            .RetiresOnSaturation();
    }

    hbrc::test::FakeHost host;
    std::unique_ptr<CHBRevisionControlPropertiesMgr> settings{new CHBRevisionControlPropertiesMgr};
    CRevisionControlUIHelper helper;
    std::unique_ptr<QWidget> mainWindow = std::make_unique<QWidget>();  // makes the session interactive
    Session session{new FakeUserParameters(kUser, kWorkspace, kServer, true)};
    DialogDriver driver;
};

TEST_P(Reconnect, AsksAgainOnlyAfterAnInvalidPasswordShowsAtMostOneBoxAndNeverLogsThePassword)
{
    const ReconnectCase& c = GetParam();
    if (c.batch)
        mainWindow.reset();
    if (c.missing)
        host.system.UnregisterSingleton(c.missing);
    hbrc::host::LogCapture log;
    hbrc::host::DebugOutputCapture debug;
    EXPECT_CALL(*host.fileVersionControl, Login(_, _, _, _, _)).Times(0);
    EXPECT_CALL(*host.dataControl, SetSession(_)).Times(0);
    if (c.connects)
        EXPECT_CALL(*host.dataControl, SetSession(session));
    ::testing::InSequence order;
    if (c.firstAnswer)
        expectLogIn("", *c.firstAnswer ? nullptr : session, c.firstAnswer);
    if (c.box)
        driver.expectMessageBox("Connection Error", QMessageBox::Ok, c.box);
    for (const auto& [password, answer] : c.attempts) {
        driver.expect("password dialog", answerPasswordDialog(password));
        if (password.isEmpty())
            break;
        expectLogIn(password.toStdString(), answer.empty() ? session : nullptr, answer);
        if (!answer.empty())
            driver.expectMessageBox("Connection Error", QMessageBox::Ok, QString::fromStdString(answer));
    }

    EXPECT_EQ(reconnect(), c.connects);
    EXPECT_FALSE(waitCursorShown());
    EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
    std::string written;
    for (const auto& entry : log.Entries())
        written += entry.text;
    for (const std::string& line : debug.Lines())
        written += line;
    EXPECT_EQ(written.find("s3cret"), std::string::npos) << written;
}

const char* const kInvalid = "login refused: Invalid password (try again)";
const char* const kServerDown = "Connect to server failed; check the server address.";

INSTANTIATE_TEST_SUITE_P(
    Rows, Reconnect,
    ::testing::Values(
        ReconnectCase{"AServerThatAcceptsTheEmptyPasswordGetsNoDialog", "", {}, true},
        ReconnectCase{"AWrongPasswordBringsTheDialogBackEmpty", kInvalid,
                      {{"wrong", "Invalid password for ann"}, {"s3cret", ""}}, true},
        ReconnectCase{"CancelGivesUpWithoutAFurtherBox", kInvalid, {{"", ""}}, false},
        ReconnectCase{"AnotherFailureIsShownOnceAndGivesUp", kInvalid, {{"s3cret", "Connect to server failed"}}, false},
        ReconnectCase{"ServerUnreachable", kServerDown, {}, false, kServerDown},
        ReconnectCase{"LowerCaseInvalidPassword", "invalid password", {}, false, "invalid password"},
        ReconnectCase{"MissingSettings", nullptr, {}, false, "Cannot connect to version control", kSettings},
        ReconnectCase{"MissingDatabaseProxy", nullptr, {}, false, nullptr, "KELDBProxy"},
        ReconnectCase{"BatchTouchesNothing", nullptr, {}, false, nullptr, kSettings, true}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
