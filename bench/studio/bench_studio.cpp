// hbrc-studio's main window opening a workspace of 1,000 and of 10,000 submitted assets on the
// embedded depot, with the plug-in loaded as the studio loads it:
// - time from "open" to the first paint of the asset browser with its rows, and to the workspace
//   fully open (every asset read, the session logged in), each as the ratio of the two sizes
//   (goal for the full open: at most 10.5; the first rows should hardly grow);
// - the depot round trips that fill the status column (goal: 1, whatever the size);
// - the longest the UI thread went without serving its event loop while opening, until the status
//   column was filled (goal: < 50 ms: the assets are read on a worker);
// - a status refresh of the open workspace: its depot round trips (goal: 1) and the longest the UI
//   thread went without serving its event loop from the request until the answer (goal: < 50 ms).
#include <ratioreporter.h>

#include "mainwindow.h"
#include "assetbrowser.h"
#include "assetbrowsermodel.h"
#include "studiosession.h"

#include <depot/depot.h>
#include <hbrcdatamodel/workspace.h>
#include <hbrcservices/revisionserver.h>
#include <log/log.h>

#include <QTreeView>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <map>
#include <memory>
#include <stdexcept>

using namespace hbrc;

namespace {

void expect(bool ok, const std::string& what)
{
    if (!ok)
        throw std::runtime_error(what);
}

// A depot with alice's workspace of N submitted metadata assets, made once per size.
class Depot
{
public:
    static Depot& Get(int assets)
    {
        static std::map<int, std::unique_ptr<Depot>> depots;
        std::unique_ptr<Depot>& depot = depots[assets];
        if (!depot)
            depot.reset(new Depot(assets));
        return *depot;
    }
    QString Folder() const { return QDir(m_dir.filePath(QStringLiteral("alice"))).canonicalPath(); }
    const std::string& Path() const { return m_path; }

private:
    explicit Depot(int assets) : m_path(m_dir.filePath(QStringLiteral("depot.db")).toStdString())
    {
        QDir(m_dir.path()).mkpath(QStringLiteral("alice"));
        depot::DepotOptions options;
        options.passwordHashCost = depot::PasswordHashCost::Minimal;
        expect(depot::Depot::create(m_path).ok(), "cannot create the depot");
        depot::Depot admin(m_path, options);
        expect(admin.addUser("alice", "alice-pw").ok() &&
                   admin.addWorkspace("alice-ws", "alice", QFile::encodeName(Folder()).toStdString()).ok(),
               "cannot set up the depot");
        std::string error;
        const std::unique_ptr<host::Workspace> workspace = host::Workspace::Open(Folder(), error);
        expect(bool(workspace), error);
        for (int i = 0; i < assets; ++i) {
            host::NewAsset asset;
            asset.kind = host::AssetKind::Metadata;
            asset.name = "Asset" + std::to_string(i);
            asset.fields = {{"colour", "#808080"}, {"roughness", "0.50"}};
            expect(!workspace->CreateAsset(asset, error).IsNull(), error);
        }
        const host::SaveReport saved = workspace->Save();
        expect(saved.Succeeded(), "the save failed");
        const std::unique_ptr<host::RevisionServer> alice = host::OpenRevisionServer(m_path, {revision::PasswordHashCost::Minimal});
        std::string ticket;
        revision::ChangelistId submitted;
        expect(alice->login("alice", "alice-pw", "alice-ws", ticket).ok() &&
                   alice->add(ticket, {saved.writtenFiles.begin(), saved.writtenFiles.end()}, "").ok() &&
                   alice->submit(ticket, "", "assets", submitted).ok(),
               "cannot submit the assets");
    }

    QTemporaryDir m_dir;
    std::string m_path;
};

// Notes how long after its creation the asset view first paints rows.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(studio::MainWindow& window) : m_window(window) { m_clock.start(); }
    bool painted() const { return m_paintedNs >= 0; }
    qint64 paintedNs() const { return m_paintedNs; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (!painted() && event->type() == QEvent::Paint && m_window.model().rowCount() > 0)
            m_paintedNs = m_clock.nsecsElapsed();
        return QObject::eventFilter(watched, event);
    }

private:
    studio::MainWindow& m_window;
    QElapsedTimer m_clock;
    qint64 m_paintedNs = -1;
};

// The longest gap between two turns of the UI thread's event loop while it lives.
class StallMeter : public QObject
{
public:
    StallMeter()
    {
        connect(&m_tick, &QTimer::timeout, this, [this] {
            m_longest = std::max(m_longest, m_clock.restart());
        });
        m_tick.start(1);
        m_clock.start();
    }
    qint64 longestMs() const { return std::max(m_longest, m_clock.elapsed()); }

private:
    QTimer m_tick;
    QElapsedTimer m_clock;
    qint64 m_longest = 0;
};

// What an opening is timed until.
enum class OpenUntil { FirstRowsPainted, AllAssetsIn };

