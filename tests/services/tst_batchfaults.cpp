// A batch job against a failing server: alice's host runs the real plug-in with no window, its
// progress box standing by, on every server kind. Whatever the fault, the editability question and
// a save end within their deadlines, show no dialog, keep the edit, leave no lock and report once.
#include <dialogdriver.h>
#include <serverhostfixture.h>

#include <hbrchost/logcapture.h>
#include <kel4/irevisioncontroluihelper.h>
#include <kel4/itimeoutdelegate.h>
#include <kel4/revisionstatus.h>

#include <QApplication>
#include <QDirIterator>
#include <QTimer>
#include <QWidget>

#include <svn_pools.h>
#include <svn_wc.h>

#include <csignal>
#include <functional>

namespace {

using namespace std::chrono_literals;
using Log::eError;
using Log::eWarning;

class BatchFaults : public ServerFixture
{
public:
    hbrc::host::ConnectionOptions ConnectionOptionsForAlice() const override
    {
        hbrc::host::ConnectionOptions options = ServerFixture::ConnectionOptionsForAlice();
        options.callDeadline = 1s;
        options.renewFromKeptLogIn = true;
        options.timeOutThreshold = 20ms;  // a progress box shown in batch would be caught
        return options;
    }
    void SetUp() override
    {
        ServerFixture::SetUp();
        if (HasFatalFailure())
            return;
        std::string error;
        ASSERT_TRUE(host->LoadPlugin(HBRC_PLUGIN_PATH, error)) << error;
        ASSERT_NE(host->StartComponent("RevisionControlPropertiesMgr"), nullptr);
        helper = dynamic_cast<kel4::IRevisionControlUIHelper*>(host->StartComponent("RevisionControlUIHelper"));
        qputenv("HBDEPOT_TICKETS", m_home.filePath(QStringLiteral("tickets")).toLocal8Bit());  // kept log-ins
        qputenv("HOME", m_home.path().toLocal8Bit());
        host->Preferences().SetBoolPref("RevControl.UseSourceDataControl", true, 1);
        host->Preferences().SetIntPref("RevControl.BatchRetryDeadlineSeconds", 0, 1);
        workspace = host->OpenWorkspace(AliceFolder(), error);
        ASSERT_NE(workspace, nullptr) << error;
        FileVersionControl()->SetTimeOutDelegate(dynamic_cast<kel4::ITimeOutDelegate*>(helper));
        // Moss: submitted metadata, the kind whose save asks the plug-in first.
        const ObjectList moss{CreateMetadata("Moss")};
        workspace->Save();
        ASSERT_EQ(DataControl()->MarkForAdd(moss, true, kPersistence, "", error).GetCode(), 0) << error;
        AliceSubmits("moss");
        BobExpects(Bob().sync(BobTicket(), {}));
    }
    void TearDown() override
    {
        if (workspace)
            FileVersionControl()->SetTimeOutDelegate(nullptr);
        qputenv("HOME", m_realHome);
        qunsetenv("HBDEPOT_TICKETS");
        ServerFixture::TearDown();
    }

