// alice's day with her studio's session, offscreen on a demo depot: the real window and plug-in,
// the ticket store that hbdepot shares, the Log In dialog answered from the keyboard.
#include "assetbrowsermodel.h"
#include "demodepot.h"
#include "logdock.h"
#include "mainwindow.h"
#include "studiosession.h"

#include "windowprobe.h"

#include <dialogdriver.h>

#include <depot/depot.h>
#include <depot/ticketstore.h>
#include <hbrcdatamodel/workspace.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <log/log.h>
#include <qtextention/qfunctoraction.h>

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

using namespace hbrc::studio;
using hbrc::depot::TicketStore;
using namespace hbrc::test;

namespace {

class StudioSessionDay : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        qputenv("HBDEPOT_TICKETS", m_dir.filePath(QStringLiteral("tickets")).toLocal8Bit());
        Log::Singleton::Instance().SetStderrEnabled(false);
        depot = std::make_unique<DemoServer>(m_dir.path());
        SeedSampleWorkspace(*depot);
    }
    void TearDown() override
    {
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
        window.reset();
        session.reset();
        Log::Singleton::Instance().SetStderrEnabled(true);
    }
    // A start of the studio on alice's workspace, as after a restart; password: one known for
    // this run (as after "Create a demo depot").
    void start(const char* password = "")
    {
        window.reset();
        session = std::make_unique<StudioSession>(m_dir.filePath(QStringLiteral("preferences.ini")));
        std::string error;
        ASSERT_TRUE(session->start(error)) << error;
        session->storeAccount({depot->path(), "alice", depot->workspace("alice"), {}});
        session->setPassword(password);
        window = std::make_unique<MainWindow>(*session);
        window->show();
        ASSERT_TRUE(window->openWorkspace(depot->folder("alice")));
        ASSERT_TRUE(WaitForStatus(*window));
    }
    QString sessionLabel() const { return SessionLabel(*window); }
    QString rockStatus() const
    {
        return AssetCell(*window, session->currentWorkspace()->FindAsset("Rock"), AssetBrowserModel::StatusColumn);
    }
    std::string keptTicket() const
    {
        const auto kept = TicketStore().find(TicketStore::depotKey(depot->path()), "alice");
        return kept ? kept->ticket : std::string();
    }
    bool logged(const QString& line) const { return Logged(*window, line); }
    void refresh()
    {
        window->refreshStatus();
        ASSERT_TRUE(WaitForStatus(*window));
    }

    QTemporaryDir m_dir;
    std::unique_ptr<DemoServer> depot;
    std::unique_ptr<StudioSession> session;
    std::unique_ptr<MainWindow> window;
    DialogDriver driver;
};

