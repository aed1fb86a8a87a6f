// A batch job against a server that fails: alice's host runs the real plug-in without any window
// and meets an unreachable server, a frozen one (it accepts and never answers) and an expired
// session, on every server kind. The editability question and a save must end within their
// deadlines, show no dialog, keep every edit, leave no lock behind and report each failure once.
#include <depothostfixture.h>

#include <hbrchost/logcapture.h>
#include <kel4/irevisioncontroluihelper.h>
#include <kel4/itimeoutdelegate.h>
#include <kel4/revisionstatus.h>

#include <QApplication>
#include <QDirIterator>
#include <QTimer>
#include <QWidget>

#include <csignal>
#include <chrono>
#include <functional>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class BatchFaults : public ServerFixture
{
public:
    hbrc::host::ConnectionOptions ConnectionOptionsForAlice() const override
    {
        hbrc::host::ConnectionOptions options = ServerFixture::ConnectionOptionsForAlice();
        options.callDeadline = 1s;
        options.renewFromKeptLogIn = true;
        // Short enough that a progress box shown in batch would be caught.
        options.timeOutThreshold = 20ms;
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
        ASSERT_NE(helper, nullptr);
        // Kept log-ins go to this test's own ticket store and credential cache.
        qputenv("HBDEPOT_TICKETS", m_home.filePath(QStringLiteral("tickets")).toLocal8Bit());
        qputenv("HOME", m_home.path().toLocal8Bit());
        host->Preferences().SetBoolPref("RevControl.UseSourceDataControl", true, 1);
        host->Preferences().SetIntPref("RevControl.BatchRetryDeadlineSeconds", 0, 1);
        workspace = host->OpenWorkspace(AliceFolder(), error);
        ASSERT_NE(workspace, nullptr) << error;
        // The plug-in's progress box stands by for slow calls, as after the host's first connection.
        auto* progressBox = dynamic_cast<kel4::ITimeOutDelegate*>(helper);
        ASSERT_NE(progressBox, nullptr);
        FileVersionControl()->SetTimeOutDelegate(progressBox);
        // Moss: a submitted metadata asset, the kind whose save asks the plug-in first.
        hbrc::host::NewAsset moss;
        moss.kind = hbrc::host::AssetKind::Metadata;
        moss.name = "Moss";
        moss.fields = {{"note", "seed"}};
        const KELHandle<kel4::IDbObject> created(workspace->CreateAsset(moss, error));
        ASSERT_FALSE(created.IsNull()) << error;
        workspace->Save();
        ASSERT_EQ(DataControl()->MarkForAdd({created}, true, kPersistence, "", error).GetCode(), 0) << error;
        AliceSubmits("moss");
        BobExpects(Bob().sync(BobTicket(), {}));
    }

    // The svnserve process serving the repository, found by its port.
    qint64 ServerProcess() const
    {
        const std::string url = DepotPath();
        const QByteArray port = "--listen-port=" + QByteArray::fromStdString(url.substr(url.rfind(':') + 1));
        for (QDirIterator it(QStringLiteral("/proc")); it.hasNext();) {
            QFile cmdline(it.next() + QStringLiteral("/cmdline"));
            if (cmdline.open(QIODevice::ReadOnly) && cmdline.readAll().split('\0').contains(port))
                return it.fileName().toLongLong();
        }
        return 0;
    }
    // A frozen server: svnserve stopped (it accepts in its kernel backlog, then never answers), or
    // for the servers without a process, a round trip longer than any deadline.
    void Freeze(bool frozen)
    {
        if (Server() == ServerKind::SvnServe)
            ASSERT_EQ(::kill(static_cast<pid_t>(ServerProcess()), frozen ? SIGSTOP : SIGCONT), 0);
        else
            services.connection->Faults().setLatency(frozen ? 10min : 0min);
    }

    // Runs call with a watcher that fails on (and closes) any window shown meanwhile.
    template <class Call>
    void WithoutWindows(const Call& call)
    {
        QTimer watcher;
        QObject::connect(&watcher, &QTimer::timeout, [] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible()) {
                    ADD_FAILURE() << "a window in batch: " << widget->metaObject()->className() << " "
                                  << widget->windowTitle().toStdString();
                    widget->close();
                }
            }
        });
        watcher.start(5);
        call();
    }

    void TearDown() override
    {
        if (workspace)
            FileVersionControl()->SetTimeOutDelegate(nullptr);
        qputenv("HOME", m_realHome);
        qunsetenv("HBDEPOT_TICKETS");
        ServerFixture::TearDown();
    }

    // A log-in of alice's kept for later processes, as hbdepot login or "keep me logged in" leave it.
    void KeepAFreshLogIn()
    {
        const std::unique_ptr<hbrc::host::RevisionServer> other = hbrc::host::OpenRevisionServer(DepotPath(), {});
        std::string ticket;
        BobExpects(other->login("alice", "alice-pw", AliceWorkspace(), ticket));
        BobExpects(other->keep(ticket));
    }

    // A new session for alice, and Moss no longer checked out.
    void LogInAgainWithoutMoss()
    {
        std::string error;
        DataControl()->SetSession(FileVersionControl()->Login("alice", "alice-pw", AliceWorkspace(), DepotPath(), error));
        ASSERT_EQ(FileVersionControl()->Revert(AliceSession(), FilesOf("Moss"), error, 0, 0).GetCode(), 0) << error;
    }

    kel4::IRevisionControlUIHelper* helper = nullptr;

