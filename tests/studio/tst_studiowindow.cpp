// hbrc-studio's main window driven as alice would drive it, offscreen, on a demo depot with the
// sample workspace: her real host with the revision-control plug-in, bob acting from his own
// workspace, the plug-in's real dialogs answered by the dialog driver.
#include "assetbrowser.h"
#include "assetbrowsermodel.h"
#include "demodepot.h"
#include "mainwindow.h"
#include "propertypane.h"
#include "studiosession.h"

#include <dialogdriver.h>

#include <hbrcdatamodel/workspace.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <log/log.h>
#include <qtextention/lmrqlivesearchwidget.h>
#include <qtextention/qcolorcontrol.h>
#include <qtextention/qfunctoraction.h>
#include <qtextention/rangevalueeditwidget.h>

#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include <memory>

using namespace hbrc::studio;
using hbrc::test::DialogDriver;

namespace {

class StudioWindow : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        Log::Singleton::Instance().SetStderrEnabled(false);
        depot = std::make_unique<DemoServer>(m_dir.path());
        SeedSampleWorkspace(*depot);
        session = std::make_unique<StudioSession>(m_dir.filePath(QStringLiteral("preferences.ini")));
        std::string error;
        ASSERT_TRUE(session->Start(error)) << error;
        session->StoreAccount({depot->Path(), "alice", depot->Workspace("alice"), {}});
        session->SetPassword("alice-pw");
        session->Host().Preferences().SetBoolPref("RevControl.UseSourceDataControl", true, 1);
        window = std::make_unique<MainWindow>(*session);
        window->show();
        activate();
        ASSERT_TRUE(window->openWorkspace(depot->Folder("alice")));
        waitForStatus();
    }
    void TearDown() override
    {
        EXPECT_TRUE(driver.finished()) << driver.failures().join('\n').toStdString();
        if (session->CurrentWorkspace() && session->CurrentWorkspace()->HasUnsavedChanges())
            driver.expectMessageBox(QStringLiteral("Unsaved Edits"), QMessageBox::Discard);
        window.reset();
        session.reset();
        depot.reset();
        Log::Singleton::Instance().SetStderrEnabled(true);
    }

    // The offscreen platform activates no window after a modal dialog closes; a desktop does.
    void activate()
    {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    void waitForStatus()
    {
        ASSERT_TRUE(DialogDriver::waitUntil([this] { return !window->model().statusQuery().IsPending(); }, 20000));
    }
    KELHandle<kel4::IAsset> asset(const char* name) const { return session->CurrentWorkspace()->FindAsset(name); }
    QString status(const char* name) const
    {
        const AssetBrowserModel& model = window->model();
        return model.data(model.index(model.rowOf(asset(name)), AssetBrowserModel::StatusColumn)).toString();
    }
    std::string field(const char* name, const char* key) const
    {
        const hbrc::host::DataModelMgr& model = session->CurrentWorkspace()->Model();
        return model.Store().AssetAt(model.SlotOf(asset(name))).record.fields.at(key);
    }
    void select(const char* name)
    {
        window->browser().selectAsset(asset(name));
        ASSERT_EQ(window->propertyPane().asset(), KELHandle<kel4::IDbObject>(asset(name)));
    }
    // Types a colour into the selected asset's colour field and presses Return, as alice does.
    void typeColour(const QString& colour)
    {
        auto* control = qobject_cast<QColorControl*>(window->propertyPane().editor(QStringLiteral("colour")));
        ASSERT_NE(control, nullptr);
        control->nameEdit()->setFocus();
        control->nameEdit()->selectAll();
        QTest::keyClicks(control->nameEdit(), colour);
        QTest::keyClick(control->nameEdit(), Qt::Key_Return);
    }
    QString colourShown() const
    {
        return qobject_cast<QColorControl*>(window->propertyPane().editor(QStringLiteral("colour")))->color().name();
    }
    void bobEdits(const char* name)
    {
        ASSERT_TRUE(depot->Bob().edit(depot->BobTicket(), {depot->FolderPath("bob") + "/" + name + ".kel"}, "").ok());
        window->refreshStatus();
        waitForStatus();
    }
    void checkOutWithoutAsking()
    {
        session->Settings()->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
    }

    QTemporaryDir m_dir;
    std::unique_ptr<DemoServer> depot;
    std::unique_ptr<StudioSession> session;
    std::unique_ptr<MainWindow> window;
    DialogDriver driver;
};