TEST_F(StudioSessionDay, LogsInWithAKeptTicketOrTheDialogAndTellsTheSessionInTheStatusBar)
{
    // A ticket kept as "hbdepot login" keeps it: the studio logs in with it, no dialog, and turns
    // revision control on although the settings' default is off.
    hbrc::depot::Depot terminal(depot->path());
    std::string ticket;
    ASSERT_TRUE(terminal.login("alice", "alice-pw", depot->workspace("alice"), ticket).ok());
    TicketStore().save(TicketStore::depotKey(depot->path()), "alice", {depot->workspace("alice"), ticket});
    start();
    EXPECT_EQ(sessionLabel(), "Session: logged in as alice");
    EXPECT_EQ(rockStatus(), "up to date");
    bool revisionControl = false;
    EXPECT_TRUE(session->settings()->GetUseSourceDataControl(revisionControl) && revisionControl);

    // Log Out ends the depot's session and forgets the kept ticket: "hbdepot" is logged out too.
    window->action(QStringLiteral("logOut"))->trigger();
    EXPECT_EQ(sessionLabel(), "Session: not logged in");
    EXPECT_EQ(rockStatus(), "not logged in");
    EXPECT_EQ(keptTicket(), "");
    std::string user, workspace;
    EXPECT_LT(terminal.session(ticket, user, workspace).code, 0);

    // Without a kept ticket the Log In dialog asks; OK waits for a password; "Keep me logged in".
    driver.expect(QStringLiteral("Log In"), [](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), "Log In");
        auto* password = dialog->findChild<QLineEdit*>(QStringLiteral("password"));
        QPushButton* ok = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        ASSERT_TRUE(password && ok);
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
        EXPECT_TRUE(password->hasFocus()) << "the user name is known: the password is asked";
        EXPECT_FALSE(ok->isEnabled());
        QTest::keyClicks(password, QStringLiteral("alice-pw"));
        EXPECT_TRUE(ok->isEnabled());
        QTest::keyClick(password, Qt::Key_Tab);
        QWidget* keep = QApplication::focusWidget();
        ASSERT_EQ(keep, dialog->findChild<QCheckBox*>(QStringLiteral("keepLoggedIn")));
        QTest::keyClick(keep, Qt::Key_Space);
        QTest::keyClick(keep, Qt::Key_Return);
    });
    window->closeWorkspace();
    start();
    EXPECT_EQ(sessionLabel(), "Session: logged in as alice");
    EXPECT_NE(keptTicket(), "") << "kept for the next start and for hbdepot";
    for (const QString& file : {QStringLiteral("preferences.ini"), QStringLiteral("tickets")}) {
        QFile kept(m_dir.filePath(file));
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
        EXPECT_FALSE(kept.readAll().contains("alice-pw")) << "never the password";
    }

    // The next start needs no dialog and has the window's last size; an expired session shows.
    window->resize(900, 640);
    window->close();
    start();
    EXPECT_EQ(sessionLabel(), "Session: logged in as alice");
    EXPECT_EQ(window->size(), QSize(900, 640));
    hbrc::host::RevisionControlServices services = session->services();
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    refresh();
    EXPECT_EQ(sessionLabel(), "Session: expired");
}

// The user's own "off" holds on the next start; while it is off the window says so, and a save
// names who holds the read-only files it would make writable.
TEST_F(StudioSessionDay, RevisionControlTurnedOffByTheUserStaysOffAndTheSaveNamesTheHolder)
{
    const std::string ticket = depot->bobTicket();
    const std::string rock = depot->folderPath("bob") + "/Rock.kel";
    ASSERT_TRUE(depot->bob().edit(ticket, {rock}, "").ok());
    hbrc::depot::Depot bobsLocks(depot->path());
    ASSERT_TRUE(bobsLocks.lock(ticket, {rock}).ok());

    start("alice-pw");
    driver.expect(QStringLiteral("settings"), [](QWidget* dialog) {
        auto* use = dialog->findChild<QCheckBox*>(QStringLiteral("useSourceDataControl"));
        ASSERT_TRUE(use && use->isChecked());
        use->setChecked(false);
        qobject_cast<QDialog*>(dialog)->accept();
    });
    window->action(QStringLiteral("settings"))->trigger();
    window->closeWorkspace();
    start("alice-pw");
    EXPECT_EQ(sessionLabel(), "Session: revision control off");
    EXPECT_EQ(rockStatus(), "revision control off");
    EXPECT_TRUE(window->action(QStringLiteral("turnRevisionControlOn"))->isEnabled());

    const KELHandle<kel4::IAsset> rockAsset = session->currentWorkspace()->FindAsset("Rock");
    ASSERT_TRUE(session->currentWorkspace()->SetField(rockAsset, "colour", "#b0483a"));
    driver.expect(QStringLiteral("the save's question"), [](QWidget* dialog) { qobject_cast<QDialog*>(dialog)->reject(); });
    window->save();
    EXPECT_TRUE(logged(QStringLiteral("Rock is locked by bob: turn revision control on to check it out")));

    // A click on the session offers to turn revision control on.
    QTest::mouseClick(window->statusBar()->findChild<QLabel*>(QStringLiteral("sessionState")), Qt::LeftButton);
    auto* offer = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(offer && offer->actions().size() == 1);
    offer->actions().first()->trigger();
    offer->close();
    EXPECT_EQ(sessionLabel(), "Session: logged in as alice");
}

}  // namespace
