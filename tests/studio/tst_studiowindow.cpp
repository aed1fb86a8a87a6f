// hbrc-studio's main window driven as alice would drive it, offscreen, on a demo depot with the
// sample workspace: her real host with the revision-control plug-in, bob acting from his own
// workspace, the plug-in's real dialogs answered by the dialog driver; and her session: the kept
// log-in that hbdepot shares, Log Out, revision control turned off.
#include "changelistwork.h"
#include "fieldeditors.h"
#include "pendingchangespane.h"
#include "statuschange.h"
#include "studiofixture.h"
#include "studiotranslation.h"

#include <depot/depot.h>
#include <depot/ticketstore.h>
#include <hbrcservices/revisionserver.h>
#include <hbrevisioncontrol/irevisioncontrolpropertiesmgr.h>
#include <qtextention/lmrqlivesearchwidget.h>
#include <qtextention/qfunctoraction.h>
#include <qtextention/qlistviewdragdrop.h>
#include <qtextention/rangevalueeditwidget.h>

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDropEvent>
#include <QInputDialog>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QStandardPaths>

using namespace hbrc::studio;
using namespace hbrc::test;
using hbrc::depot::TicketStore;

namespace {

class StudioWindow : public StudioFixture<>
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        startOnDemo();
    }
    // Sets "Refresh status every" in the settings dialog, from the keyboard.
    void setRefreshSeconds(int seconds)
    {
        driver.expect(QStringLiteral("settings"), [seconds](QWidget* dialog) {
            auto* every = dialog->findChild<QSpinBox*>(QStringLiteral("statusRefreshSeconds"));
            ASSERT_NE(every, nullptr);
            every->setFocus();
            every->selectAll();
            QTest::keyClicks(every, QString::number(seconds));
            QTest::keyClick(every, Qt::Key_Return);
        });
        window->action(QStringLiteral("settings"))->trigger();
    }
    std::string field(const char* name, const char* key) const
    {
        const hbrc::host::DataModelMgr& model = session->currentWorkspace()->Model();
        return model.Store().AssetAt(model.SlotOf(asset(name))).record.fields.at(key);
    }
    void checkOutWithoutAsking()
    {
        session->settings()->SetActionWhenEditingReadOnlyAsset(IRevisionControlPropertiesMgr::eActionCheckOut);
    }
    PendingChangesModel& pending() const { return window->pendingChanges().model(); }
    bool aliceMayWrite(const char* name) const { return writable(QString::fromStdString(aliceFile(name))); }
    QModelIndex pendingFile(const char* name) const { return pending().fileIndex(aliceFile(name)); }
    QStringList pendingAssets(const std::string& changelist) const
    {
        QStringList names;
        if (const auto* list = pending().changelist(changelist))
            for (const hbrc::revision::OpenedFile& file : list->files)
                names << pending().fileIndex(file.localPath).siblingAtColumn(PendingChangesModel::AssetColumn).data().toString();
        return names;
    }
    void selectPending(const QModelIndex& index)
    {
        window->pendingChanges().view()->selectionModel()->setCurrentIndex(
            index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    // Expects the description dialog: proves that OK refuses a blank text, then enters text.
    void expectDescription(const QString& title, const QString& offered, const QString& text,
                           const QStringList& files = {})
    {
        driver.expect(title, [=](QWidget* dialog) {
            EXPECT_EQ(dialog->windowTitle(), title);
            QStringList listed;
            if (auto* list = dialog->findChild<QListWidget*>(QStringLiteral("files")))
                for (int row = 0; row < list->count(); ++row)
                    listed << list->item(row)->text();
            EXPECT_EQ(listed, files);
            auto* edit = dialog->findChild<QPlainTextEdit*>(QStringLiteral("description"));
            QPushButton* ok = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
            ASSERT_TRUE(edit && ok);
            EXPECT_EQ(edit->toPlainText(), offered);
            edit->setPlainText(QStringLiteral("  "));
            EXPECT_FALSE(ok->isEnabled()) << "a blank description";
            QTest::keyClicks(edit, text);
            ASSERT_TRUE(ok->isEnabled());
            ok->click();
        });
    }
    // Drags the selected rows of the pane onto an item, as QListViewDragDrop's own drag delivers it.
    bool dragSelectedOnto(const QModelIndex& target)
    {
        QTreeView* view = window->pendingChanges().view();
        auto* dragDrop = window->pendingChanges().findChild<QListViewDragDrop*>();
        const std::unique_ptr<QMimeData> mime(dragDrop ? dragDrop->mimeData(view) : nullptr);
        if (!mime)
            return false;
        const QPoint at = view->visualRect(target).center();
        QDragEnterEvent enter(at, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view->viewport(), &enter);
        QDropEvent drop(at, Qt::MoveAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view->viewport(), &drop);
        return drop.isAccepted();
    }
};

// The tour's scenario: bob holds Rock, so alice's edit of Rock is refused with bob named and the
// field keeps its value; her edit of Sky checks it out as one undo step named after it; a number
// field is edited from its spin box. (Undo, redo, saving and adding run in tst_studioday.)
TEST_F(StudioWindow, TheTourRefusesRockWithBobNamedAndChecksOutSky)
{
    EXPECT_EQ(status("Rock"), "up to date");
    EXPECT_EQ(window->model().statusQuery().roundTrips(), 1u) << "one status question for all assets";
    bobHolds("Rock");
    window->refreshStatus();
    waitForStatus();
    EXPECT_EQ(status("Rock"), "held by bob");
    checkOutWithoutAsking();

    select("Rock");
    driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Cancel, QStringLiteral("bob"));
    typeColour(QStringLiteral("#b0483a"));
    EXPECT_EQ(colourShown(), "#7a746c");
    EXPECT_EQ(field("Rock", "colour"), "#7a746c");
    EXPECT_TRUE(window->statusBar()->currentMessage().startsWith("Refused: colour of Rock"));
    EXPECT_FALSE(session->host().Commands().CanUndo()) << "a refused edit leaves no step, nor does its check-out";

    select("Sky");
    typeColour(QStringLiteral("#ff8c42"));
    waitForStatus();
    EXPECT_EQ(field("Sky", "colour"), "#ff8c42");
    EXPECT_EQ(status("Sky"), "checked out");
    EXPECT_TRUE(window->statusBar()->currentMessage().startsWith("Edited colour of Sky"))
        << "the refusal of Rock is no longer news";
    EXPECT_EQ(window->action(QStringLiteral("undo"))->text(), "&Undo Edit colour of Sky");

    // A number field is edited from its spin box like any other field, in its own steps.
    select("Leaf");
    auto* roughness = qobject_cast<RangeValueEditWidget*>(window->propertyPane().editor(QStringLiteral("roughness")));
    ASSERT_NE(roughness, nullptr);
    roughness->spinBox()->setFocus();
    QTest::keyClick(roughness->spinBox(), Qt::Key_Up);
    EXPECT_EQ(field("Leaf", "roughness"), "0.70");
}

