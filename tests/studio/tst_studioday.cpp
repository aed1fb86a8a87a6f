// A technical artist's first morning in hbrc-studio, in the real window under an X server, with key
// presses and clicks: on the depot that the README's walk-through makes, then on Subversion. She
// logs in from the keyboard (and is kept logged in on the next start, with her password written
// nowhere), chooses "Ask" in the settings, edits a
// read-only asset (the Check Out dialog asks), undoes it (the check-out goes), redoes it (checked
// out again), leaves the dirty asset to Revert Unchanged, saves, creates an asset that the save
// marks for add, and submits both.
#include "pendingchangespane.h"
#include "studiofixture.h"

#include <qtextention/qfunctoraction.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QToolButton>

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

class StudioDay : public StudioFixture<::testing::TestWithParam<Backend>>
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        qputenv("HOME", m_dir.path().toLocal8Bit());
        if (GetParam() == Backend::ReadmeDepot)
            makeReadmeDepot();
        else
            makeSubversionWorld();
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
        makeDemo(true);
        world = {depot->path(), depot->workspace("alice"), depot->folder("alice"), "Sky", QStringLiteral("Sky.kel")};
    }

    void startAlice() { start(world.server, world.workspaceName, world.folder); }
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

    bool writable(const QString& file) const { return StudioFixture::writable(world.folder + QLatin1Char('/') + file); }

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

    World world;
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
        QPushButton* ok = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        ASSERT_TRUE(password && ok);
        EXPECT_TRUE(password->hasFocus()) << "the user name is known: the password is asked";
        EXPECT_FALSE(ok->isEnabled());
        QTest::keyClicks(password, QStringLiteral("alice-pw"));
        EXPECT_TRUE(ok->isEnabled());
        QTest::keyClick(password, Qt::Key_Tab);
        auto* keep = dialog->findChild<QCheckBox*>(QStringLiteral("keepLoggedIn"));
        ASSERT_EQ(QApplication::focusWidget(), keep);
        QTest::keyClick(keep, Qt::Key_Space);
        EXPECT_TRUE(keep->isChecked());
        QTest::keyClick(keep, Qt::Key_Return);
    }, 20000);
    startAlice();
    EXPECT_EQ(sessionLabel(), aliceUser);
    EXPECT_EQ(status(edited), "up to date");
    // Subversion keeps its log-ins in its own store.
    const QStringList studioFiles{QStringLiteral("preferences.ini"), QStringLiteral("tickets")};
    for (const QString& file : studioFiles.mid(0, GetParam() == Backend::ReadmeDepot ? 2 : 1)) {
        QFile kept(m_dir.filePath(file));
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly)) << file.toStdString();
        EXPECT_FALSE(kept.readAll().contains("alice-pw")) << "never the password";
    }

    SCOPED_TRACE("second start: the kept log-in, no dialog");
    window->close();
    startAlice();
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
    EXPECT_TRUE(logged(QStringLiteral("Reverted the check-out of %1").arg(QString::fromUtf8(edited)), Qt::MatchContains));

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
    EXPECT_TRUE(logged(QStringLiteral("Not reverted: %1 has unsaved edits").arg(QString::fromUtf8(edited)),
                       Qt::MatchContains));

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