private:
    QTemporaryDir m_home;
    QByteArray m_realHome = qgetenv("HOME");
};
INSTANTIATE_TEST_SUITE_P(Servers, BatchFaults, ServerKinds(), ServerKindName);

struct Fault
{
    const char* name;
    bool recovers;  // the work gets through all the same
    bool expires;   // the fault is an expired session
    std::function<void(BatchFaults&)> inject;
    std::function<void(BatchFaults&)> lift;
};

struct Work
{
    const char* name;
    // Runs the work on Moss; true when the edit got through.
    std::function<bool(BatchFaults&)> run;
    // The edit is on disk or still in memory.
    std::function<bool(BatchFaults&)> editKept;
};

TEST_P(BatchFaults, EveryCallEndsWithOneReportAndNothingLost)
{
    const Fault faults[] = {
        {"unreachable", false, false,
         [](BatchFaults& f) {
             f.services.connection->Faults().failNextCalls(1000, hbrc::depot::code::SessionUnusable,
                                                           "Cannot reach the server (injected)");
         },
         [](BatchFaults& f) { f.services.connection->Faults().clear(); }},
        {"frozen", false, false, [](BatchFaults& f) { f.Freeze(true); }, [](BatchFaults& f) { f.Freeze(false); }},
        {"expired without a kept login", false, true, [](BatchFaults& f) { f.services.ExpireSessionNow(); },
         [](BatchFaults& f) { f.LogInAgainWithoutMoss(); }},
        {"expired with a kept login", true, true,
         [](BatchFaults& f) {
             f.services.ExpireSessionNow();
             f.KeepAFreshLogIn();
         },
         [](BatchFaults& f) { f.LogInAgainWithoutMoss(); }},
    };
    const Work works[] = {
        {"edit question", [](BatchFaults& f) { return f.helper->CanEditObjects({f.Asset("Moss")}, true, true, ""); },
         [](BatchFaults&) { return true; }},
        {"save",
         [](BatchFaults& f) {
             EXPECT_TRUE(f.workspace->SetField(f.Asset("Moss"), "note", "batch"));
             return !f.workspace->Save().cancelled;
         },
         [](BatchFaults& f) {
             QFile kel(QString::fromStdString(f.FilesOf("Moss").front()));
             return f.workspace->Model().IsDirty(f.Asset("Moss")) ||
                    (kel.open(QIODevice::ReadOnly) && kel.readAll().contains("note = batch"));
         }},
    };
    for (const Fault& fault : faults) {
        for (const Work& work : works) {
            SCOPED_TRACE(std::string(fault.name) + " x " + work.name);
            hbrc::host::LogCapture log;
            fault.inject(*this);
            const Clock::time_point start = Clock::now();
            bool done = true;
            WithoutWindows([&] { done = work.run(*this); });
            const auto took = Clock::now() - start;
            // Nothing authenticates on file://: a log-in without a password always renews there.
            const bool recovers = fault.recovers || (fault.expires && Server() == ServerKind::SvnFile);

            EXPECT_EQ(done, recovers);
            EXPECT_LT(took, 8s) << "a few calls of one second each";
            EXPECT_TRUE(work.editKept(*this));
            EXPECT_EQ(log.TextsOfType(Log::eError).size(), recovers ? 0u : 1u) << "one report per failure";
            fault.lift(*this);
            // Nothing of Moss stayed locked: bob can check it out and give it back.
            BobExpects(Bob().edit(BobTicket(), BobFilesOf("Moss"), ""));
            BobExpects(Bob().revert(BobTicket(), BobFilesOf("Moss")));
        }
    }
}

}  // namespace