// The live search filters the browser as alice types; the status bar follows the settings
// dialog through the settings' change signal; leaving with unsaved edits asks first.
TEST_F(StudioWindow, SearchSettingsAndQuitAskAsAUserExpects)
{
    QTest::keySequence(window.get(), QKeySequence::Find);
    ASSERT_TRUE(window->browser().searchField()->hasFocus());
    QTest::keyClicks(window->browser().searchField(), QStringLiteral("curve"));
    QAbstractItemModel* shown = window->browser().view()->model();
    EXPECT_EQ(shown->rowCount(), 3) << "the type column is searched too";
    window->browser().searchField()->clear();
    QTest::keyClicks(window->browser().searchField(), QStringLiteral("rock"));
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

    // New Asset from the keyboard: a name, the second kind, Return.
    driver.expect(QStringLiteral("new asset"), [](QWidget* dialog) {
        QTest::keyClicks(dialog->findChild<QLineEdit*>(QStringLiteral("name")), QStringLiteral("Dusk"));
        QTest::keyClick(dialog->findChild<QComboBox*>(QStringLiteral("kind")), Qt::Key_Down);
        QTest::keyClick(dialog->findChild<QLineEdit*>(QStringLiteral("name")), Qt::Key_Return);
    });
    activate();
    QTest::keySequence(window.get(), QKeySequence::New);
    EXPECT_EQ(cell("Dusk", AssetBrowserModel::TypeColumn), "Curve");
    driver.expectMessageBox(QStringLiteral("Unsaved Edits"), QMessageBox::Cancel);
    EXPECT_FALSE(window->close());
    driver.expectMessageBox(QStringLiteral("Unsaved Edits"), QMessageBox::Discard);
    EXPECT_TRUE(window->close());
}

// Rename (F2) asks for the name through a dialog and is an undoable edit (whose stored action checks
// out without asking); Delete asks first; Make Writable acts on the selected asset's files through
// the plug-in. (Check Out from the menu starts the pending-changes scenario.)
TEST_F(StudioWindow, RenameDeleteAndMakeWritableFromTheMenus)
{
    checkOutWithoutAsking();
    select("Oak");
    activate();
    driver.expect(QStringLiteral("rename"), [](QWidget* dialog) {
        auto* input = qobject_cast<QInputDialog*>(dialog);
        ASSERT_NE(input, nullptr);
        input->setTextValue(QStringLiteral("OldOak"));
        input->accept();
    });
    QTest::keyClick(window->browser().view(), Qt::Key_F2);
    waitForStatus();
    ASSERT_FALSE(asset("OldOak").IsNull());
    EXPECT_EQ(status("OldOak"), "checked out") << "the rename asked CanEditObjects, which checked Oak out";
    activate();
    window->browser().view()->setFocus();
    QTest::keySequence(window.get(), QKeySequence::Undo);
    EXPECT_FALSE(asset("Oak").IsNull());

    select("Fern");
    driver.expectMessageBox(QStringLiteral("Delete Asset"), QMessageBox::No);
    window->action(QStringLiteral("deleteAsset"))->trigger();
    EXPECT_FALSE(asset("Fern").IsNull());
    driver.expectMessageBox(QStringLiteral("Delete Asset"), QMessageBox::Yes);
    window->action(QStringLiteral("deleteAsset"))->trigger();
    EXPECT_TRUE(asset("Fern").IsNull());
    EXPECT_EQ(window->model().rowCount(), 19);

    select("Sand");
    ASSERT_FALSE(aliceMayWrite("Sand"));
    window->action(QStringLiteral("makeWritable"))->trigger();
    EXPECT_TRUE(aliceMayWrite("Sand"));
}

