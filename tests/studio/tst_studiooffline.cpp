// A morning offline and an afternoon reconciled, in alice's real studio on a demo depot and on
// Subversion with bob working meanwhile; and the offline journal's promise that a kill of the host
// never leaves a changed file unnamed.
#include "assetedits.h"
#include "offlinework.h"
#include "pendingchangespane.h"
#include "pendingchangesmodel.h"
#include "propertypane.h"
#include "reconciler.h"
#include "sessioncontroller.h"
#include "demodepot.h"
#include "studiofixture.h"

#include <depot/depot.h>
#include <hbrcdatamodel/offlinejournal.h>
#include <hbrcservices/revisionserver.h>
#include <qtextention/qfunctoraction.h>
#include <svnrepositoryfixture.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>

#include <csignal>
#include <map>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

using namespace hbrc::studio;
using namespace hbrc::test;

namespace {

hbrc::host::NewAsset named(const std::string& name)
{
    hbrc::host::NewAsset asset;
    asset.name = name;
    return asset;
}

enum class Backend { Depot, Subversion };

class StudioOffline : public StudioFixture<::testing::TestWithParam<Backend>>
{
protected:
    void SetUp() override
    {
        StudioFixture::SetUp();
        startOnDemo(GetParam() == Backend::Subversion);
    }
    std::set<std::string> journalled() const
    {
        std::set<std::string> files;
        for (const auto& [file, change] : window->offlineWork().journal()->Entries())
            files.insert(file);
        return files;
    }
    // What the journal keeps of her content while a reconcile brings a file to a newer revision.
    QStringList keptCopies() const
    {
        return QDir(window->offlineWork().journal()->File() + ".kept").entryList(QDir::Files);
    }
    QByteArray onDisk(const char* name) const
    {
        QFile file(QString::fromStdString(aliceFile(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // bob adds a field to an asset in his workspace and submits it; the file's new head revision.
    std::int64_t bobSubmits(const char* name)
    {
        const std::string path = depot->folderPath("bob") + "/" + name + ".kel";
        EXPECT_TRUE(depot->bob().edit(depot->bobTicket(), {path}, "").ok());
        SubmitFields(depot->bob(), depot->bobTicket(), path, {{"season", "autumn"}}, "bob's " + std::string(name));
        std::vector<hbrc::revision::FileStatus> statuses;
        EXPECT_TRUE(depot->bob().status(depot->bobTicket(), {path}, statuses).ok());
        return statuses.empty() ? 0 : statuses.front().headRevision;
    }
    // Expects the Reconcile dialog, checks what it lists, unchecks the rows named and reconciles into
    // a new changelist, from the keyboard.
    void expectReconcile(const QStringList& listed, const QStringList& unchecked, const QString& description)
    {
        driver.expect(QStringLiteral("Reconcile Offline Work"), [=](QWidget* dialog) {
            EXPECT_EQ(dialog->windowTitle(), "Reconcile Offline Work");
            auto* files = dialog->findChild<QTreeWidget*>(QStringLiteral("files"));
            ASSERT_NE(files, nullptr);
            QStringList rows;
            for (int row = 0; row < files->topLevelItemCount(); ++row) {
                QTreeWidgetItem* item = files->topLevelItem(row);
                rows << QStringList{item->text(0), item->text(1), item->text(2)}.join(" | ");
                if (unchecked.contains(item->text(0))) {
                    files->setCurrentItem(item);
                    QTest::keyClick(files, Qt::Key_Space);
                    EXPECT_EQ(item->checkState(0), Qt::Unchecked) << item->text(0).toStdString();
                }
            }
            EXPECT_EQ(rows.join('\n').toStdString(), listed.join('\n').toStdString());
            QTest::keyClick(files, Qt::Key_Tab);
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Tab);
            auto* edit = qobject_cast<QLineEdit*>(dialog->focusWidget());
            ASSERT_TRUE(edit && edit->objectName() == "description") << "Tab: files, changelist, description";
            edit->selectAll();
            QTest::keyClicks(edit, description);
            QTest::keyClick(edit, Qt::Key_Return);
        });
    }
    void reconcileAndWait(QAbstractButton* start)
    {
        const int answered = driver.answered();
        start->click();
        ASSERT_TRUE(DialogDriver::waitUntil(
            [&] { return driver.answered() > answered && !window->reconciler().isBusy() && !window->operations().isBusy(); },
            20000));
    }
};

TEST_P(StudioOffline, AMorningOfflineIsReconciledWithEveryConflictNamedAndNothingLost)
{
    QFunctorAction* workOffline = window->action(QStringLiteral("workOffline"));
    workOffline->trigger();
    EXPECT_EQ(sessionLabel(), "Session: Offline: working offline by choice");
    EXPECT_FALSE(window->action(QStringLiteral("reconcile"))->isEnabled());

    // Her morning: two edits, a new asset and a deleted one, saved; the save makes the read-only
    // files writable as it does with revision control off.
    select("Sky");
    typeColour(QStringLiteral("#123456"));
    select("Leaf");
    typeColour(QStringLiteral("#654321"));
    ASSERT_TRUE(window->newAsset(QStringLiteral("Moss")));
    window->assetEdits().deleteAsset(asset("Water"));
    driver.expect(QStringLiteral("the save's question"), [](QWidget* dialog) {
        for (auto* button : dialog->findChildren<QPushButton*>())
            if (button->text().remove('&') == "Make Writable")
                return button->click();
        ADD_FAILURE() << "no Make Writable button";
    });
    ASSERT_TRUE(window->save());
    const std::set<std::string> herFiles{aliceFile("Leaf"), aliceFile("Moss"), aliceFile("Sky"), aliceFile("Water")};
    EXPECT_EQ(journalled(), herFiles);

    // bob meanwhile submits Leaf and locks Sky (a check-out on Subversion).
    const QString bobsLeaf = QString::number(bobSubmits("Leaf"));
    const std::string bobSky = depot->folderPath("bob") + "/Sky.kel";
    ASSERT_TRUE(depot->bob().edit(depot->bobTicket(), {bobSky}, "").ok());
    if (GetParam() == Backend::Depot) {
        ASSERT_TRUE(hbrc::depot::Depot(depot->path()).lock(depot->bobTicket(), {bobSky}).ok());
    }

    // Online again: the window offers the reconcile, which lists her four files with bob named.
    workOffline->trigger();
    auto* notice = window->statusBar()->findChild<QPushButton*>(QStringLiteral("reconcileNotice"));
    ASSERT_TRUE(notice && DialogDriver::waitUntil([&] { return notice->isVisible(); }, 20000));
    QStringList listed{"Leaf.kel | edit (keeps your content over bob's revision " + bobsLeaf +
                           ") | revision " + bobsLeaf + " was submitted by bob",
                       "Moss.kel | add | nothing new", "Sky.kel | edit | locked by bob", "Water.kel | delete | nothing new"};
    QPushButton menuCommand;
    QObject::connect(&menuCommand, &QPushButton::clicked, window->action(QStringLiteral("reconcile")), &QAction::trigger);
    // A refused reconcile opens nothing and names the holder; one refused after its edit call
    // reverts the edits and keeps her content. Leaf, which was brought to bob's revision under her
    // content, goes back to hers, listed as before.
    const auto refusedAttempt = [&](QAbstractButton* start, const QString& refusal) {
        expectReconcile(listed, {}, QStringLiteral("Offline morning"));
        driver.expectMessageBox(QStringLiteral("Reconcile Refused"), QMessageBox::Ok, refusal);
        reconcileAndWait(start);
        ASSERT_TRUE(DialogDriver::waitUntil([&] { return driver.finished(); }));
        waitForOperations();
        EXPECT_EQ(journalled(), herFiles);
        for (const hbrc::revision::PendingChangelist& list : window->pendingChanges().model().pending())
            EXPECT_TRUE(list.files.empty()) << "all or none: " << list.changelist.id;
        EXPECT_TRUE(onDisk("Sky").contains("#123456"));
        EXPECT_TRUE(onDisk("Leaf").contains("#654321") && !onDisk("Leaf").contains("season"));
        EXPECT_EQ(keptCopies(), QStringList());
    };
    refusedAttempt(notice, QStringLiteral("Sky.kel is locked by bob"));

    // bob lets Sky go, but has made a Moss of his own meanwhile, which only the depot knows of.
    ASSERT_TRUE(depot->bob().revert(depot->bobTicket(), {bobSky}).ok());
    listed[2] = "Sky.kel | edit | nothing new";
    if (GetParam() == Backend::Depot) {
        const std::string bobMoss = depot->folderPath("bob") + "/Moss.kel";
        QFile moss(QString::fromStdString(bobMoss));
        ASSERT_TRUE(moss.open(QIODevice::WriteOnly) && moss.write("bob's moss") > 0);
        moss.close();
        ASSERT_TRUE(depot->bob().add(depot->bobTicket(), {bobMoss}, "").ok());
        listed[1] = "Moss.kel | add | added by bob";
        refusedAttempt(&menuCommand, QStringLiteral("Moss.kel is opened for add by bob"));
        ASSERT_TRUE(depot->bob().revert(depot->bobTicket(), {bobMoss}).ok());
        listed[1] = "Moss.kel | add | nothing new";
    }
    // A reconcile killed once it had put Leaf aside: the next one puts her content back first.
    std::string error;
    ASSERT_TRUE(window->offlineWork().journal()->Keep(aliceFile("Leaf"), error)) << error;
    ASSERT_TRUE(QFile::remove(QString::fromStdString(aliceFile("Leaf"))));
    expectReconcile(listed, {}, QStringLiteral("Offline morning"));
    reconcileAndWait(&menuCommand);
    waitForOperations();

    std::map<std::string, hbrc::revision::FileAction> opened;
    for (const hbrc::revision::PendingChangelist& list : window->pendingChanges().model().pending())
        for (const hbrc::revision::OpenedFile& file : list.files)
            if (list.changelist.description == "Offline morning")
                opened[file.localPath] = file.action;
    using hbrc::revision::FileAction;
    EXPECT_EQ(opened, (std::map<std::string, FileAction>{
                          {aliceFile("Leaf"), FileAction::Edit},
                          {aliceFile("Moss"), FileAction::Add},
                          {aliceFile("Sky"), FileAction::Edit},
                          {aliceFile("Water"), FileAction::Delete}}));
    EXPECT_TRUE(journalled().empty());
    EXPECT_EQ(keptCopies(), QStringList());
    EXPECT_TRUE(onDisk("Sky").contains("#123456"));
    EXPECT_TRUE(onDisk("Leaf").contains("#654321") && !onDisk("Leaf").contains("season"));
    EXPECT_TRUE(onDisk("Moss").contains("Moss"));
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(aliceFile("Water"))));
}

// Revision control off by hand journals edits as offline work does; offers go with their workspace;
// the Work Offline switch outlives a restart, which asks the server nothing; offline by itself does not.
TEST_P(StudioOffline, RevisionControlOffJournalsAndTheSwitchOutlivesARestart)
{
    if (GetParam() == Backend::Subversion)
        GTEST_SKIP() << "the server moves away by its folder, which only the embedded depot has";
    session->settings()->SetUseSourceDataControl(false);  // as the settings dialog does
    window->sessionController().revisionControlChosen(true);
    select("Sky");
    window->action(QStringLiteral("makeWritable"))->trigger();
    ASSERT_TRUE(window->newAsset(QStringLiteral("Moss")) && window->save());
    EXPECT_EQ(journalled(), (std::set<std::string>{aliceFile("Moss"), aliceFile("Sky")}));
    const auto shows = [this](const char* name) { return window->findChild<QWidget*>(name)->isVisible(); };
    window->action(QStringLiteral("turnRevisionControlOn"))->trigger();
    EXPECT_TRUE(shows("reconcileNotice"));
    ASSERT_TRUE(depot->bob().edit(depot->bobTicket(), {depot->folderPath("bob") + "/Rock.kel"}, "").ok());
    window->refreshStatus();
    waitForStatus();
    select("Rock");
    driver.expectMessageBox(QStringLiteral("Checkout Error"), QMessageBox::Ok, QStringLiteral("bob"));
    window->action(QStringLiteral("checkOut"))->trigger();
    ASSERT_TRUE(shows("noticeBar"));
    window->action(QStringLiteral("workOffline"))->trigger();
    window->closeWorkspace();
    EXPECT_FALSE(shows("noticeBar") || shows("reconcileNotice"));
    const std::string away = depot->path() + ".away";  // on the train
    start(away, depot->workspace("alice"), depot->folder("alice"), "alice-pw");
    EXPECT_EQ(sessionLabel(), "Session: Offline: working offline by choice");
    select("Sky");
    window->propertyPane().setCurrentIndex(window->propertyPane().indexOfPage(QStringLiteral("revisionHistoryPage")));
    window->action(QStringLiteral("submittedChanges"))->trigger();
    EXPECT_EQ(window->findChild<QLabel*>(QStringLiteral("historyState"))->text(),
              "Working offline: the history is asked for when you work online.");
    EXPECT_EQ(window->findChild<QLabel*>(QStringLiteral("changesState"))->text(),
              "Working offline: the submitted changes are asked for when you work online.");
    EXPECT_EQ(window->sessionController().serverState(), SessionState::NotLoggedIn) << "nothing was asked";
    QSignalSpy loggedIn(&window->sessionController(), &SessionController::retried);
    window->action(QStringLiteral("workOffline"))->trigger();
    ASSERT_TRUE(loggedIn.wait(10000));
    EXPECT_EQ(sessionLabel(), "Session: Offline: the server cannot be reached");
    EXPECT_TRUE(window->action(QStringLiteral("workOffline"))->isChecked());
    ASSERT_TRUE(QFile::link(QString::fromStdString(depot->path()), QString::fromStdString(away)));
    start(away, depot->workspace("alice"), depot->folder("alice"), "alice-pw");
    EXPECT_EQ(sessionLabel(), "Session: logged in as alice");
}

INSTANTIATE_TEST_SUITE_P(Backends, StudioOffline, ::testing::Values(Backend::Depot, Backend::Subversion),
                         [](const auto& info) { return info.param == Backend::Depot ? "Depot" : "Subversion"; });

// A save of new assets and deleted ones, killed at any moment, leaves every file that appeared or
// vanished named in the journal.
TEST(OfflineJournal, AKilledSaveLeavesEveryChangedFileNamed)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString folder = dir.filePath(QStringLiteral("workspace"));
    ASSERT_TRUE(QDir().mkpath(folder));
    std::string error;
    std::unique_ptr<hbrc::host::Workspace> workspace = hbrc::host::Workspace::Open(folder, error);
    ASSERT_TRUE(workspace) << error;
    constexpr int kOld = 40;
    for (int i = 0; i < kOld; ++i)
        ASSERT_FALSE(workspace->CreateAsset(named("old" + std::to_string(i)), error).IsNull());
    ASSERT_TRUE(workspace->Save().Succeeded());