    KELHandle<kel4::IDbObject> CreateMetadata(const std::string& name)
    {
        std::string error;
        const KELHandle<kel4::IDbObject> created(
            workspace->CreateAsset({hbrc::host::AssetKind::Metadata, "Asset", name, "", true, {{"note", "seed"}}}, error));
        EXPECT_FALSE(created.IsNull()) << error;
        return created;
    }
    // svnserve stopped (it still accepts, never answers), or a round trip longer than any deadline.
    void Freeze(bool frozen)
    {
        if (Server() != ServerKind::SvnServe)
            return services.connection->Faults().setLatency(frozen ? 10min : 0min);
        const QByteArray port = "--listen-port=" + QByteArray::fromStdString(DepotPath().substr(DepotPath().rfind(':') + 1));
        for (QDirIterator it(QStringLiteral("/proc")); it.hasNext();) {
            QFile cmdline(it.next() + QStringLiteral("/cmdline"));
            if (cmdline.open(QIODevice::ReadOnly) && cmdline.readAll().split('\0').contains(port)) {
                ASSERT_EQ(::kill(static_cast<pid_t>(it.fileName().toLongLong()), frozen ? SIGSTOP : SIGCONT), 0);
            }
        }
    }
    // A log-in of alice's that outlives its process (hbdepot login, "keep me logged in"); with
    // elsewhere, one made in another working copy, which then locks that asset there.
    void AliceElsewhere(bool keep, const char* elsewhere = nullptr)
    {
        const auto other = hbrc::host::OpenRevisionServer(DepotPath(), {});
        const std::string folder =
            elsewhere ? QFile::encodeName(QDir::cleanPath(AliceFolder() + "/../elsewhere")).toStdString() : AliceWorkspace();
        std::string ticket;
        BobExpects(other->login("alice", "alice-pw", folder, ticket));
        if (keep)
            BobExpects(other->keep(ticket));
        if (elsewhere)
            BobExpects(other->edit(ticket, {folder + "/" + elsewhere + ".kel"}, ""));
    }
    // What a server killed during a check-out leaves: Moss locked from alice's working copy, which
    // never got the lock's token.
    void StrayLockOnMoss()
    {
        const auto other = hbrc::host::OpenRevisionServer(DepotPath(), {});
        std::string ticket;
        BobExpects(other->login("alice", "alice-pw", AliceWorkspace(), ticket));
        const kel4::List<std::string> files = FilesOf("Moss");
        BobExpects(other->edit(ticket, {files.begin(), files.end()}, ""));
        // The working-copy library's one public way to drop a lock token is the old access-baton one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        apr_pool_t* pool = svn_pool_create(nullptr);
        svn_wc_adm_access_t* access = nullptr;
        svn_error_t* err = svn_wc_adm_open3(&access, nullptr, AliceWorkspace().c_str(), TRUE, 0, nullptr, nullptr, pool);
        for (const std::string& file : files)
            err = err ? err : svn_wc_remove_lock(file.c_str(), access, pool);
        if (access)
            svn_error_clear(svn_wc_adm_close2(access, pool));
#pragma GCC diagnostic pop
        char text[256];
        EXPECT_EQ(err, nullptr) << svn_err_best_message(err, text, sizeof text);
        svn_error_clear(err);
        svn_pool_destroy(pool);
    }
    void LogInAgainWithoutMoss()
    {
        std::string error;
        DataControl()->SetSession(FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error));
        ASSERT_EQ(FileVersionControl()->Revert(AliceSession(), FilesOf("Moss"), error, 0, 0).GetCode(), 0) << error;
    }
    // Runs call while a watcher fails on (and closes) any window shown meanwhile.
    template <class Call>
    void WithoutWindows(const Call& call)
    {
        QTimer watcher;
        QObject::connect(&watcher, &QTimer::timeout, [] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && widget->close())
                    ADD_FAILURE() << "a window in batch: " << widget->metaObject()->className();
            }
        });
        watcher.start(5);
        call();
    }

    kel4::IRevisionControlUIHelper* helper = nullptr;

private:
    QTemporaryDir m_home;
    QByteArray m_realHome = qgetenv("HOME");
};
INSTANTIATE_TEST_SUITE_P(Servers, BatchFaults, ServerKinds(), ServerKindName);

struct Fault {
    const char* name;
    std::function<void(BatchFaults&)> inject;
    std::function<void(BatchFaults&)> lift;
    bool recovers;             // the work gets through all the same
    bool recoversOnFileUrl;    // ... also where nothing authenticates (file://)
    std::size_t warnings = 0;  // log entries that say what was put right
};