// Before alice collides with bob: bob, from his own connection, opens Rock for edit in a numbered
// changelist and locks it; alice's window asks by itself on the timer she set, and her browser
// names bob, his workspace and changelist, and the lock; the log says what changed. When bob
// submits, Rock shows as behind ("#1/#2") and the log says so. The first answer after opening
// logs no per-asset line.
TEST_F(StudioWindow, BobsHoldAndNewRevisionReachAlicesBrowserOnTheTimer)
{
    EXPECT_EQ(cell("Rock", AssetBrowserModel::RevisionColumn), "#1/#1");
    EXPECT_EQ(window->logDock().list()->findItems(QStringLiteral("Opened"), Qt::MatchContains).size(), 1)
        << "opening is logged once";
    setRefreshSeconds(1);

    hbrc::host::RevisionServer& bob = depot->bob();
    const std::string& ticket = depot->bobTicket();
    hbrc::revision::ChangelistId changelist;
    ASSERT_TRUE(bob.createChangelist(ticket, "rougher rock", changelist).ok());
    bobHolds("Rock", changelist, true);

    const QString cl = QString::fromStdString(changelist);
    const QString opened = QStringLiteral("Rock: bob opened it for edit in changelist %1; bob locked it").arg(cl);
    ASSERT_TRUE(DialogDriver::waitUntil([&] { return logged(opened); }, 10000)) << "nobody asked for a refresh";
    EXPECT_EQ(cell("Rock", AssetBrowserModel::HolderColumn), "bob");
    EXPECT_EQ(cell("Rock", AssetBrowserModel::HolderColumn, Qt::ToolTipRole),
              QStringLiteral("bob (bob-ws): open for edit in changelist %1, locked").arg(cl));
    const AssetBrowserModel& model = window->model();
    const int row = model.rowOf(asset("Rock"));
    EXPECT_FALSE(model.data(model.index(row, AssetBrowserModel::HolderColumn), Qt::DecorationRole)
                     .value<QIcon>()
                     .isNull());
    EXPECT_TRUE(cell("Sky", AssetBrowserModel::HolderColumn, Qt::ToolTipRole).isEmpty());

    hbrc::revision::ChangelistId submitted;
    ASSERT_TRUE(bob.submit(ticket, changelist, "", submitted).ok());
    ASSERT_TRUE(DialogDriver::waitUntil(
        [&] { return cell("Rock", AssetBrowserModel::RevisionColumn) == QLatin1String("#1/#2"); }, 10000));
    ASSERT_NE(model.statusAt(row), nullptr);
    EXPECT_TRUE(model.statusAt(row)->behind);
    EXPECT_EQ(status("Rock"), "not at head");
    EXPECT_TRUE(cell("Rock", AssetBrowserModel::HolderColumn).isEmpty());
    EXPECT_TRUE(logged(QStringLiteral("Rock: bob no longer holds it; revision #2 is on the server (you have #1)")));
    EXPECT_FALSE(model.statusAt(model.rowOf(asset("Sky")))->behind);

    // With the timer off, coming back to the window asks (not more often than every 3 s).
    setRefreshSeconds(0);
    const std::uint64_t roundTrips = model.statusQuery().roundTrips();
    bobHolds("Sky");
    QTest::qWait(3100);
    EXPECT_EQ(model.statusQuery().roundTrips(), roundTrips) << "0 turns the timer off";
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&elsewhere));
    activate();
    ASSERT_TRUE(DialogDriver::waitUntil([&] { return cell("Sky", AssetBrowserModel::HolderColumn) == "bob"; }));

    QListWidget* log = window->logDock().list();
    const int before = log->count();
    window->closeWorkspace();
    ASSERT_TRUE(window->openWorkspace(depot->folder("alice")));
    waitForStatus();
    EXPECT_EQ(cell("Rock", AssetBrowserModel::RevisionColumn), "#1/#2");
    ASSERT_TRUE(DialogDriver::waitUntil([&] { return log->count() > before; }));
    for (int i = before; i < log->count(); ++i)
        EXPECT_FALSE(log->item(i)->text().startsWith("Rock:")) << log->item(i)->text().toStdString();
}

// The status bar names the session's state as the last status question found it; an unreachable
// server makes the studio work offline until it answers.
TEST_F(StudioWindow, TheStatusBarTellsAnExpiredSessionFromAnUnreachableServer)
{
    EXPECT_EQ(window->sessionState(), "logged in as alice");
    hbrc::host::RevisionControlServices services = session->services();
    ASSERT_TRUE(services.ExpireSessionNow().IsSuccess());
    window->refreshStatus();
    waitForStatus();
    EXPECT_EQ(window->sessionState(), "expired");
    EXPECT_EQ(status("Rock"), "up to date") << "the last known status stays";

    session->storeAccount({depot->path() + ".missing", "alice", depot->workspace("alice"), {}});
    window->closeWorkspace();
    ASSERT_TRUE(window->openWorkspace(depot->folder("alice")));
    waitForStatus();
    // The studio works offline by itself until the server answers.
    EXPECT_EQ(sessionLabel(), "Session: Offline: the server cannot be reached");
    EXPECT_EQ(status("Rock"), "Offline: the server cannot be reached");

    // The question runs off the UI thread, and the timer asks again: once the depot is there, the
    // answer comes from it (no session was opened: the studio is not logged in).
    setRefreshSeconds(1);
    window->refreshStatus();
    EXPECT_TRUE(window->model().isStatusPending()) << "refreshStatus returned before the answer";
    waitForStatus();
    EXPECT_EQ(sessionLabel(), "Session: Offline: the server cannot be reached");
    ASSERT_TRUE(QFile::link(QString::fromStdString(depot->path()), QString::fromStdString(depot->path() + ".missing")));
    ASSERT_TRUE(DialogDriver::waitUntil([this] { return window->sessionState() == "not logged in"; }, 10000));
}

