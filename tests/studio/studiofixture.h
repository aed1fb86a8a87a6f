#pragma once

// One world for the studio's tests: the studio's preferences and kept log-ins in a folder of the
// test's own, the real main window with the plug-in opened on alice's workspace, and the dialog
// driver that answers its dialogs; mostly on the demo server with the sample workspace, where bob
// works from a connection of his own. Starts again as after a restart; reads what the window shows
// as its user reads it, waits for its background work, and edits as alice does, with clicks and keys.
#include "assetbrowser.h"
#include "assetbrowsermodel.h"
#include "demodepot.h"
#include "logdock.h"
#include "mainwindow.h"
#include "propertypane.h"
#include "revisionoperations.h"
#include "studiosession.h"

#include <dialogdriver.h>
#include <svnrepositoryfixture.h>

#include <depot/depot.h>
#include <hbrcdatamodel/workspace.h>
#include <log/log.h>
#include <qtextention/qcolorcontrol.h>

#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace hbrc::test {

template <class TestBase = ::testing::Test>
class StudioFixture : public TestBase
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        // The kept log-ins of this run, apart from the user's own.
        qputenv("HBDEPOT_TICKETS", m_dir.filePath(QStringLiteral("tickets")).toLocal8Bit());
        Log::Singleton::Instance().SetStderrEnabled(false);
    }
    void TearDown() override
    {
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
        if (session && session->currentWorkspace() && session->currentWorkspace()->HasUnsavedChanges())
            driver.expectMessageBox(QStringLiteral("Unsaved Edits"), QMessageBox::Discard);
        window.reset();
        session.reset();
        Log::Singleton::Instance().SetStderrEnabled(true);
    }

    // The demo server with the sample workspace: a new depot, or a Subversion repository that
    // svnserve serves.
    void makeDemo(bool subversion = false)
    {
        if (subversion)
            repository = std::make_unique<SvnRepositoryFixture>(m_dir.path(), SvnRepositoryFixture::Access::Served);
        depot = std::make_unique<studio::DemoServer>(m_dir.path(), repository ? repository->Url() : std::string());
        studio::SeedSampleWorkspace(*depot);
    }
    void startOnDemo(bool subversion = false)
    {
        makeDemo(subversion);
        startAlice("alice-pw");
    }
    void startAlice(const char* password = "")
    {
        start(depot->path(), depot->workspace("alice"), depot->folder("alice"), password);
    }
    std::string aliceFile(const char* name) const { return depot->folderPath("alice") + "/" + name + ".kel"; }
    std::string bobFile(const char* name) const { return depot->folderPath("bob") + "/" + name + ".kel"; }
    // bob opens the asset's file for edit from his own workspace (and locks it).
    void bobHolds(const char* name, const std::string& changelist = "", bool locked = false)
    {
        ASSERT_TRUE(depot->bob().edit(depot->bobTicket(), {bobFile(name)}, changelist).ok());
        if (locked) {
            ASSERT_TRUE(hbrc::depot::Depot(depot->path()).lock(depot->bobTicket(), {bobFile(name)}).ok());
        }
    }

    // A start of the studio on alice's workspace folder with the account given on the command
    // line; without a password the kept log-in or the Log In dialog logs her in.
    void start(const std::string& server, const std::string& workspaceName, const QString& folder,
               const char* password = "")
    {
        window.reset();
        // No progress box on a loaded machine: the dialog driver would take it for an unexpected one.
        host::ConnectionOptions connection;
        connection.timeOutThreshold = std::chrono::minutes(5);
        session = std::make_unique<studio::StudioSession>(m_dir.filePath(QStringLiteral("preferences.ini")),
                                                          connection);
        std::string error;
        ASSERT_TRUE(session->start(error)) << error;
        session->storeAccount({server, "alice", workspaceName, {}});
        session->setPassword(password);
        window = std::make_unique<studio::MainWindow>(*session);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        ASSERT_TRUE(window->openWorkspace(folder));
        waitForStatus();
        activate();
    }
    // Neither the offscreen platform nor a bare X server activates a window after a modal dialog
    // closed; a desktop does.
    void activate()
    {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    // Until the workspace is open and the status question the window asked is answered.
    void waitForStatus()
    {
        ASSERT_TRUE(DialogDriver::waitUntil(
            [this] { return !window->isOpening() && !window->model().isStatusPending(); }, 20000));
    }
    // Until the queued revision operations ran and the status they changed is answered.
    void waitForOperations()
    {
        ASSERT_TRUE(DialogDriver::waitUntil([this] { return !window->operations().isBusy(); }, 20000));
        waitForStatus();
    }

    KELHandle<kel4::IAsset> asset(const char* name) const { return session->currentWorkspace()->FindAsset(name); }
    QString cell(const char* name, int column, int role = Qt::DisplayRole) const
    {
        const studio::AssetBrowserModel& model = window->model();
        return model.data(model.index(model.rowOf(asset(name)), column), role).toString();
    }
    QString status(const char* name) const { return cell(name, studio::AssetBrowserModel::StatusColumn); }
    QString sessionLabel() const
    {
        return window->statusBar()->findChild<QLabel*>(QStringLiteral("sessionState"))->text();
    }
    bool logged(const QString& line, Qt::MatchFlags match = Qt::MatchExactly) const
    {
        return !window->logDock().list()->findItems(line, match).isEmpty();
    }
    // The file's write bit (the tests may run as root, for whom every file is writable).
    static bool writable(const QString& path) { return QFileInfo(path).permissions() & QFileDevice::WriteOwner; }

    // Clicks the asset's row in the browser.
    void select(const char* name)
    {
        QTreeView* view = window->browser().view();
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            const QModelIndex index = view->model()->index(row, studio::AssetBrowserModel::NameColumn);
            if (index.data().toString() == QString::fromUtf8(name)) {
                view->scrollTo(index);
                QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
                break;
            }
        }
        ASSERT_EQ(window->propertyPane().asset(), KELHandle<kel4::IDbObject>(asset(name)));
    }
    // Types a colour into the selected asset's colour field and presses Return.
    void typeColour(const QString& colour)
    {
        auto* control = qobject_cast<QColorControl*>(window->propertyPane().editor(QStringLiteral("colour")));
        ASSERT_NE(control, nullptr);
        QTest::mouseDClick(control->nameEdit(), Qt::LeftButton);
        control->nameEdit()->selectAll();
        QTest::keyClicks(control->nameEdit(), colour);
        QTest::keyClick(control->nameEdit(), Qt::Key_Return);
    }
    QString colourShown() const
    {
        return qobject_cast<QColorControl*>(window->propertyPane().editor(QStringLiteral("colour")))->color().name();
    }

    QTemporaryDir m_dir;
    std::unique_ptr<SvnRepositoryFixture> repository;  // outlives the server's connections
    std::unique_ptr<studio::DemoServer> depot;
    std::unique_ptr<studio::StudioSession> session;
    std::unique_ptr<studio::MainWindow> window;
    DialogDriver driver;
};

}  // namespace hbrc::test
