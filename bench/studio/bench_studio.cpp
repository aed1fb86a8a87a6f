// hbrc-studio's main window opening a workspace of 1,000, of 10,000 and (HBRC_STUDIO_ASSETS=100000)
// of more submitted assets on the embedded depot, with the plug-in loaded as the studio loads it,
// or (HBRC_STUDIO_SERVER=svnserve) of HBRC_STUDIO_ASSETS, by default 100,000, on svnserve:
// - time from "open" to the first paint of the asset browser with its rows, and to the workspace
//   fully open (every asset read, the session logged in), each as the ratio of the sizes
//   (goal for the full open: t(10,000)/t(1,000) at most 10.5; the first rows should hardly grow);
// - the depot round trips that fill the status column (goal: 1, whatever the size);
// - the longest the UI thread went without serving its event loop while opening, until the status
//   column was filled (goal: < 50 ms: the assets are read on a worker), in wall time and in the
//   UI thread's own CPU time (what the wall time is on a machine that other work shares);
// - a status refresh of the open workspace: its depot round trips (goal: 1) and the longest stall
//   from the request until the answer is in every row (goal: < 50 ms);
// - the longest the UI thread went without serving its event loop while closing the open
//   workspace (goal: < 50 ms), in wall time and in the UI thread's CPU time;
// - the peak memory of the process after the set-up (goal: under 1 GB).
// The sizes share one depot: each smaller workspace is a folder inside the next larger one. On
// svnserve the workspace is a copy of the working copy of bench_scale's seed of that count (kept in
// TMPDIR, see ScaleSeed), whose assets lie side by side in 100 folders: smaller sizes would need
// seeds of their own, so only the one size is measured there, and no ratios are printed.
#include <ratioreporter.h>
#include <scaleassets.h>

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
#include <QLocale>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <malloc.h>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using namespace hbrc;

namespace {

void expect(bool ok, const std::string& what)
{
    if (!ok)
        throw std::runtime_error(what);
}

// The process's peak resident memory from the last resetPeakMemory on (the whole run where the
// kernel cannot reset it), in MiB.
void resetPeakMemory()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

double peakMemoryMiB()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("VmHWM:", 0) == 0)
            return std::atof(line.c_str() + 6) / 1024.0;
    return 0;
}

bool onSvnServe()
{
    const char* configured = std::getenv("HBRC_STUDIO_SERVER");
    return configured && std::string(configured) == "svnserve";
}

// The workspace sizes, smallest first: 1,000, 10,000 and the count HBRC_STUDIO_ASSETS names; on
// svnserve that count alone (100,000 when unset).
std::vector<int> workspaceSizes()
{
    if (onSvnServe()) {
        const char* configured = std::getenv("HBRC_STUDIO_ASSETS");
        return {configured && std::atoi(configured) > 0 ? std::atoi(configured) : 100000};
    }
    std::vector<int> sizes{1000, 10000};
    if (const char* configured = std::getenv("HBRC_STUDIO_ASSETS"); configured && std::atoi(configured) > 10000)
        sizes.push_back(std::atoi(configured));
    return sizes;
}

// The server alice's studio works with and her workspace of each size's submitted assets, made
// once per run: the embedded depot, or svnserve with HBRC_STUDIO_SERVER=svnserve.
class Server
{
public:
    static const Server& Get();
    virtual ~Server() = default;
    virtual QString Folder(int assets) const = 0;
    virtual studio::Account Account() const = 0;
};