// The start page's "Create a demo depot" makes a depot that alice can find again: it opens as her
// workspace and stays among the recent workspaces after it is closed.
TEST_F(StudioWindow, TheStartPageCreatesADemoDepotThatStaysInTheRecentList)
{
    window->closeWorkspace();
    const QString parent = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    auto* link = window->findChild<QWidget*>(QStringLiteral("createDemoLink"));
    ASSERT_NE(link, nullptr);
    ASSERT_TRUE(link->isVisible());
    link->setFocus();
    QTest::keyClick(link, Qt::Key_Return);
    waitForStatus();
    ASSERT_NE(session->currentWorkspace(), nullptr);
    const QString folder = session->currentWorkspace()->Root();
    EXPECT_TRUE(folder.startsWith(parent)) << folder.toStdString();
    EXPECT_EQ(window->model().rowCount(), 20);
    EXPECT_EQ(window->sessionState(), "logged in as alice");
    window->closeWorkspace();
    EXPECT_EQ(session->recentWorkspaces().value(0), folder);
    QDir(QFileInfo(folder).path()).removeRecursively();
}

// What the log says about an asset between two status answers, and how a hold reads.
TEST(StudioTexts, StatusChangesAndHolds)
{
    using hbrc::revision::FileAction;
    using hbrc::revision::FileHolder;
    const auto held = [](std::vector<FileHolder> holds) {
        AssetStatus status;
        status.heldBy = std::move(holds);
        return status;
    };
    const auto revisions = [](std::int64_t have, std::int64_t head) {
        AssetStatus status;
        status.haveRevision = have;
        status.headRevision = head;
        status.behind = have < head;
        return status;
    };
    const FileHolder bobEdits{"bob", "bob-ws", FileAction::Edit, "12", false};
    const FileHolder bobLocks{"bob", "bob-ws", FileAction::Edit, "12", true};
    const FileHolder bobMoved{"bob", "bob-ws", FileAction::Edit, "14", false};
    const FileHolder carolAdds{"carol", "carol-ws", FileAction::Add, "", false};
    const FileHolder aliceElsewhere{"alice", "alice-laptop", FileAction::Delete, "3", false};
    const struct {
        const char* name;
        AssetStatus before;
        AssetStatus after;
        const char* line;
    } changes[] = {
        {"nothing changed", held({bobEdits}), held({bobEdits}), ""},
        {"opened", held({}), held({bobEdits}), "Rock: bob opened it for edit in changelist 12"},
        {"locked later", held({bobEdits}), held({bobLocks}), "Rock: bob locked it"},
        {"unlocked", held({bobLocks}), held({bobEdits}), "Rock: bob unlocked it"},
        {"moved", held({bobEdits}), held({bobMoved}), "Rock: bob opened it for edit in changelist 14"},
        {"released", held({bobEdits, carolAdds}), held({carolAdds}), "Rock: bob no longer holds it"},
        {"added by another, two files", held({}), held({carolAdds, carolAdds}),
         "Rock: carol opened it for add in the default changelist"},
        {"the same user elsewhere", held({}), held({aliceElsewhere}),
         "Rock: alice opened it for delete in changelist 3"},
        {"newer revision", revisions(2, 2), revisions(2, 3), "Rock: revision #3 is on the server (you have #2)"},
        {"synced", revisions(2, 3), revisions(3, 3), ""},
        {"submitted here", revisions(2, 2), revisions(3, 3), ""},
    };
    for (const auto& row : changes)
        EXPECT_EQ(StatusChange::describe(QStringLiteral("Rock"), row.before, row.after), row.line) << row.name;

    EXPECT_EQ(StatusChange::describeHold(carolAdds), "carol (carol-ws): open for add in the default changelist");
}

// What a user reads in the status column (in German with the studio's translation, which has no
// Japanese), and which editor a field gets.
TEST(StudioTexts, StatusWordsAndFieldEditors)
{
    {
        std::unique_ptr<QTranslator> german = LoadStudioTranslator(QLocale(QLocale::German));
        ASSERT_NE(german, nullptr);
        EXPECT_EQ(LoadStudioTranslator(QLocale(QLocale::Japanese)), nullptr);
        QCoreApplication::installTranslator(german.get());
        EXPECT_EQ(AssetBrowserModel::statusText(0x1 | 0x40, {}), "ausgecheckt, nicht aktuell");
        QCoreApplication::removeTranslator(german.get());
    }

    const struct {
        unsigned word;
        QStringList holders;
        const char* text;
    } statuses[] = {
        {0x2, {"bob", "carol"}, "held by bob, carol"},
        {0x20000, {}, "held by another user"},
        {0x1 | 0x40, {}, "checked out, not at head"},
        {0x80, {}, "not in depot"},
        {0x8000 | 0x10, {}, "marked for delete, I/O error"},
    };
    for (const auto& row : statuses)
        EXPECT_EQ(AssetBrowserModel::statusText(row.word, row.holders), row.text) << row.word;

    const struct {
        const char* field;
        const char* value;
        FieldKind kind;
    } editors[] = {
        {"colour", "#7a746c", FieldKind::Colour},   {"rimColor", "red", FieldKind::Colour},
        {"colour", "sunset", FieldKind::Text},      {"roughness", "0.85", FieldKind::Number},
        {"meshFile", "oak.geo", FieldKind::FileReference}, {"title", "Valley", FieldKind::Text},
    };
    for (const auto& row : editors)
        EXPECT_EQ(KindOfField(QString::fromLatin1(row.field), QString::fromLatin1(row.value)), row.kind) << row.field;
    EXPECT_EQ(RangeOfField(QStringLiteral("Roughness"), 0.5).maximum, 1.0);
    EXPECT_EQ(RangeOfField(QStringLiteral("size"), 2048).maximum, 4096) << "an unknown field leaves room above its value";
}