// The tour's scenario: bob holds Rock, so alice's edit of Rock is refused with bob named and the
// field keeps its value; her edit of Sky checks it out and is one undo step that Ctrl+Z takes back
// and Ctrl+Shift+Z puts back; Ctrl+S saves it through the item library; a new asset is marked for
// add by the save.
TEST_F(StudioWindow, TheTourRefusesRockWithBobNamedChecksOutSkyUndoesAndSaves)
{
    EXPECT_EQ(status("Rock"), "up to date");
    bobEdits("Rock");
    EXPECT_EQ(status("Rock"), "held by bob");
    checkOutWithoutAsking();

    select("Rock");
    driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Cancel, QStringLiteral("bob"));
    typeColour(QStringLiteral("#b0483a"));
    EXPECT_EQ(colourShown(), "#7a746c");
    EXPECT_EQ(field("Rock", "colour"), "#7a746c");
    const nrk::fwk::ICommand* lastStep = session->Host().Commands().GetUndoCommand();
    EXPECT_TRUE(!lastStep || std::string(lastStep->GetCommandIdentifier()) != "editAssetField");

    select("Sky");
    typeColour(QStringLiteral("#ff8c42"));
    waitForStatus();
    EXPECT_EQ(field("Sky", "colour"), "#ff8c42");
    EXPECT_EQ(status("Sky"), "checked out");
    EXPECT_EQ(window->action(QStringLiteral("undo"))->text(), "&Undo Edit colour of Sky");

    // Back in the browser (in the colour field, Ctrl+Z would undo its text).
    activate();
    window->browser().view()->setFocus();
    QTest::keySequence(window.get(), QKeySequence::Undo);
    EXPECT_EQ(field("Sky", "colour"), "#6fa8dc");
    EXPECT_EQ(colourShown(), "#6fa8dc");
    QTest::keySequence(window.get(), QKeySequence::Redo);
    EXPECT_EQ(colourShown(), "#ff8c42");

    QTest::keySequence(window.get(), QKeySequence::Save);
    EXPECT_FALSE(session->CurrentWorkspace()->HasUnsavedChanges());
    QFile saved(depot->Folder("alice") + QStringLiteral("/Sky.kel"));
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_TRUE(saved.readAll().contains("#ff8c42"));

    ASSERT_TRUE(window->newAsset(QStringLiteral("Meadow")));
    EXPECT_EQ(window->propertyPane().asset(), KELHandle<kel4::IDbObject>(asset("Meadow")));
    QTest::keySequence(window.get(), QKeySequence::Save);
    waitForStatus();
    EXPECT_EQ(status("Meadow"), "marked for add") << window->sessionState().toStdString();
}

// Ignore in the check-out error lets the edit go ahead; a number is kept within its field's range.
TEST_F(StudioWindow, IgnoreEditsRockAnywayAndNumbersStayInTheirRange)
{
    bobEdits("Rock");
    checkOutWithoutAsking();
    select("Rock");
    auto* roughness = qobject_cast<RangeValueEditWidget*>(window->propertyPane().editor(QStringLiteral("roughness")));
    ASSERT_NE(roughness, nullptr);
    driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Ignore, QStringLiteral("bob"));
    roughness->spinBox()->setFocus();
    roughness->spinBox()->selectAll();
    QTest::keyClicks(roughness->spinBox(), QStringLiteral("7"));
    QTest::keyClick(roughness->spinBox(), Qt::Key_Return);
    EXPECT_EQ(field("Rock", "roughness"), "0.85") << "7 is outside 0..1: the spin box keeps its value";
    QTest::keyClick(roughness->spinBox(), Qt::Key_Up);
    EXPECT_EQ(field("Rock", "roughness"), "0.95");
}

// The live search filters the browser as alice types; the status bar follows the settings
// dialog through the settings' change signal; leaving with unsaved edits asks first.
TEST_F(StudioWindow, SearchSettingsAndQuitAskAsAUserExpects)
{
    QTest::keyClicks(window->browser().searchField(), QStringLiteral("rock"));
    QAbstractItemModel* shown = window->browser().view()->model();
    ASSERT_EQ(shown->rowCount(), 2);  // Rock, RockAlbedo
    QTest::keyClick(window->browser().view(), Qt::Key_Down);
    EXPECT_EQ(window->propertyPane().asset().GetName(), "Rock");

    driver.expect(QStringLiteral("settings"), [](QWidget* dialog) {
        EXPECT_EQ(dialog->windowTitle(), "Revision Control Settings");
        auto* user = dialog->findChild<QLineEdit*>(QStringLiteral("userName"));
        ASSERT_NE(user, nullptr);
        user->setText(QStringLiteral("carol"));
        QTest::keyClick(user, Qt::Key_Return);
    });
    window->action(QStringLiteral("settings"))->trigger();
    const QList<QLabel*> labels = window->statusBar()->findChildren<QLabel*>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](QLabel* l) { return l->text() == "User: carol"; }));

    ASSERT_TRUE(window->newAsset(QStringLiteral("Meadow")));
    driver.expectMessageBox(QStringLiteral("Unsaved Edits"), QMessageBox::Cancel);
    EXPECT_FALSE(window->close());
    driver.expectMessageBox(QStringLiteral("Unsaved Edits"), QMessageBox::Discard);
    EXPECT_TRUE(window->close());
}

}  // namespace