    const auto filesOnDisk = [&] {
        std::set<std::string> files;
        for (const QString& name : QDir(folder).entryList({QStringLiteral("*.kel")}, QDir::Files))
            files.insert(QFile::encodeName(QDir(folder).filePath(name)).toStdString());
        return files;
    };
    int killedMidway = 0;
    for (int round = 0; round < 6; ++round) {
        const QString journalFile = dir.filePath(QStringLiteral("round%1.journal").arg(round));
        hbrc::host::OfflineJournal journal(journalFile);
        workspace->Model().SetJournal(&journal);
        for (int i = 0; i < 60; ++i)
            workspace->CreateAsset(named("r" + std::to_string(round) + "n" + std::to_string(i)), error);
        std::size_t deleted = 0;
        for (int i = round; i < kOld; i += 6, ++deleted)
            workspace->DeleteAsset(workspace->FindAsset("old" + std::to_string(i)));
        const std::set<std::string> before = filesOnDisk();
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            workspace->Save();
            ::_exit(0);
        }
        // Round 0 is killed at once, rounds 1 and 2 when the first file is gone, the others when
        // the first new one is there.
        const auto newFileThere = [&] {
            const std::set<std::string> now = filesOnDisk();
            return std::any_of(now.begin(), now.end(), [&](const std::string& file) { return !before.count(file); });
        };
        while (round > 0 && (round < 3 ? filesOnDisk() == before : !newFileThere()) &&
               ::waitpid(child, nullptr, WNOHANG) == 0) {
        }
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        workspace->Model().SetJournal(nullptr);

        const std::set<std::string> after = filesOnDisk();
        killedMidway += after != before && after.size() != before.size() + 60 - deleted ? 1 : 0;
        const hbrc::host::OfflineJournal named(journalFile);
        std::set<std::string> changed;
        std::set_symmetric_difference(before.begin(), before.end(), after.begin(), after.end(),
                                      std::inserter(changed, changed.end()));
        for (const std::string& file : changed)
            EXPECT_TRUE(named.Entries().count(file)) << file << " changed in round " << round << " unnamed";
        // What the killed save left undone is saved now, as after a restart.
        workspace->Save();
    }
    EXPECT_GT(killedMidway, 0) << "no kill landed amid the changes";
}

}  // namespace