// Alice's pending work from check-out to submit: the pane lists what she opened in the default
// changelist with the assets it belongs to; she makes a changelist, drags one file into it and
// moves another with the menu; Revert Unchanged reverts only the untouched one; Revert refuses an
// asset with unsaved edits, and a cancelled Revert changes nothing; her submit (the dialog refuses
// a blank description) reaches bob, whose sync through his own connection brings her file; an empty
// changelist is described anew and deleted. Bob's next changes reach her by Get Latest, which
// reads the asset again from disk.
TEST_F(StudioWindow, PendingChangesFromCheckOutToSubmitAndBobsSync)
{
    checkOutWithoutAsking();
    for (const char* name : {"Sky", "Snow"}) {
        select(name);
        window->action(QStringLiteral("checkOut"))->trigger();
    }
    select("Sky");
    typeColour(QStringLiteral("#ff8c42"));
    QTest::keySequence(window.get(), QKeySequence::Save);
    waitForOperations();
    EXPECT_EQ(pendingAssets(""), (QStringList{"Sky", "Snow"}));
    EXPECT_EQ(pending().rowCount(), 1) << "the default changelist only";

    expectDescription(QStringLiteral("New Changelist"), {}, QStringLiteral("Warmer sky"));
    window->pendingChanges().action(QStringLiteral("newChangelist"))->trigger();
    waitForOperations();
    ASSERT_EQ(pending().pending().size(), 2u);
    const std::string warmer = pending().pending()[1].changelist.id;
    EXPECT_EQ(pending().pending()[1].changelist.description, "Warmer sky");

    // Dropping onto the file's own changelist is no move; onto the new one (or a file of it) it is.
    selectPending(pendingFile("Sky"));
    EXPECT_FALSE(dragSelectedOnto(pending().changelistIndex("")));
    EXPECT_TRUE(dragSelectedOnto(pending().changelistIndex(warmer)));
    EXPECT_TRUE(window->operations().isBusy());
    EXPECT_FALSE(window->pendingChanges().action(QStringLiteral("submit"))->isEnabled()) << "busy";
    waitForOperations();
    EXPECT_EQ(pendingAssets(warmer), QStringList{"Sky"});

    selectPending(pendingFile("Snow"));
    QMenu menu;
    window->pendingChanges().fillMoveMenu(menu);
    EXPECT_EQ(menu.findChild<QAction*>(QStringLiteral("moveTo-default")), nullptr) << "Snow is there already";
    QAction* moveToWarmer = menu.findChild<QAction*>(QStringLiteral("moveTo-%1").arg(QString::fromStdString(warmer)));
    ASSERT_NE(moveToWarmer, nullptr);
    moveToWarmer->trigger();
    waitForOperations();
    EXPECT_EQ(pendingAssets(warmer), (QStringList{"Sky", "Snow"}));

    // Snow's unchanged file is reverted (tst_studioday: an asset with unsaved edits keeps its own).
    window->pendingChanges().action(QStringLiteral("revertUnchanged"))->trigger();
    waitForOperations();
    EXPECT_EQ(pendingAssets(warmer), QStringList{"Sky"});
    EXPECT_TRUE(window->statusBar()->currentMessage().startsWith("Reverted 1 unchanged file(s): //depot/"))
        << window->statusBar()->currentMessage().toStdString();
    EXPECT_FALSE(aliceMayWrite("Snow"));
    EXPECT_EQ(status("Snow"), "up to date");

    ASSERT_TRUE(pending().setData(pending().changelistIndex(warmer), Qt::Checked, Qt::CheckStateRole));
    EXPECT_EQ(pending().checkedFiles(), std::vector<std::string>{aliceFile("Sky")});
    // An unsaved edit keeps Sky from being reverted: nothing is asked and nothing lost.
    select("Sky");
    typeColour(QStringLiteral("#ffaa00"));
    waitForOperations();
    window->pendingChanges().action(QStringLiteral("revert"))->trigger();
    EXPECT_TRUE(window->statusBar()->currentMessage().startsWith("Not reverted: Sky has unsaved edits"));
    EXPECT_EQ(field("Sky", "colour"), "#ffaa00");
    activate();
    window->browser().view()->setFocus();
    QTest::keySequence(window.get(), QKeySequence::Undo);
    QTest::keySequence(window.get(), QKeySequence::Save);
    waitForOperations();

    driver.expectMessageBox(QStringLiteral("Revert"), QMessageBox::Cancel, QStringLiteral("Sky.kel"));
    window->pendingChanges().action(QStringLiteral("revert"))->trigger();
    EXPECT_FALSE(window->operations().isBusy()) << "nothing asked of the server";
    EXPECT_EQ(pendingAssets(warmer), QStringList{"Sky"});
    EXPECT_EQ(field("Sky", "colour"), "#ff8c42");

    selectPending(pending().changelistIndex(warmer));
    expectDescription(QStringLiteral("Submit"), QStringLiteral("Warmer sky"), QStringLiteral("Warmer sky at dusk"),
                      {QStringLiteral("Sky.kel")});
    window->pendingChanges().action(QStringLiteral("submit"))->trigger();
    waitForOperations();
    EXPECT_TRUE(window->statusBar()->currentMessage().contains(QRegularExpression("^Submitted change \\d+ \\(1 file\\(s\\)\\)$")))
        << window->statusBar()->currentMessage().toStdString();
    EXPECT_EQ(pending().pending().size(), 1u) << "the submitted changelist is gone";
    EXPECT_EQ(status("Sky"), "up to date");

    // An empty changelist is described anew, then deleted.
    expectDescription(QStringLiteral("New Changelist"), {}, QStringLiteral("Spare"));
    window->pendingChanges().action(QStringLiteral("newChangelist"))->trigger();
    waitForOperations();
    ASSERT_EQ(pending().pending().size(), 2u);
    selectPending(pending().changelistIndex(pending().pending()[1].changelist.id));
    expectDescription(QStringLiteral("Edit Description"), QStringLiteral("Spare"), QStringLiteral("Spare parts"));
    window->pendingChanges().action(QStringLiteral("editDescription"))->trigger();
    waitForOperations();
    EXPECT_EQ(pending().pending()[1].changelist.description, "Spare parts");
    window->pendingChanges().action(QStringLiteral("deleteChangelist"))->trigger();
    waitForOperations();
    EXPECT_EQ(pending().pending().size(), 1u);

    ASSERT_TRUE(depot->bob().sync(depot->bobTicket(), {bobFile("Sky")}).ok());
    QFile synced(QString::fromStdString(bobFile("Sky")));
    ASSERT_TRUE(synced.open(QIODevice::ReadOnly));
    EXPECT_TRUE(synced.readAll().contains("#ff8c42"));

    // Bob's Rock and Sun reach alice's browser and memory through Get Latest.
    for (const auto& [asset, colour] : {std::pair{"Rock", "#5a544c"}, std::pair{"Sun", "#ffd080"}}) {
        bobHolds(asset);
        SubmitFields(depot->bob(), depot->bobTicket(), bobFile(asset), {{"colour", colour}}, "bob's colour");
    }
    select("Rock");
    EXPECT_FALSE(window->action(QStringLiteral("getLatest"))->isEnabled());
    window->refreshStatus();
    waitForOperations();
    for (const char* name : {"getLatest", "getLatestAll"}) {
        window->action(QString::fromLatin1(name))->updateEnabled();
        ASSERT_TRUE(window->action(QString::fromLatin1(name))->isEnabled()) << name;
    }
    window->action(QStringLiteral("getLatestAll"))->trigger();
    waitForOperations();
    EXPECT_EQ(field("Rock", "colour"), "#5a544c");
    EXPECT_EQ(field("Sun", "colour"), "#ffd080");
    EXPECT_EQ(status("Rock"), "up to date");
    EXPECT_EQ(status("Sun"), "up to date");
    window->action(QStringLiteral("getLatestAll"))->updateEnabled();
    EXPECT_FALSE(window->action(QStringLiteral("getLatestAll"))->isEnabled());
}

