// A workspace of 100,000 submitted metadata assets (HBRC_SCALE_ASSETS overrides the count) on the
// embedded depot, or on svnserve with HBRC_SCALE_SERVER=svnserve (one server per run, so that the
// peak memory is that server's), through the host's workspace loading and the services' status
// question:
// - loading the workspace folder afresh;
// - refreshing the status of every asset (one object-status question, as a refresh asks it), with
//   the depot round trips it costs, and the same in a second workspace of 20,000 assets on a depot
//   of its own, the ratio of the two printed at the end in wall time and in CPU time (the whole
//   process's, as the embedded depot answers on a worker thread);
// - saving 1,000 edited assets.
// Each is timed once per iteration. Printed at the end: the set-up's time and peak memory, and the
// process's peak memory while measuring (counted anew after the set-up; both workspaces are open
// while measuring). On svnserve the submitted assets come from a seed kept in TMPDIR as
// hbrc-bench-scale-COUNT (built by the first run of a count; delete it to build it anew). Run it
// with TMPDIR on a real disk to include the save's flush.
#include <depotworkspace.h>
#include <ratioreporter.h>
#include <scaleassets.h>

#include <benchmark/benchmark.h>

#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace hbrc::host;
using hbrc::bench::CreateAssets;
using hbrc::bench::SaveAll;

namespace {

constexpr int kEdited = 1000;
// The smaller workspace, whose refresh is measured in the same run to show how the refresh grows
// with the assets.
constexpr int kSmallerRefresh = 20000;

int assetCount()
{
    const char* configured = std::getenv("HBRC_SCALE_ASSETS");
    return configured ? std::atoi(configured) : 100000;
}

hbrc::bench::DepotWorkspace::Server server()
{
    const char* configured = std::getenv("HBRC_SCALE_SERVER");
    return configured && std::string(configured) == "svnserve" ? hbrc::bench::DepotWorkspace::Server::SvnServe
                                                               : hbrc::bench::DepotWorkspace::Server::EmbeddedDepot;
}

// The workspace's assets in the order CreateAssets made them.
std::vector<KELHandle<kel4::IAsset>> AssetsInCreationOrder(const Workspace& space, int count)
{
    std::vector<KELHandle<kel4::IAsset>> handles(static_cast<std::size_t>(count));
    const ObjectStore& store = space.Model().Store();
    store.ForEachLive([&](std::uint32_t slot) {
        const std::string& name = store.NameOf(slot);
        if (store.IsAsset(slot) && name.rfind("Asset", 0) == 0)
            if (const int index = std::atoi(name.c_str() + 5); index >= 0 && index < count)
                handles[std::size_t(index)] = KELHandle<kel4::IAsset>::AssignCast(space.Model().HandleOf(slot));
    });
    if (std::any_of(handles.begin(), handles.end(), [](const auto& handle) { return handle.IsNull(); }))
        throw std::runtime_error("the workspace misses assets");
    return handles;
}

// On svnserve, the assets come submitted already from a seed built once per count (see SvnSeed),
// as committing them through the server takes about an hour at 100,000; a seed's working copy is
// the state that commit leaves, at one revision.
std::unique_ptr<hbrc::bench::SvnSeed> Seed(int count)
{
    if (server() != hbrc::bench::DepotWorkspace::Server::SvnServe)
        return nullptr;
    return std::make_unique<hbrc::bench::SvnSeed>(hbrc::bench::ScaleSeed(count));
}

// A depot workspace with its assets created, saved and submitted, built once per count and run.
class Scene
{
public:
    static Scene& Of(int count)
    {
        std::unique_ptr<Scene>& scene = Scenes()[count];
        if (!scene)
            scene.reset(new Scene(count));
        return *scene;
    }

    // Ends every scene, with its server, while the Subversion client library still runs: its exit
    // handler is registered by the first scene's connection, so it would run before the scenes of
    // a static map made earlier are destroyed.
    static void EndAll() { Scenes().clear(); }

    hbrc::bench::DepotWorkspace& Depot() { return m_depot; }
    const kel4::IDataControl::ObjectList& Assets() const { return m_assets; }
    bool SeedReused() const { return m_seed && m_seed->Reused(); }
    void Edit(int count)
    {
        ++m_edits;
        for (int i = 0; i < count && i < int(m_handles.size()); ++i)
            if (!m_depot.Space().SetField(m_handles[std::size_t(i)], "note", std::to_string(m_edits)))
                throw std::runtime_error("cannot edit");
    }

private:
    static std::map<int, std::unique_ptr<Scene>>& Scenes()
    {
        static std::map<int, std::unique_ptr<Scene>> scenes;
        return scenes;
    }

