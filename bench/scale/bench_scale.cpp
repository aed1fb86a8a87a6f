// A workspace of 100,000 submitted metadata assets (HBRC_SCALE_ASSETS overrides the count) on the
// embedded depot, or on svnserve with HBRC_SCALE_SERVER=svnserve (one server per run, so that the
// peak memory is that server's), through the host's workspace loading and the services' status
// question:
// - loading the workspace folder afresh;
// - refreshing the status of every asset (one object-status question, as a refresh asks it), with
//   the depot round trips it costs;
// - saving 1,000 edited assets.
// Each is timed once per iteration; the peak memory of the process (getrusage) is printed at the
// end. Run it with TMPDIR on a real disk to include the save's flush.
#include <depotworkspace.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <iterator>
#include <string>
#include <vector>

#include <sys/resource.h>

using namespace hbrc::host;

namespace {

constexpr int kEdited = 1000;

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

// The depot workspace with its assets created, saved and submitted, built once per run.
class Scene
{
public:
    static Scene& Get()
    {
        static Scene scene;
        return scene;
    }

    hbrc::bench::DepotWorkspace& Depot() { return m_depot; }
    const kel4::IDataControl::ObjectList& Assets() const { return m_assets; }
    void Edit(int count)
    {
        ++m_edits;
        for (int i = 0; i < count && i < int(m_handles.size()); ++i)
            if (!m_depot.Space().SetField(m_handles[std::size_t(i)], "note", std::to_string(m_edits)))
                throw std::runtime_error("cannot edit");
    }

private:
    Scene() : m_depot(server())
    {
        const int count = assetCount();
        std::string error;
        for (int i = 0; i < count; ++i) {
            NewAsset asset;
            asset.kind = AssetKind::Metadata;
            asset.name = "Asset" + std::to_string(i);
            asset.folder = "level" + std::to_string(i % 100);
            const KELHandle<kel4::IAsset> created = m_depot.Space().CreateAsset(asset, error);
            if (created.IsNull())
                throw std::runtime_error(error);
            m_handles.push_back(created);
            m_assets.emplace_back(created);
        }
        const SaveReport saved = m_depot.Space().Save();
        if (!saved.Succeeded())
            throw std::runtime_error(saved.DescribeFailures());
        m_depot.Submit(saved.writtenFiles);
        // The assets the save benchmark edits are checked out (writable), as a user's would be.
        const kel4::IDataControl::ObjectList edited(m_assets.begin(), std::next(m_assets.begin(), std::min(count, kEdited)));
        if (m_depot.Data().CheckOut(edited, true, kel4::closureId::Persistence, "", error).IsFailure())
            throw std::runtime_error(error);
    }

    hbrc::bench::DepotWorkspace m_depot;
    std::vector<KELHandle<kel4::IAsset>> m_handles;
    kel4::IDataControl::ObjectList m_assets;
    int m_edits = 0;
};

void BM_LoadWorkspace(benchmark::State& state)
{
    Scene& scene = Scene::Get();
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

void BM_RefreshStatus(benchmark::State& state)
{
    Scene& scene = Scene::Get();
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
BENCHMARK(BM_RefreshStatus)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_SaveEditedAssets(benchmark::State& state)
{
    Scene& scene = Scene::Get();
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

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    std::printf("peak memory: %.0f MiB\n", double(usage.ru_maxrss) / 1024.0);
    return 0;
}