// A pending changelist of the given files (their local paths).
hbrc::revision::PendingChangelist changelist(const char* id, const std::vector<std::string>& paths)
{
    hbrc::revision::PendingChangelist list;
    list.changelist.id = id;
    for (const std::string& path : paths) {
        hbrc::revision::OpenedFile file;
        file.depotPath = "//depot/" + path;
        file.localPath = path;
        list.files.push_back(file);
    }
    return list;
}

// A changelist's box shows whether none, some or all of its files are checked and checks or
// unchecks them all; the checked files stay checked when a newer answer moves them.
TEST(StudioPendingChanges, ChangelistBoxesFollowTheirFilesAndChecksSurviveANewAnswer)
{
    PendingChangesModel model;
    model.setPending({changelist("", {"a", "b"}), changelist("7", {"c"})}, {}, {});
    const auto box = [&](const char* id) { return model.changelistIndex(id).data(Qt::CheckStateRole).toInt(); };
    const struct {
        const char* name;
        std::string file;  // "" to click the changelist's box
        const char* changelist;
        Qt::CheckState state;
        std::vector<std::string> checked;
        Qt::CheckState defaultBox;
    } clicks[] = {
        {"one file", "a", "", Qt::Checked, {"a"}, Qt::PartiallyChecked},
        {"the default changelist", "", "", Qt::Checked, {"a", "b"}, Qt::Checked},
        {"a file unchecked", "b", "", Qt::Unchecked, {"a"}, Qt::PartiallyChecked},
        {"a partial changelist", "", "", Qt::Checked, {"a", "b"}, Qt::Checked},
        {"another changelist", "", "7", Qt::Checked, {"a", "b", "c"}, Qt::Checked},
        {"the default unchecked", "", "", Qt::Unchecked, {"c"}, Qt::Unchecked},
    };
    for (const auto& click : clicks) {
        const QModelIndex at = click.file.empty() ? model.changelistIndex(click.changelist) : model.fileIndex(click.file);
        ASSERT_TRUE(model.setData(at, click.state, Qt::CheckStateRole)) << click.name;
        EXPECT_EQ(model.checkedFiles(), click.checked) << click.name;
        EXPECT_EQ(box(""), click.defaultBox) << click.name;
    }
    EXPECT_EQ(box("7"), Qt::Checked);

    model.setPending({changelist("", {"b", "c"})}, {}, {});
    EXPECT_EQ(model.checkedFiles(), std::vector<std::string>{"c"});
    EXPECT_EQ(box(""), Qt::PartiallyChecked);
    EXPECT_FALSE(model.changelistIndex("7").isValid());
}