    explicit Scene(int count) : m_seed(Seed(count)), m_depot(server(), m_seed.get())
    {
        if (m_seed)
            m_handles = AssetsInCreationOrder(m_depot.Space(), count);
        else {
            m_handles = CreateAssets(m_depot.Space(), count);
            m_depot.Submit(SaveAll(m_depot.Space()));
        }
        for (const auto& handle : m_handles)
            m_assets.emplace_back(handle);
        // The assets the save benchmark edits are checked out (writable), as a user's would be.
        const kel4::IDataControl::ObjectList edited(m_assets.begin(), std::next(m_assets.begin(), std::min(count, kEdited)));
        std::string error;
        if (m_depot.Data().CheckOut(edited, true, kel4::closureId::Persistence, "", error).IsFailure())
            throw std::runtime_error(error);
    }

    std::unique_ptr<hbrc::bench::SvnSeed> m_seed;
    hbrc::bench::DepotWorkspace m_depot;
    std::vector<KELHandle<kel4::IAsset>> m_handles;
    kel4::IDataControl::ObjectList m_assets;
    int m_edits = 0;
};

void BM_LoadWorkspace(benchmark::State& state)
{
    Scene& scene = Scene::Of(assetCount());
    for (auto _ : state) {
        std::string error;
        const auto loaded = Workspace::Open(QString::fromStdString(scene.Depot().Root()), error);
        if (!loaded)
            state.SkipWithError(error.c_str());
        benchmark::DoNotOptimize(loaded.get());
    }
    state.counters["assets"] = double(scene.Assets().size());
}
BENCHMARK(BM_LoadWorkspace)->Unit(benchmark::kMillisecond)->Iterations(3);

// The status of a workspace's every asset; the first refresh fills the services' status cache.
void BM_RefreshStatus(benchmark::State& state)
{
    Scene& scene = Scene::Of(int(state.range(0)));
    const auto before = scene.Depot().Connection().RoundTrips();
    for (auto _ : state) {
        kel4::List<unsigned> statuses;
        std::string error;
        if (scene.Depot().Data().GetStatus(scene.Assets(), true, kel4::closureId::Persistence, true, statuses, error)
                .IsFailure())
            state.SkipWithError(error.c_str());
        benchmark::DoNotOptimize(statuses);
    }
    state.counters["round_trips_per_refresh"] =
        double(scene.Depot().Connection().RoundTrips() - before) / double(state.iterations());
}
void RefreshSizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(assetCount());
    if (assetCount() > kSmallerRefresh)
        benchmark->Arg(kSmallerRefresh);
}
BENCHMARK(BM_RefreshStatus)->Apply(RefreshSizes)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_SaveEditedAssets(benchmark::State& state)
{
    Scene& scene = Scene::Of(assetCount());
    for (auto _ : state) {
        state.PauseTiming();
        scene.Edit(int(state.range(0)));
        state.ResumeTiming();
        const SaveReport report = scene.Depot().Space().Save();
        if (!report.Succeeded()) {
            state.SkipWithError(report.DescribeFailures().c_str());
            break;
        }
    }
}
BENCHMARK(BM_SaveEditedAssets)->Arg(kEdited)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

// The process's peak resident memory in MiB since it started or since the last ResetPeakMemory().
double PeakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly))
        for (const QByteArray& line : status.readAll().split('\n'))
            if (line.startsWith("VmHWM:"))
                return line.mid(6).trimmed().split(' ').front().toDouble() / 1024.0;
    throw std::runtime_error("no peak memory in /proc/self/status");
}

void ResetPeakMemory()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
}

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    // The scene is built before the benchmarks so that the peak memory they report is that of the
    // workspace, its services and the measured work, not of the set-up's own (a commit through the
    // client library, or building a seed).
    const auto started = std::chrono::steady_clock::now();
    const Scene* scene = nullptr;
    try {
        scene = &Scene::Of(assetCount());
        if (assetCount() > kSmallerRefresh)
            Scene::Of(kSmallerRefresh);
    } catch (const std::exception& failure) {  // caught so that the set-up's server stops
        std::fprintf(stderr, "set-up failed: %s\n", failure.what());
        Scene::EndAll();
        return 1;
    }
    const double setUpSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    const double setUpPeak = PeakMemory();
    ResetPeakMemory();
    const auto refreshOf = [](int count) {
        return "BM_RefreshStatus/" + std::to_string(count) + "/iterations:3/process_time";
    };
    const std::string refreshRatio = "refresh t(" + std::to_string(assetCount()) + ") / t(" + std::to_string(kSmallerRefresh) + ")";
    RatioReporter reporter({{refreshRatio, refreshOf(assetCount()), refreshOf(kSmallerRefresh)},
                            {refreshRatio + " in the process's CPU time (the client's part on svnserve)",
                             refreshOf(assetCount()), refreshOf(kSmallerRefresh), RatioReporter::Clock::Cpu}});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    std::printf("set-up: %.0f s%s, peak memory %.0f MiB\n", setUpSeconds,
                server() == hbrc::bench::DepotWorkspace::Server::SvnServe
                    ? (scene->SeedReused() ? " (Subversion seed reused)" : " (Subversion seed built)")
                    : "",
                setUpPeak);
    std::printf("peak memory: %.0f MiB\n", PeakMemory());
    Scene::EndAll();
    return 0;
}