namespace {

// A server that goes away during the adds after a save: the first failure is reported once, the
// other new assets are left as they are (not in depot, offered again by the next save).
TEST_P(BatchFaults, GoneServerDuringTheAddsAfterASaveIsReportedOnce)
{
    const std::vector<std::string> names{"Fern", "Twig", "Bark", "Seed"};
    for (const std::string& name : names) {
        hbrc::host::NewAsset asset;
        asset.kind = hbrc::host::AssetKind::Metadata;
        asset.name = name;
        std::string error;
        ASSERT_FALSE(KELHandle<kel4::IDbObject>(workspace->CreateAsset(asset, error)).IsNull()) << error;
    }
    hbrc::host::LogCapture log;
    services.connection->Faults().failOperation(hbrc::depot::Operation::Add, hbrc::depot::code::SessionUnusable,
                                                "Cannot reach the server (injected)");
    WithoutWindows([&] { EXPECT_FALSE(workspace->Save().cancelled); });
    services.connection->Faults().clear();

    EXPECT_EQ(log.TextsOfType(Log::eError).size(), 1u);
    for (const std::string& name : names)
        EXPECT_EQ(StatusOf(name) & kel4::eStatusNotInDatabase, kel4::eStatusNotInDatabase) << name;
}

// A batch save that needs a decision nobody can make is cancelled, and the log says why.
TEST_P(BatchFaults, CancelledBatchSaveNamesItsAssetsAndTheSetting)
{
    host->Preferences().SetIntPref("RevControl.ActionWhenEditingReadOnlyAsset", 0, 1);  // "none"
    hbrc::host::LogCapture log;
    workspace->SetField(Asset("Moss"), "note", "batch");
    EXPECT_TRUE(workspace->Save().cancelled);
    const std::vector<std::string> errors = log.TextsOfType(Log::eError);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_NE(errors.front().find("Moss"), std::string::npos) << errors.front();
    EXPECT_NE(errors.front().find("RevControl.ActionWhenEditingReadOnlyAsset"), std::string::npos) << errors.front();
    EXPECT_TRUE(workspace->Model().IsDirty(Asset("Moss")));
}

}  // namespace

namespace {

// A Subversion server that dies during a multi-file lock keeps locks in alice's name whose tokens
// never reached her working copy. The next check-out takes them back instead of refusing "locked
// by alice", and logs it. (The lock without a token here is made through a second working copy of
// alice's: the state the server's death leaves, without the race of timing a kill.)
TEST_P(BatchFaults, LocksLeftByAnInterruptedCheckOutAreTakenBack)
{
    if (!IsSubversion())
        GTEST_SKIP() << "the embedded depot takes all locks of a call in one transaction";
    const std::unique_ptr<hbrc::host::RevisionServer> elsewhere = hbrc::host::OpenRevisionServer(DepotPath(), {});
    const std::string otherCopy =
        QFile::encodeName(QDir::cleanPath(AliceFolder() + QStringLiteral("/../alice-elsewhere"))).toStdString();
    std::string ticket;
    BobExpects(elsewhere->login("alice", "alice-pw", otherCopy, ticket));
    std::vector<std::string> strayFiles;
    for (const std::string& file : FilesOf("Moss"))
        strayFiles.push_back(otherCopy + file.substr(AlicePath("").size() - 1));
    BobExpects(elsewhere->edit(ticket, strayFiles, ""));

    hbrc::host::LogCapture log;
    EXPECT_TRUE(helper->CanEditObjects({Asset("Moss")}, true, true, ""));
    EXPECT_FALSE(DataControl()->IsReadOnly(Asset("Moss"), true, kPersistence));
    ASSERT_EQ(log.TextsOfType(Log::eWarning).size(), 1u);
    EXPECT_NE(log.TextsOfType(Log::eWarning).front().find("Took back"), std::string::npos);
}

}  // namespace