// Operations run one at a time in the order asked, none dropped: a refusal does not stop the next,
// and each outcome carries the pending changelists as that operation left them. A refresh asked
// while an operation waits in the queue adds nothing; one on its own shows no work in the pane.
// The log dock lists the host log with each entry's level; Ctrl+C copies the selected entries.
TEST_F(StudioWindow, RevisionOperationsRunInOrderAndTheLogDockReportsEachOutcome)
{
    waitForOperations();
    RevisionOperations& operations = window->operations();
    std::vector<OperationOutcome> outcomes;
    QList<bool> busy;
    QObject::connect(&operations, &RevisionOperations::finished, [&](const OperationOutcome& outcome) {
        outcomes.push_back(outcome);
    });
    QObject::connect(&operations, &RevisionOperations::busyChanged, [&](bool now) { busy << now; });
    QList<bool> working;
    QObject::connect(&operations, &RevisionOperations::workingChanged, [&](bool now) { working << now; });
    operations.run(QStringLiteral("first"), ChangelistWork::newChangelist("first", {}));
    operations.run(QStringLiteral("bad move"), ChangelistWork::reopen({aliceFile("Rock")}, "999"));
    operations.run(QStringLiteral("second"), ChangelistWork::newChangelist("second", {}));
    operations.refreshPending();
    EXPECT_TRUE(operations.isBusy());
    waitForOperations();

    EXPECT_EQ(busy, (QList<bool>{true, false}));
    EXPECT_EQ(working, (QList<bool>{true, false}));
    // A refresh on its own, as the status timer asks for it, is not work the pane shows.
    operations.refreshPending();
    EXPECT_TRUE(operations.isBusy());
    EXPECT_FALSE(operations.isWorking());
    waitForOperations();
    EXPECT_EQ(working.size(), 2);
    ASSERT_EQ(outcomes.size(), 4u);
    const auto descriptions = [](const OperationOutcome& outcome) {
        std::vector<std::string> texts;
        for (const hbrc::revision::PendingChangelist& list : outcome.pending)
            texts.push_back(list.changelist.description);
        return texts;
    };
    EXPECT_EQ(outcomes[0].what, "first");
    EXPECT_TRUE(outcomes[0].result.ok());
    EXPECT_EQ(descriptions(outcomes[0]), (std::vector<std::string>{"", "first"}));
    EXPECT_EQ(outcomes[1].what, "bad move");
    EXPECT_FALSE(outcomes[1].result.ok());
    EXPECT_FALSE(outcomes[1].result.error.empty());
    EXPECT_TRUE(window->logDock().selectedText().contains(
        QStringLiteral("bad move refused: %1").arg(QString::fromStdString(outcomes[1].result.error))));
    EXPECT_EQ(descriptions(outcomes[2]), (std::vector<std::string>{"", "first", "second"}));
    EXPECT_EQ(pending().pending().size(), 3u) << "the pane shows the last outcome";

    QListWidget* list = window->logDock().list();
    const int before = list->count();
    Log::Singleton::Instance().Write(Log::eError, "the depot is on fire");
    Log::Singleton::Instance().Write(Log::eWarning, "smoke seen");
    ASSERT_TRUE(DialogDriver::waitUntil([&] { return list->count() >= before + 2; }));
    QListWidgetItem* error = list->item(list->count() - 2);
    EXPECT_EQ(error->text(), "the depot is on fire");
    EXPECT_EQ(error->data(Qt::UserRole).toInt(), Log::eError);
    EXPECT_FALSE(error->icon().isNull());
    list->clearSelection();
    error->setSelected(true);
    list->item(list->count() - 1)->setSelected(true);
    activate();
    list->setFocus();
    QTest::keySequence(list, QKeySequence::Copy);
    EXPECT_EQ(QApplication::clipboard()->text(), "the depot is on fire\nsmoke seen");
}