TEST_P(BatchFaults, EveryCallEndsWithOneReportAndNothingLost)
{
    using F = BatchFaults;
    const bool svn = IsSubversion();
    const Fault faults[] = {
        {"unreachable", [](F& f) { f.services.connection->Faults().failNextCalls(1000, -34, "Cannot reach (injected)"); },
         [](F& f) { f.services.connection->Faults().clear(); }, false, false},
        {"frozen", [](F& f) { f.Freeze(true); }, [](F& f) { f.Freeze(false); }, false, false},
        {"expired", [](F& f) { f.services.ExpireSessionNow(); }, [](F& f) { f.LogInAgainWithoutMoss(); }, false, true},
        {"expired with a kept log-in",
         [](F& f) {
             f.services.ExpireSessionNow();
             f.AliceElsewhere(true);
         },
         [](F& f) { f.LogInAgainWithoutMoss(); }, true, true},
        // The embedded depot takes all locks of a call in one transaction: nothing is left there.
        // On Subversion the first status question releases the stray lock (one warning), while
        // Tree, which alice holds in another working copy of hers, stays hers.
        {"killed during a multi-file lock",
         [svn](F& f) {
             if (svn) {
                 f.AliceElsewhere(false, "Tree");
                 f.StrayLockOnMoss();
             }
         },
         [svn](F& f) {
             f.LogInAgainWithoutMoss();
             EXPECT_EQ((f.StatusOf("Tree") & kel4::eStatusLockedByOthers) != 0, svn) << "held in her other working copy";
         },
         true, true, svn ? 1u : 0u},
    };
    // Each work is given the note a save writes.
    const std::pair<const char*, std::function<bool(F&, const char*)>> works[] = {
        {"edit question", [](F& f, const char*) { return f.helper->CanEditObjects({f.Asset("Moss")}, true, true, ""); }},
        {"save", [](F& f, const char* note) { return f.workspace->SetField(f.Asset("Moss"), "note", note) && !f.workspace->Save().cancelled; }},
    };
    // With a window the same faults meet a user who cancels whatever is asked (the password, the
    // changelist, the progress box): the call ends at once, the edit is kept and each failure
    // shows one error box.
    for (const Fault& fault : faults) {
        for (const auto& [work, run] : works) {
            for (const bool withWindow : {false, true}) {
                SCOPED_TRACE(std::string(fault.name) + " x " + work + (withWindow ? " x with a window" : " x batch"));
                hbrc::host::LogCapture log;
                fault.inject(*this);
                const auto start = std::chrono::steady_clock::now();
                bool done = false;
                std::size_t reports = 0;
                const char* note = withWindow ? "window" : "batch";
                if (withWindow) {
                    QWidget window;
                    window.show();
                    hbrc::test::DialogDriver driver;  // closes every dialog, as Escape would
                    done = run(*this, note);
                    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s) << "Cancel ends calls that never answer";
                    reports = std::size_t(driver.seenTitles().filter(QStringLiteral("Error")).size());
                } else {
                    WithoutWindows([&, &run = run] { done = run(*this, note); });
                    reports = log.TextsOfType(eError).size();
                    const bool recovers = Server() == ServerKind::SvnFile ? fault.recoversOnFileUrl : fault.recovers;
                    EXPECT_EQ(done, recovers);
                    EXPECT_EQ(reports, recovers ? 0u : 1u) << "one report per failure";
                    EXPECT_EQ(log.TextsOfType(eWarning).size(), fault.warnings);
                }
                EXPECT_LT(std::chrono::steady_clock::now() - start, 8s) << "a few calls of one second each";
                EXPECT_LE(reports, 1u) << "one report per failure";
                QFile kel(QString::fromStdString(FilesOf("Moss").front()));
                EXPECT_TRUE(workspace->Model().IsDirty(Asset("Moss")) || std::string(work) != "save" ||
                            (kel.open(QIODevice::ReadOnly) && kel.readAll().contains(QByteArray("note = ") + note)));
                fault.lift(*this);
                BobExpects(Bob().edit(BobTicket(), BobFilesOf("Moss"), ""));  // no lock left behind
                BobExpects(Bob().revert(BobTicket(), BobFilesOf("Moss")));
            }
        }
    }
}

// A server gone during the adds after a save: one report, the new assets left not in depot, and
// the next save, with the server back and after a restart, marks them. One the user declined to
// add is not offered again.
TEST_P(BatchFaults, GoneServerDuringTheAddsAfterASaveIsReportedOnce)
{
    const std::vector<std::string> names{"Fern", "Twig", "Bark", "Seed"};
    for (const std::string& name : names)
        CreateMetadata(name);
    hbrc::host::LogCapture log;
    services.connection->Faults().failOperation(hbrc::revision::Operation::Add, -34, "Cannot reach (injected)");
    WithoutWindows([&] { EXPECT_FALSE(workspace->Save().cancelled); });
    services.connection->Faults().clear();
    EXPECT_EQ(log.TextsOfType(eError).size(), 1u);
    for (const std::string& name : names)
        EXPECT_EQ(StatusOf(name) & kel4::eStatusNotInDatabase, kel4::eStatusNotInDatabase) << name;

    std::string error;
    workspace = host->OpenWorkspace(AliceFolder(), error);  // the studio restarted
    ASSERT_NE(workspace, nullptr) << error;
    ASSERT_TRUE(workspace->SetField(Asset("Twig"), "note", "saved again"));  // rewritten, still new to the server
    WithoutWindows([&] { EXPECT_FALSE(workspace->Save().cancelled); });
    EXPECT_EQ(log.TextsOfType(eError).size(), 1u);
    for (const std::string& name : names)
        EXPECT_EQ(StatusOf(name) & kel4::eStatusMarkedForAdd, kel4::eStatusMarkedForAdd) << name;

    CreateMetadata("Weed");
    host->Preferences().SetBoolPref("RevControl.PromptForChangeListWhenCheckingOut", true, 1);
    {
        QWidget window;
        window.show();
        hbrc::test::DialogDriver driver;  // cancels "Post-Saving: Mark For Add"
        EXPECT_FALSE(workspace->Save().cancelled);
        EXPECT_EQ(driver.seenTitles().size(), 1);
    }
    ASSERT_TRUE(workspace->SetField(Asset("Weed"), "note", "saved again"));
    WithoutWindows([&] { EXPECT_FALSE(workspace->Save().cancelled); });
    EXPECT_EQ(StatusOf("Weed") & kel4::eStatusNotInDatabase, kel4::eStatusNotInDatabase) << "declined";
}

