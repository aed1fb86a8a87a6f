// Re-opening an expired session: the empty-password attempt, the password loop through the real
// dialog, and every way out of it.
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
using hbrc::test::FakeHost;
using hbrc::test::FakeUserParameters;
using ::testing::_;
using ::testing::DoAll;
using ::testing::Invoke;
using ::testing::Return;
using ::testing::SetArgReferee;

namespace {

using Session = KELPtr<kel4::IUserParameters>;

const char* const kReason = "Source control session expired. Password required to re-connect.";
const std::string kUser = "ann";
const std::string kWorkspace = "ann-ws";
const std::string kServer = "depot:1666";

bool waitCursorShown()
{
    return QApplication::overrideCursor() && QApplication::overrideCursor()->shape() == Qt::WaitCursor;
}

// A log-in answer: the session (null for a failure) and the service's message. It also checks
// that the wait cursor is up during the call.
auto logInAnswer(Session session, const std::string& message = {})
{
    return Invoke([session, message](const std::string&, const std::string&, const std::string&, const std::string&,
                                     std::string& errorText) {
        EXPECT_TRUE(waitCursorShown());
        errorText = message;
        return session;
    });
}

// Checks that the password dialog starts empty with OK disabled under the reason, then types
// password and presses OK (or, with an empty password, Cancel).
DialogDriver::Handler answerPasswordDialog(const QString& password)
{
    return [password](QWidget* w) {
        auto* dialog = qobject_cast<PasswordRequiredDialog*>(w);
        ASSERT_NE(dialog, nullptr) << w->metaObject()->className();
        EXPECT_FALSE(waitCursorShown());
        auto* label = qobject_cast<QLabel*>(dialog->layout()->itemAt(0)->widget());
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text(), kReason);
        auto* field = dialog->findChild<QLineEdit*>();
        QPushButton* ok = nullptr;
        QPushButton* cancel = nullptr;
        for (QPushButton* button : dialog->findChildren<QPushButton*>())
            (button->text() == "Ok" ? ok : cancel) = button;
        ASSERT_TRUE(field && ok && cancel);
        EXPECT_TRUE(field->text().isEmpty());
        EXPECT_FALSE(ok->isEnabled());
        if (password.isEmpty()) {
            QTest::mouseClick(cancel, Qt::LeftButton);
            return;
        }
        QTest::keyClicks(field, password);
        QTest::mouseClick(ok, Qt::LeftButton);
    };
}

class ReconnectTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ON_CALL(*host.fileVersionControl, CreateUserParameters(_, _, _, _, _)).WillByDefault(Return(session));
        host.system.RegisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName(), settings.get());
        settings->SetAccountProperties(kUser, kServer, kWorkspace);
    }

    bool reconnect() { return helper.AttemptReconnect(host.dataControl, "", kReason); }
    void expectLogIn(const std::string& password, Session session, const std::string& message = {})
    {
        EXPECT_CALL(*host.fileVersionControl, Login(kUser, password, kWorkspace, kServer, _))
            .WillOnce(logInAnswer(std::move(session), message))
            .RetiresOnSaturation();
    }
    void expectFinished() { EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString(); }

    FakeHost host;
    std::unique_ptr<CHBRevisionControlPropertiesMgr> settings{new CHBRevisionControlPropertiesMgr};
    CRevisionControlUIHelper helper;
    std::unique_ptr<QWidget> mainWindow = std::make_unique<QWidget>();  // makes the session interactive
    Session session{new FakeUserParameters(kUser, kWorkspace, kServer, true)};
    DialogDriver driver;
};

TEST_F(ReconnectTest, AServerThatAcceptsTheEmptyPasswordGetsNoDialog)
{
    expectLogIn("", session);
    EXPECT_CALL(*host.dataControl, SetSession(session));
    EXPECT_TRUE(reconnect());
    EXPECT_FALSE(waitCursorShown());
    expectFinished();
}

