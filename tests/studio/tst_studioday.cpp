// A technical artist's first morning in hbrc-studio, in the real window under an X server, with key
// presses and clicks: on the depot that the README's walk-through makes, then on Subversion. She
// logs in (and is kept logged in on the next start), chooses "Ask" in the settings, edits a
// read-only asset (the Check Out dialog asks), undoes it (the check-out goes), redoes it (checked
// out again), leaves the dirty asset to Revert Unchanged, saves, creates an asset that the save
// marks for add, and submits both.
#include "assetbrowser.h"
#include "assetbrowsermodel.h"
#include "demodepot.h"
#include "logdock.h"
#include "mainwindow.h"
#include "pendingchangespane.h"
#include "propertypane.h"
#include "revisionoperations.h"
#include "studiosession.h"

#include "windowprobe.h"

#include <dialogdriver.h>
#include <svnrepositoryfixture.h>

#include <hbrcdatamodel/workspace.h>
#include <log/log.h>
#include <qtextention/qcolorcontrol.h>
#include <qtextention/qfunctoraction.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <gtest/gtest.h>

#include <memory>

using namespace hbrc::studio;
using namespace hbrc::test;

namespace {

enum class Backend { ReadmeDepot, Subversion };

// Where alice works: her server, her workspace folder and the read-only asset she edits.
struct World
{
    std::string server;
    std::string workspaceName;
    QString folder;
    const char* asset = "";
    QString assetFile;  // in the workspace folder
};

class StudioDay : public ::testing::TestWithParam<Backend>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        // The kept log-ins of this run, apart from the user's own.
        qputenv("HBDEPOT_TICKETS", m_dir.filePath(QStringLiteral("tickets")).toLocal8Bit());
        qputenv("HOME", m_dir.path().toLocal8Bit());
        Log::Singleton::Instance().SetStderrEnabled(false);
        if (GetParam() == Backend::ReadmeDepot)
            makeReadmeDepot();
        else
            makeSubversionWorld();
    }
    void TearDown() override
    {
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
        window.reset();
        session.reset();
        Log::Singleton::Instance().SetStderrEnabled(true);
    }

    // The README's depot walk-through, run as a user pastes it: alice has submitted "Ship hull".
    void makeReadmeDepot()
    {
        QProcess readme;
        readme.setProcessChannelMode(QProcess::MergedChannels);
        readme.start(QStringLiteral("python3"),
                     {QStringLiteral(HBRC_SOURCE_DIR "/tests/readme/run_readme_blocks.py"), QStringLiteral("--world"),
                      m_dir.path(), QStringLiteral("--chain"), QStringLiteral("hbdepot init"),
                      QStringLiteral(HBRC_BIN_DIR), QStringLiteral(HBRC_SOURCE_DIR "/README.md")});
        ASSERT_TRUE(readme.waitForFinished(120000));
        ASSERT_EQ(readme.exitCode(), 0) << readme.readAll().toStdString();
        world = {QFile::encodeName(m_dir.filePath(QStringLiteral("demo/depot.db"))).toStdString(), "alice-ws",
                 m_dir.filePath(QStringLiteral("demo/alice")), "Ship hull", QStringLiteral("ship.kel")};
    }
    void makeSubversionWorld()
    {
        repository = std::make_unique<SvnRepositoryFixture>(m_dir.path(), SvnRepositoryFixture::Access::Served);
        demo = std::make_unique<DemoServer>(m_dir.filePath(QStringLiteral("demo")), repository->Url());
        SeedSampleWorkspace(*demo);
        world = {demo->path(), demo->workspace("alice"), demo->folder("alice"), "Sky", QStringLiteral("Sky.kel")};
    }

    // A start of the studio on alice's workspace with the account she gave on the command line.
    void start()
    {
        window.reset();
        session = std::make_unique<StudioSession>(m_dir.filePath(QStringLiteral("preferences.ini")));
        std::string error;
        ASSERT_TRUE(session->start(error)) << error;
        session->storeAccount({world.server, "alice", world.workspaceName, {}});
        window = std::make_unique<MainWindow>(*session);
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        ASSERT_TRUE(window->openWorkspace(world.folder));
        waitForStatus();
        activate();
    }
    void activate()
    {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    void waitForStatus() { ASSERT_TRUE(WaitForStatus(*window)); }
    void waitForOperations() { ASSERT_TRUE(WaitForOperations(*window)); }
    // A dialog takes the keys once the window manager has made it the active window.
    // The main window's own activation may still arrive after the dialog showed: ask again until
    // the dialog stays the active window.
    static void activateDialog(QWidget* dialog)
    {
        ASSERT_TRUE(DialogDriver::waitUntil([dialog] {
            if (QApplication::activeWindow() != dialog)
                dialog->activateWindow();
            return QTest::qWaitForWindowActive(dialog, 200) && QApplication::activeWindow() == dialog;
        }, 5000));
    }
    // A shortcut pressed in the asset browser, as alice does after a dialog closed.
    void press(int key, Qt::KeyboardModifiers modifiers)
    {
        activate();
        window->browser().view()->setFocus();
        ASSERT_EQ(QApplication::focusWidget(), window->browser().view());
        QTest::keyClick(window->browser().view(), Qt::Key(key), modifiers);
    }

    KELHandle<kel4::IAsset> asset(const char* name) const { return session->currentWorkspace()->FindAsset(name); }
    QString status(const char* name) const { return AssetCell(*window, asset(name), AssetBrowserModel::StatusColumn); }
    QString sessionLabel() const { return SessionLabel(*window); }
    bool logged(const QString& part) const { return Logged(*window, part, Qt::MatchContains); }
    // The file's write bit (the tests may run as root, for whom every file is writable).
    bool writable(const QString& file) const
    {
        return QFileInfo(world.folder + QLatin1Char('/') + file).permissions() & QFileDevice::WriteOwner;
    }

    // Clicks the asset's row in the browser, as alice does.
    void select(const char* name)
    {
        QTreeView* view = window->browser().view();
        for (int i = 0; i < view->model()->rowCount(); ++i) {
            const QModelIndex index = view->model()->index(i, AssetBrowserModel::NameColumn);
            if (index.data().toString() == QString::fromUtf8(name)) {
                view->scrollTo(index);
                QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
                break;
            }
        }
        ASSERT_EQ(window->propertyPane().asset(), KELHandle<kel4::IDbObject>(asset(name)));
    }
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
    // The settings dialog from the menu; act does what alice does in it.
    void inSettings(const std::function<void(QComboBox& action)>& act)
    {
        driver.expect(QStringLiteral("settings"), [act](QWidget* dialog) {
            activateDialog(dialog);
            auto* action = dialog->findChild<QComboBox*>(QStringLiteral("action"));
            ASSERT_NE(action, nullptr);
            action->setFocus();
            act(*action);
        });
        window->action(QStringLiteral("settings"))->trigger();
    }
    void clickPaneButton(const char* command)
    {
        QFunctorAction* action = window->pendingChanges().action(QString::fromLatin1(command));
        ASSERT_NE(action, nullptr);
        for (QToolButton* button : window->pendingChanges().findChildren<QToolButton*>())
            if (button->defaultAction() == action) {
                ASSERT_TRUE(button->isEnabled()) << command;
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        FAIL() << "no button for " << command;
    }

    QTemporaryDir m_dir;
    World world;
    std::unique_ptr<SvnRepositoryFixture> repository;
    std::unique_ptr<DemoServer> demo;
    std::unique_ptr<StudioSession> session;
    std::unique_ptr<MainWindow> window;
    DialogDriver driver;
};

TEST_P(StudioDay, FromTheFirstStartToASubmit)
{
    const char* edited = world.asset;
    const QString aliceUser = QStringLiteral("Session: logged in as alice");

    SCOPED_TRACE("first start: the Log In dialog, and alice asks to be kept logged in");
    driver.expect(QStringLiteral("Log In"), [](QWidget* dialog) {
        activateDialog(dialog);
        EXPECT_EQ(dialog->windowTitle(), "Log In");
        auto* password = dialog->findChild<QLineEdit*>(QStringLiteral("password"));
        ASSERT_NE(password, nullptr);
        QTest::keyClicks(password, QStringLiteral("alice-pw"));
        QTest::keyClick(password, Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);  // "Keep me logged in"
        EXPECT_TRUE(dialog->findChild<QCheckBox*>(QStringLiteral("keepLoggedIn"))->isChecked());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    }, 20000);
    start();
    EXPECT_EQ(sessionLabel(), aliceUser);
    EXPECT_EQ(status(edited), "up to date");

    SCOPED_TRACE("second start: the kept log-in, no dialog");
    window->close();
    start();
    EXPECT_EQ(sessionLabel(), aliceUser);
    EXPECT_EQ(status(edited), "up to date");
    EXPECT_FALSE(writable(world.assetFile));

    SCOPED_TRACE("settings: \"Check out\", then back to \"Ask\", and \"Ask\" is what opens again");
    inSettings([](QComboBox& action) {
        QTest::keyClick(&action, Qt::Key_Down);  // Ask -> Check out
        EXPECT_EQ(action.currentText(), "Check out");
        QTest::keyClick(&action, Qt::Key_Return);
    });
    inSettings([](QComboBox& action) {
        EXPECT_EQ(action.currentText(), "Check out");
        QTest::keyClick(&action, Qt::Key_Up);
        QTest::keyClick(&action, Qt::Key_Return);
    });
    inSettings([](QComboBox& action) {
        EXPECT_EQ(action.currentText(), "Ask");
        QTest::keyClick(&action, Qt::Key_Escape);
    });

    SCOPED_TRACE("the edit of the read-only asset asks with the Check Out dialog");
    select(edited);
    const QString before = colourShown();
    driver.expect(QStringLiteral("Check Out"), [](QWidget* dialog) {
        activateDialog(dialog);
        EXPECT_EQ(dialog->windowTitle(), "Check Out");
        QTest::keyClick(dialog, Qt::Key_Return);  // Check Out, into the default changelist
    });
    typeColour(QStringLiteral("#ff8c42"));
    waitForStatus();
    EXPECT_EQ(colourShown(), "#ff8c42");
    EXPECT_EQ(status(edited), "checked out");
    EXPECT_TRUE(writable(world.assetFile));

    SCOPED_TRACE("Undo: the value back, and the unchanged check-out reverted");
    press(Qt::Key_Z, Qt::ControlModifier);
    waitForOperations();
    EXPECT_EQ(colourShown(), before);
    EXPECT_EQ(status(edited), "up to date");
    EXPECT_FALSE(writable(world.assetFile));
    EXPECT_TRUE(logged(QStringLiteral("Reverted the check-out of %1").arg(QString::fromUtf8(edited))));

    SCOPED_TRACE("Redo: the edit and its check-out again; Revert Unchanged leaves the dirty asset alone");
    EXPECT_EQ(window->action(QStringLiteral("redo"))->text(),
              QStringLiteral("&Redo Edit colour of %1").arg(QString::fromUtf8(edited)));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    waitForOperations();
    EXPECT_EQ(colourShown(), "#ff8c42");
    clickPaneButton("revertUnchanged");
    waitForOperations();
    EXPECT_EQ(status(edited), "checked out");
    EXPECT_TRUE(writable(world.assetFile));
    EXPECT_TRUE(logged(QStringLiteral("Not reverted: %1 has unsaved edits").arg(QString::fromUtf8(edited))));

    SCOPED_TRACE("Ctrl+S saves; a new asset is marked for add by the next save");
    press(Qt::Key_S, Qt::ControlModifier);
    waitForOperations();
    EXPECT_FALSE(session->currentWorkspace()->HasUnsavedChanges());
    driver.expect(QStringLiteral("New Asset"), [](QWidget* dialog) {
        activateDialog(dialog);
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("name"));
        ASSERT_NE(name, nullptr);
        QTest::keyClicks(name, QStringLiteral("Deck"));
        QTest::keyClick(name, Qt::Key_Return);
    });
    press(Qt::Key_N, Qt::ControlModifier);
    press(Qt::Key_S, Qt::ControlModifier);
    waitForOperations();
    EXPECT_EQ(status("Deck"), "marked for add");

    SCOPED_TRACE("Submit: the dialog lists both files; afterwards both are at the head revision");
    waitForOperations();
    const QString editedFile = world.assetFile;
    driver.expect(QStringLiteral("Submit"), [editedFile](QWidget* dialog) {
        activateDialog(dialog);
        auto* files = dialog->findChild<QListWidget*>(QStringLiteral("files"));
        ASSERT_NE(files, nullptr);
        EXPECT_EQ(files->findItems(editedFile, Qt::MatchContains).size(), 1);
        EXPECT_EQ(files->findItems(QStringLiteral("Deck"), Qt::MatchContains).size(), 1);
        auto* text = dialog->findChild<QPlainTextEdit*>(QStringLiteral("description"));
        QTest::keyClicks(text, QStringLiteral("warmer hull, and a deck"));
        QTest::keyClick(text, Qt::Key_Return, Qt::ControlModifier);
    });
    clickPaneButton("submit");
    waitForOperations();
    EXPECT_EQ(status(edited), "up to date");
    EXPECT_EQ(status("Deck"), "up to date");
    EXPECT_FALSE(writable(editedFile));
}

INSTANTIATE_TEST_SUITE_P(Servers, StudioDay, ::testing::Values(Backend::ReadmeDepot, Backend::Subversion),
                         [](const ::testing::TestParamInfo<Backend>& info) {
                             return info.param == Backend::ReadmeDepot ? "ReadmeDepot" : "Subversion";
                         });

}  // namespace