// The new assets of a save go to the server in one mark-for-add; a server that refuses it for some
// of them is asked asset by asset, and each refusal is reported on its own, as before.
TEST_P(BatchFaults, NewAssetsAreMarkedInOneCallUnlessTheServerRefusesSome)
{
    using F = BatchFaults;
    constexpr std::size_t kNew = 6;
    struct Row {
        const char* name;
        bool depotOnly;  // Subversion adds in the working copy: nobody else can hold the file
        std::function<void(F&, const std::string& firstNewAsset)> refuse;
        std::size_t refused;  // assets left out, one report each (and offered again by the next save)
    };
    const Row rows[] = {
        {"accepted", false, [](F&, const std::string&) {}, 0},
        {"every add refused", false,
         [](F& f, const std::string&) {
             f.services.connection->Faults().failOperation(hbrc::revision::Operation::Add, -1, "refused (injected)");
         },
         kNew},
        {"one already added by bob", true,
         [](F& f, const std::string& first) {
             const std::string file = f.BobPath(first + ".kel");
             QFile bobs(QString::fromStdString(file));
             ASSERT_TRUE(bobs.open(QIODevice::WriteOnly) && bobs.write("bob's") > 0);
             bobs.close();
             f.BobExpects(f.Bob().add(f.BobTicket(), {file}, ""));
         },
         1},
    };
    for (const Row& row : rows) {
        if (row.depotOnly && IsSubversion())
            continue;
        SCOPED_TRACE(row.name);
        std::vector<std::string> created;
        for (std::size_t i = 0; i < kNew; ++i)
            created.push_back(std::string(row.name).substr(0, 3) + std::to_string(i));
        for (const std::string& name : created)
            CreateMetadata(name);
        row.refuse(*this, created.front());
        hbrc::host::LogCapture log;
        const std::uint64_t before = services.connection->RoundTrips();
        WithoutWindows([&] { EXPECT_FALSE(workspace->Save().cancelled); });
        const std::uint64_t roundTrips = services.connection->RoundTrips() - before;
        services.connection->Faults().clear();
        EXPECT_EQ(log.TextsOfType(eError).size(), row.refused) << "one report per refused asset";
        if (row.refused == 0)
            EXPECT_LE(roundTrips, 4u) << "whatever the number of new assets";
        else
            EXPECT_GE(roundTrips, 2 + kNew) << "one call per asset after the refused one";
        std::size_t left = 0;
        for (const std::string& name : created)
            left += (StatusOf(name) & kel4::eStatusNotInDatabase) != 0;
        EXPECT_EQ(left, row.refused);
    }
}

// A batch save that needs a decision nobody can make is cancelled, and the log says why.
TEST_P(BatchFaults, CancelledBatchSaveNamesItsAssetsAndTheSetting)
{
    host->Preferences().SetIntPref("RevControl.ActionWhenEditingReadOnlyAsset", 0, 1);  // "none"
    hbrc::host::LogCapture log;
    ASSERT_TRUE(workspace->SetField(Asset("Moss"), "note", "batch"));
    EXPECT_TRUE(workspace->Save().cancelled);
    ASSERT_EQ(log.TextsOfType(eError).size(), 1u);
    EXPECT_NE(log.TextsOfType(eError).front().find("Moss"), std::string::npos);
    EXPECT_NE(log.TextsOfType(eError).front().find("RevControl.ActionWhenEditingReadOnlyAsset"), std::string::npos);
    EXPECT_TRUE(workspace->Model().IsDirty(Asset("Moss")));
}

}  // namespace