TEST_F(ReconnectTest, AWrongPasswordBringsTheDialogBackEmpty)
{
    hbrc::host::LogCapture log;
    hbrc::host::DebugOutputCapture debug;
    ::testing::InSequence order;
    expectLogIn("", nullptr, "login refused: Invalid password (try again)");
    expectLogIn("wrong", nullptr, "Invalid password for ann");
    expectLogIn("s3cret", session);
    EXPECT_CALL(*host.dataControl, SetSession(session));
    driver.expect("password dialog", answerPasswordDialog("wrong"));
    driver.expectMessageBox("Connection Error", QMessageBox::Ok, "Invalid password for ann");
    driver.expect("password dialog again", answerPasswordDialog("s3cret"));

    EXPECT_TRUE(reconnect());
    expectFinished();
    for (const auto& entry : log.Entries())
        EXPECT_EQ(entry.text.find("s3cret"), std::string::npos);
    for (const std::string& line : debug.Lines())
        EXPECT_EQ(line.find("s3cret"), std::string::npos);
}

TEST_F(ReconnectTest, CancelGivesUpWithoutAFurtherBox)
{
    expectLogIn("", nullptr, "Invalid password");
    EXPECT_CALL(*host.dataControl, SetSession(_)).Times(0);
    driver.expect("password dialog", answerPasswordDialog(QString()));
    EXPECT_FALSE(reconnect());
    expectFinished();
    EXPECT_EQ(driver.answered(), 1);
}

TEST_F(ReconnectTest, AnotherFailureAfterAPasswordShowsItsMessageOnceAndGivesUp)
{
    ::testing::InSequence order;
    expectLogIn("", nullptr, "Invalid password");
    expectLogIn("pw", nullptr, "Connect to server failed");
    EXPECT_CALL(*host.dataControl, SetSession(_)).Times(0);
    driver.expect("password dialog", answerPasswordDialog("pw"));
    driver.expectMessageBox("Connection Error", QMessageBox::Ok, "Connect to server failed");
    EXPECT_FALSE(reconnect());
    expectFinished();
    EXPECT_EQ(driver.seenTitles().size(), 2);
}

// A first attempt that fails for any reason but a wrong password shows the service's message
// and asks for no password. The test for "Invalid password" is case-sensitive.
class FirstAttemptFailure : public ReconnectTest, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(FirstAttemptFailure, ShowsTheServicesMessageAndNoDialog)
{
    expectLogIn("", nullptr, GetParam());
    EXPECT_CALL(*host.dataControl, SetSession(_)).Times(0);
    driver.expectMessageBox("Connection Error", QMessageBox::Ok, GetParam());
    EXPECT_FALSE(reconnect());
    expectFinished();
    EXPECT_EQ(driver.seenTitles(), QStringList{"Connection Error"});
}

INSTANTIATE_TEST_SUITE_P(Messages, FirstAttemptFailure,
                         ::testing::Values("Connect to server failed; check the server address.",
                                           "invalid password"));

TEST_F(ReconnectTest, MissingSettingsCannotConnect)
{
    host.system.UnregisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName());
    EXPECT_CALL(*host.fileVersionControl, Login(_, _, _, _, _)).Times(0);
    driver.expectMessageBox("Connection Error", QMessageBox::Ok, "Cannot connect to version control");
    EXPECT_FALSE(reconnect());
    expectFinished();
}

TEST_F(ReconnectTest, AMissingDatabaseProxyGivesUpSilently)
{
    host.system.UnregisterSingleton(nrk::fwk::IKELDBProxy::GetSingletonName());
    EXPECT_CALL(*host.fileVersionControl, Login(_, _, _, _, _)).Times(0);
    EXPECT_FALSE(reconnect());
    expectFinished();
}

TEST_F(ReconnectTest, BatchGivesUpAtOnceTouchingNothing)
{
    mainWindow.reset();
    host.system.UnregisterSingleton(CHBRevisionControlPropertiesMgr::GetSingletonName());
    EXPECT_CALL(*host.fileVersionControl, Login(_, _, _, _, _)).Times(0);
    EXPECT_CALL(*host.dataControl, SetSession(_)).Times(0);
    EXPECT_FALSE(reconnect());
    expectFinished();
    EXPECT_TRUE(driver.seenTitles().isEmpty());
}

}  // namespace