// A depot with alice's workspace of submitted metadata assets: the folder of each size holds the
// folder of the next smaller size and as many assets of its own as make up its size.
class Depot : public Server
{
public:
    explicit Depot(std::vector<int> sizes)
        : m_sizes(std::move(sizes)), m_path(m_dir.filePath(QStringLiteral("depot.db")).toStdString())
    {
        const QString root = m_dir.filePath(QStringLiteral("alice"));
        QDir(m_dir.path()).mkpath(QStringLiteral("alice"));
        depot::DepotOptions options;
        options.passwordHashCost = depot::PasswordHashCost::Minimal;
        expect(depot::Depot::create(m_path).ok(), "cannot create the depot");
        depot::Depot admin(m_path, options);
        expect(admin.addUser("alice", "alice-pw").ok() &&
                   admin.addWorkspace("alice-ws", "alice", QFile::encodeName(root).toStdString()).ok(),
               "cannot set up the depot");
        std::string error;
        const std::unique_ptr<host::Workspace> workspace = host::Workspace::Open(root, error);
        expect(bool(workspace), error);
        int made = 0;
        for (std::size_t level = 0; level < m_sizes.size(); ++level) {
            const std::string folder = Inside(m_sizes[level]).toStdString();
            for (; made < m_sizes[level]; ++made) {
                host::NewAsset asset;
                asset.kind = host::AssetKind::Metadata;
                asset.name = "Asset" + std::to_string(made);
                asset.folder = folder;
                asset.fields = {{"colour", "#808080"}, {"roughness", "0.50"}};
                expect(!workspace->CreateAsset(asset, error).IsNull(), error);
            }
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
    QString Folder(int assets) const override
    {
        return QDir(m_dir.filePath(QStringLiteral("alice/") + Inside(assets))).canonicalPath();
    }
    studio::Account Account() const override { return {m_path, "alice", "alice-ws", {}}; }

private:
    // The folder of that size in the largest one's ("" for the largest).
    QString Inside(int assets) const
    {
        QStringList folders;
        for (auto size = m_sizes.rbegin(); size != m_sizes.rend() && *size > assets; ++size)
            folders << QStringLiteral("in%1").arg(*std::next(size));
        return folders.join(QLatin1Char('/'));
    }

    QTemporaryDir m_dir;
    std::vector<int> m_sizes;
    std::string m_path;
};

// A Subversion repository served by svnserve on 127.0.0.1 with the submitted assets of the scale
// seed of that count, and alice's working copy of it as her workspace (named by its folder, as
// Subversion workspaces are).
class SvnServe : public Server
{
public:
    explicit SvnServe(int assets)
        : m_seed(bench::ScaleSeed(assets)),
          m_repository(m_dir.path(), SvnRepositoryFixture::Access::Served, m_seed.Repository()),
          m_folder(m_dir.filePath(QStringLiteral("alice")))
    {
        expect(QDir().mkpath(m_folder), "cannot make the working copy's folder");
        m_folder = QDir(m_folder).canonicalPath();
        m_seed.CopyWorkingCopy(workingCopy(), m_repository.Url());
    }
    QString Folder(int) const override { return m_folder; }
    studio::Account Account() const override { return {m_repository.Url(), "alice", workingCopy(), {}}; }

private:
    std::string workingCopy() const { return QFile::encodeName(m_folder).toStdString(); }

    bench::SvnSeed m_seed;
    QTemporaryDir m_dir;
    SvnRepositoryFixture m_repository;
    QString m_folder;
};

// The set-up's workspace goes with the server's construction: from then on the peak is the studio's.
const Server& Server::Get()
{
    static const std::unique_ptr<Server> server = [] {
        std::unique_ptr<Server> made;
        if (onSvnServe())
            made = std::make_unique<SvnServe>(workspaceSizes().back());
        else
            made = std::make_unique<Depot>(workspaceSizes());
        malloc_trim(0);
        resetPeakMemory();
        return made;
    }();
    return *server;
}

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

// The CPU time the calling thread has used, in milliseconds.
double threadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// The longest gap between two turns of the UI thread's event loop while it lives, in wall time
// and in the CPU time the UI thread used during a gap.
class StallMeter : public QObject
{
public:
    StallMeter()
    {
        connect(&m_tick, &QTimer::timeout, this, [this] {
            m_longest = std::max(m_longest, m_clock.restart());
            const double cpu = threadCpuMs();
            m_longestBusy = std::max(m_longestBusy, cpu - m_cpu);
            m_cpu = cpu;
        });
        m_tick.start(1);
        m_clock.start();
        m_cpu = threadCpuMs();
    }
    qint64 longestMs() const { return std::max(m_longest, m_clock.elapsed()); }
    double longestBusyMs() const { return std::max(m_longestBusy, threadCpuMs() - m_cpu); }

private:
    QTimer m_tick;
    QElapsedTimer m_clock;
    qint64 m_longest = 0;
    double m_cpu = 0;
    double m_longestBusy = 0;
};


// Serves the UI thread's events, waiting for the next one as the studio's own loop does: a loop
// that spins would take a core from the workers and the server the window waits for.
void serveEvents()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

// The longest UI-thread stall, in wall and in CPU milliseconds, of closing the window's workspace
// and of the event-loop turns that follow it.
std::pair<double, double> closeStall(studio::MainWindow& window)
{
    StallMeter stalls;
    window.closeWorkspace();
    QElapsedTimer settling;
    settling.start();
    while (settling.elapsed() < 20)
        serveEvents();
    return {double(stalls.longestMs()), stalls.longestBusyMs()};
}

// What an opening is timed until.
enum class OpenUntil { FirstRowsPainted, AllAssetsIn };

void openWorkspaceInWindow(benchmark::State& state, OpenUntil until)
{
    const Server& server = Server::Get();
    const QString folder = server.Folder(int(state.range(0)));
    Log::Singleton::Instance().SetStderrEnabled(false);
    QTemporaryDir scratch;
    double roundTrips = 0, longestStall = 0, longestBusy = 0, closeWall = 0, closeBusy = 0;
    for (auto _ : state) {
        studio::StudioSession session(scratch.filePath(QStringLiteral("preferences.ini")));
        std::string error;
        expect(session.start(error), error);
        session.storeAccount(server.Account());
        session.setPassword("alice-pw");
        studio::MainWindow window(session);
        window.show();
        QCoreApplication::processEvents();

        std::unique_ptr<StallMeter> stalls = std::make_unique<StallMeter>();
        FirstPaint firstPaint(window);
        window.browser().view()->viewport()->installEventFilter(&firstPaint);
        QElapsedTimer clock;
        clock.start();
        expect(window.openWorkspace(folder), "cannot open the workspace");
        while (window.isOpening() || !firstPaint.painted())
            serveEvents();
        const qint64 openNs = clock.nsecsElapsed();
        state.SetIterationTime(double(until == OpenUntil::FirstRowsPainted ? firstPaint.paintedNs() : openNs) / 1e9);
        while (window.model().isStatusPending())
            serveEvents();
        longestStall = std::max(longestStall, double(stalls->longestMs()));
        longestBusy = std::max(longestBusy, stalls->longestBusyMs());
        stalls.reset();
        roundTrips = double(window.model().statusQuery().roundTrips());
        expect(window.model().rowCount() == state.range(0), "not every asset is in the browser");
        expect(window.sessionState().startsWith(QStringLiteral("logged in")), "the status question failed");
        const auto [wall, busy] = closeStall(window);
        closeWall = std::max(closeWall, wall);
        closeBusy = std::max(closeBusy, busy);
    }
    state.counters["status_round_trips"] = roundTrips;
    state.counters["longest_ui_stall_ms"] = longestStall;
    state.counters["longest_ui_busy_ms"] = longestBusy;
    state.counters["close_ui_stall_ms"] = closeWall;
    state.counters["close_ui_busy_ms"] = closeBusy;
    Log::Singleton::Instance().SetStderrEnabled(true);
}

void everySize(benchmark::internal::Benchmark* benchmark)
{
    for (int size : workspaceSizes())
        benchmark->Arg(size);
}

void BM_OpenWorkspaceFirstRows(benchmark::State& state)
{
    openWorkspaceInWindow(state, OpenUntil::FirstRowsPainted);
}
BENCHMARK(BM_OpenWorkspaceFirstRows)->Apply(everySize)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_OpenWorkspaceInWindow(benchmark::State& state)
{
    openWorkspaceInWindow(state, OpenUntil::AllAssetsIn);
}
BENCHMARK(BM_OpenWorkspaceInWindow)->Apply(everySize)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

// The window of alice's session on the server's workspace of that size, with the workspace open
// and its first status answer in.
struct OpenWindow
{
    OpenWindow(const Server& server, int assets, const QString& preferences) : session(preferences)
    {
        std::string error;
        expect(session.start(error), error);
        session.storeAccount(server.Account());
        session.setPassword("alice-pw");
        session.setStatusRefreshSeconds(0);
        window = std::make_unique<studio::MainWindow>(session);
        window->show();
        expect(window->openWorkspace(server.Folder(assets)), "cannot open the workspace");
        waitForStatus();
    }
    void waitForStatus() const
    {
        while (window->isOpening() || window->model().isStatusPending())
            serveEvents();
    }

    studio::StudioSession session;
    std::unique_ptr<studio::MainWindow> window;
};

void BM_RefreshStatus(benchmark::State& state)
{
    Log::Singleton::Instance().SetStderrEnabled(false);
    QTemporaryDir scratch;
    OpenWindow open(Server::Get(), int(state.range(0)), scratch.filePath(QStringLiteral("preferences.ini")));
    const studio::AssetStatusQuery& query = open.window->model().statusQuery();
    double roundTrips = 0, longestStall = 0, longestBusy = 0;
    for (auto _ : state) {
        const std::uint64_t before = query.roundTrips();
        QElapsedTimer clock;
        clock.start();
        StallMeter stalls;
        open.window->refreshStatus();
        open.waitForStatus();
        state.SetIterationTime(double(clock.nsecsElapsed()) / 1e9);
        longestStall = std::max(longestStall, double(stalls.longestMs()));
        longestBusy = std::max(longestBusy, stalls.longestBusyMs());
        roundTrips = double(query.roundTrips() - before);
        expect(open.window->sessionState().startsWith(QStringLiteral("logged in")), "the status question failed");
    }
    state.counters["status_round_trips"] = roundTrips;
    state.counters["longest_ui_stall_ms"] = longestStall;
    state.counters["longest_ui_busy_ms"] = longestBusy;
    Log::Singleton::Instance().SetStderrEnabled(true);
}
BENCHMARK(BM_RefreshStatus)->Apply(everySize)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    const auto name = [](const char* benchmark, int size, int iterations) {
        return std::string(benchmark) + "/" + std::to_string(size) + "/iterations:" + std::to_string(iterations) +
               "/manual_time";
    };
    // Each size against the next smaller one.
    std::vector<RatioReporter::Ratio> ratios;
    const std::vector<int> sizes = workspaceSizes();
    for (std::size_t larger = 1; larger < sizes.size(); ++larger) {
        const int top = sizes[larger], bottom = sizes[larger - 1];
        const QLocale grouped(QLocale::English);
        const std::string of =
            (QStringLiteral(" t(%1) / t(%2)").arg(grouped.toString(top), grouped.toString(bottom))).toStdString();
        const char* goal = top == 10000 && bottom == 1000 ? " (goal <= 10.5)" : "";
        ratios.push_back({"first painted browser rows" + of, name("BM_OpenWorkspaceFirstRows", top, 3),
                          name("BM_OpenWorkspaceFirstRows", bottom, 3)});
        ratios.push_back({"workspace fully open" + of + goal, name("BM_OpenWorkspaceInWindow", top, 3),
                          name("BM_OpenWorkspaceInWindow", bottom, 3)});
        ratios.push_back({"status refresh" + of, name("BM_RefreshStatus", top, 5), name("BM_RefreshStatus", bottom, 5)});
    }
    RatioReporter reporter(std::move(ratios));
    const int status = RunWidgetBenchmarks(argc, argv, reporter);
    std::printf("peak memory of the process after the set-up: %.0f MiB\n", peakMemoryMiB());
    return status;
}