void openWorkspaceInWindow(benchmark::State& state, OpenUntil until)
{
    Depot& depot = Depot::Get(int(state.range(0)));
    Log::Singleton::Instance().SetStderrEnabled(false);
    QTemporaryDir scratch;
    double roundTrips = 0, longestStall = 0;
    for (auto _ : state) {
        studio::StudioSession session(scratch.filePath(QStringLiteral("preferences.ini")));
        std::string error;
        expect(session.start(error), error);
        session.storeAccount({depot.Path(), "alice", "alice-ws", {}});
        session.setPassword("alice-pw");
        studio::MainWindow window(session);
        window.show();
        QCoreApplication::processEvents();

        std::unique_ptr<StallMeter> stalls = std::make_unique<StallMeter>();
        FirstPaint firstPaint(window);
        window.browser().view()->viewport()->installEventFilter(&firstPaint);
        QElapsedTimer clock;
        clock.start();
        expect(window.openWorkspace(depot.Folder()), "cannot open the workspace");
        while (window.isOpening() || !firstPaint.painted())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        const qint64 openNs = clock.nsecsElapsed();
        state.SetIterationTime(double(until == OpenUntil::FirstRowsPainted ? firstPaint.paintedNs() : openNs) / 1e9);
        while (window.model().statusQuery().isPending())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        longestStall = std::max(longestStall, double(stalls->longestMs()));
        stalls.reset();
        roundTrips = double(window.model().statusQuery().roundTrips());
        expect(window.model().rowCount() == state.range(0), "not every asset is in the browser");
        expect(window.sessionState().startsWith(QStringLiteral("logged in")), "the status question failed");
        window.closeWorkspace();
    }
    state.counters["status_round_trips"] = roundTrips;
    state.counters["longest_ui_stall_ms"] = longestStall;
    Log::Singleton::Instance().SetStderrEnabled(true);
}

void BM_OpenWorkspaceFirstRows(benchmark::State& state)
{
    openWorkspaceInWindow(state, OpenUntil::FirstRowsPainted);
}
BENCHMARK(BM_OpenWorkspaceFirstRows)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_OpenWorkspaceInWindow(benchmark::State& state)
{
    openWorkspaceInWindow(state, OpenUntil::AllAssetsIn);
}
BENCHMARK(BM_OpenWorkspaceInWindow)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

// The window of alice's session on the depot of that size, with the workspace open and its first
// status answer in.
struct OpenWindow
{
    explicit OpenWindow(Depot& depot, const QString& preferences) : session(preferences)
    {
        std::string error;
        expect(session.start(error), error);
        session.storeAccount({depot.Path(), "alice", "alice-ws", {}});
        session.setPassword("alice-pw");
        session.setStatusRefreshSeconds(0);
        window = std::make_unique<studio::MainWindow>(session);
        window->show();
        expect(window->openWorkspace(depot.Folder()), "cannot open the workspace");
        waitForStatus();
    }
    void waitForStatus() const
    {
        while (window->isOpening() || window->model().statusQuery().isPending())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }

    studio::StudioSession session;
    std::unique_ptr<studio::MainWindow> window;
};

void BM_RefreshStatus(benchmark::State& state)
{
    Depot& depot = Depot::Get(int(state.range(0)));
    Log::Singleton::Instance().SetStderrEnabled(false);
    QTemporaryDir scratch;
    OpenWindow open(depot, scratch.filePath(QStringLiteral("preferences.ini")));
    const studio::AssetStatusQuery& query = open.window->model().statusQuery();
    double roundTrips = 0, longestStall = 0;
    for (auto _ : state) {
        const std::uint64_t before = query.roundTrips();
        QElapsedTimer clock;
        clock.start();
        StallMeter stalls;
        open.window->refreshStatus();
        open.waitForStatus();
        state.SetIterationTime(double(clock.nsecsElapsed()) / 1e9);
        longestStall = std::max(longestStall, double(stalls.longestMs()));
        roundTrips = double(query.roundTrips() - before);
        expect(open.window->sessionState().startsWith(QStringLiteral("logged in")), "the status question failed");
    }
    state.counters["status_round_trips"] = roundTrips;
    state.counters["longest_ui_stall_ms"] = longestStall;
    Log::Singleton::Instance().SetStderrEnabled(true);
}
BENCHMARK(BM_RefreshStatus)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    RatioReporter reporter({{"first painted browser rows t(10,000) / t(1,000)",
                             "BM_OpenWorkspaceFirstRows/10000/iterations:3/manual_time",
                             "BM_OpenWorkspaceFirstRows/1000/iterations:3/manual_time"},
                            {"workspace fully open t(10,000) / t(1,000) (goal <= 10.5)",
                             "BM_OpenWorkspaceInWindow/10000/iterations:3/manual_time",
                             "BM_OpenWorkspaceInWindow/1000/iterations:3/manual_time"},
                            {"status refresh t(10,000) / t(1,000)", "BM_RefreshStatus/10000/iterations:5/manual_time",
                             "BM_RefreshStatus/1000/iterations:5/manual_time"}});
    return RunWidgetBenchmarks(argc, argv, reporter);
}