// Submitting part of a changelist on the depot: from the default changelist the checked files go
// into a new numbered changelist and are submitted; from a numbered one the unchecked files go back
// to the default changelist first. Either way only the checked files of that changelist are
// submitted, not those checked in another one.
TEST(StudioPendingChanges, SubmitWorkSubmitsOnlyTheCheckedFiles)
{
    const QTemporaryDir dir;
    DemoServer depot(dir.path());
    SeedSampleWorkspace(depot);
    const std::unique_ptr<hbrc::host::RevisionServer> alice = hbrc::host::OpenRevisionServer(depot.path(), {});
    std::string ticket;
    ASSERT_TRUE(alice->login("alice", "alice-pw", depot.workspace("alice"), ticket).ok());
    const auto file = [&](const char* name) { return depot.folderPath("alice") + "/" + name + ".kel"; };
    const auto pendingFiles = [&] {
        std::vector<hbrc::revision::PendingChangelist> pending;
        EXPECT_TRUE(alice->pendingChangelists(ticket, pending).ok());
        std::vector<std::vector<std::string>> files;
        for (const hbrc::revision::PendingChangelist& list : pending) {
            files.emplace_back();
            for (const hbrc::revision::OpenedFile& opened : list.files)
                files.back().push_back(opened.localPath);
        }
        return files;
    };
    ASSERT_TRUE(alice->edit(ticket, {file("Rock"), file("Sky"), file("Snow")}, "").ok());
    hbrc::revision::ChangelistId numbered;
    ASSERT_TRUE(alice->createChangelist(ticket, "props", numbered).ok());
    ASSERT_TRUE(alice->edit(ticket, {file("Oak"), file("Sand")}, numbered).ok());

    const struct {
        const char* name;
        std::string changelist;
        ChangelistWork::Files checked;
        int submitted;
        std::vector<std::vector<std::string>> pendingAfter;
    } submits[] = {
        {"from the default changelist", "", {file("Rock"), file("Oak"), file("Snow")}, 2,
         {{file("Sky")}, {file("Oak"), file("Sand")}}},
        {"from a numbered changelist", numbered, {file("Sand")}, 1, {{file("Oak"), file("Sky")}}},
    };
    for (const auto& submit : submits) {
        std::vector<hbrc::revision::PendingChangelist> pending;
        ASSERT_TRUE(alice->pendingChangelists(ticket, pending).ok());
        const auto list = std::find_if(pending.begin(), pending.end(),
                                       [&](const auto& each) { return each.changelist.id == submit.changelist; });
        ASSERT_NE(list, pending.end()) << submit.name;
        OperationOutcome outcome;
        const hbrc::revision::Result result = ChangelistWork::submit(ChangelistWork::planSubmit(*list, submit.checked),
                                                                  "part of it")(*alice, ticket, outcome);
        ASSERT_TRUE(result.ok()) << submit.name << ": " << result.error;
        EXPECT_TRUE(outcome.done.endsWith(QStringLiteral("(%1 file(s))").arg(submit.submitted))) << submit.name;
        EXPECT_EQ(pendingFiles(), submit.pendingAfter) << submit.name;
    }
}

// A log-in kept by "hbdepot login" serves the studio's next start without a dialog; Log Out ends
// the depot's session and forgets the kept log-in, so that hbdepot is logged out too. The next
// start has the window's last size.
TEST_F(StudioWindow, AKeptLogInServesTheNextStartAndLogOutForgetsIt)
{
    hbrc::depot::Depot terminal(depot->path());
    std::string ticket;
    ASSERT_TRUE(terminal.login("alice", "alice-pw", depot->workspace("alice"), ticket).ok());
    TicketStore().save(TicketStore::depotKey(depot->path()), "alice", {depot->workspace("alice"), ticket});
    window->resize(900, 640);
    window->close();
    startAlice();
    EXPECT_EQ(window->size(), QSize(900, 640));
    EXPECT_EQ(sessionLabel(), "Session: logged in as alice");
    EXPECT_TRUE(logged(QStringLiteral("Logged in as alice with the kept log-in")));
    EXPECT_EQ(status("Rock"), "up to date");

    window->action(QStringLiteral("logOut"))->trigger();
    EXPECT_EQ(sessionLabel(), "Session: not logged in");
    EXPECT_EQ(status("Rock"), "not logged in");
    EXPECT_FALSE(TicketStore().find(TicketStore::depotKey(depot->path()), "alice"));
    std::string user, workspace;
    EXPECT_LT(terminal.session(ticket, user, workspace).code, 0);
}

// The user's own "off" holds on the next start; while it is off the window says so, and a save
// names who holds the read-only files it would make writable. A click on the session offers to
// turn revision control on.
TEST_F(StudioWindow, RevisionControlTurnedOffByTheUserStaysOffAndTheSaveNamesTheHolder)
{
    bobHolds("Rock", "", true);

    driver.expect(QStringLiteral("settings"), [](QWidget* dialog) {
        auto* use = dialog->findChild<QCheckBox*>(QStringLiteral("useSourceDataControl"));
        ASSERT_TRUE(use && use->isChecked());
        use->setChecked(false);
        qobject_cast<QDialog*>(dialog)->accept();
    });
    window->action(QStringLiteral("settings"))->trigger();
    startAlice("alice-pw");
    EXPECT_EQ(sessionLabel(), "Session: revision control off");
    EXPECT_EQ(status("Rock"), "revision control off");
    EXPECT_TRUE(window->action(QStringLiteral("turnRevisionControlOn"))->isEnabled());

    ASSERT_TRUE(session->currentWorkspace()->SetField(asset("Rock"), "colour", "#b0483a"));
    driver.expect(QStringLiteral("the save's question"), [](QWidget* dialog) { qobject_cast<QDialog*>(dialog)->reject(); });
    window->save();
    EXPECT_TRUE(logged(QStringLiteral("Rock is locked by bob: turn revision control on to check it out")));

    QTest::mouseClick(window->statusBar()->findChild<QLabel*>(QStringLiteral("sessionState")), Qt::LeftButton);
    auto* offer = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(offer && offer->actions().size() == 1);
    offer->actions().first()->trigger();
    offer->close();
    EXPECT_EQ(sessionLabel(), "Session: logged in as alice");
}

}  // namespace
