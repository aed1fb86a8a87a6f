// Cost of the services' list questions against the embedded depot: the status of 10,000 submitted
// files (a realistic tree, on disk and in the depot) in one call, a 1,000-object status question asked as one list or object by object, and the first
// per-object question after a change in workspaces of 1,000 and 10,000 assets. Reports round
// trips per question and the ratio of the two ways of asking, measured side by side in this run.
#include <depotworkspace.h>
#include <ratioreporter.h>
#include <realistictree.h>

#include <benchmark/benchmark.h>

#include <QFile>

#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace hbrc::host;

namespace {

constexpr kel4::closureId kPersistence = kel4::closureId::Persistence;

// A depot with one user whose workspace holds 10,000 submitted files and 1,000 unsaved assets,
// with the services logged in.
class Scene
{
public:
    static Scene& Get()
    {
        static Scene scene;
        return scene;
    }

    DataControl& Data() { return m_depot.Data(); }
    FileVersionControl& Files() { return m_depot.Files(); }
    ServerConnection& Connection() { return m_depot.Connection(); }
    const kel4::IDataControl::ObjectList& Objects() const { return m_objects; }
    kel4::List<std::string> FileNames(int count) const { return {m_files.begin(), m_files.begin() + count}; }

private:
    Scene()
    {
        const QStringList files = hbrc::bench::makeRealisticTree(QFile::decodeName(m_depot.Root().c_str()) + "/files", 10000);
        if (files.isEmpty())
            throw std::runtime_error("cannot write the benchmark files");
        for (const QString& file : files)
            m_files.push_back(QFile::encodeName(file).toStdString());
        m_depot.Submit(m_files);
        std::string error;
        for (int i = 0; i < 1000; ++i) {
            NewAsset asset;
            asset.name = "Asset" + std::to_string(i);
            m_objects.emplace_back(m_depot.Space().CreateAsset(asset, error));
        }
    }

    hbrc::bench::DepotWorkspace m_depot;
    std::vector<std::string> m_files;
    kel4::IDataControl::ObjectList m_objects;
};

void ReportRoundTrips(benchmark::State& state, std::uint64_t before)
{
    state.counters["round_trips_per_question"] = benchmark::Counter(
        double(Scene::Get().Connection().RoundTrips() - before) / double(state.iterations()));
}

void BM_FileStatus(benchmark::State& state)
{
    Scene& scene = Scene::Get();
    const kel4::List<std::string> files = scene.FileNames(int(state.range(0)));
    const auto before = scene.Connection().RoundTrips();
    for (auto _ : state) {
        kel4::List<unsigned> statuses;
        kel4::List<std::string> changelists;
        std::string error;
        if (scene.Files().GetStatus(scene.Data().GetUserParameters().Get(), files, statuses, changelists, error, 0)
                .IsFailure())
            state.SkipWithError(error.c_str());
        benchmark::DoNotOptimize(statuses);
    }
    ReportRoundTrips(state, before);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FileStatus)->Arg(100)->Arg(10000)->Unit(benchmark::kMillisecond);

// The 1,000-object status question as the plug-in asks it: one list.
void BM_ObjectStatusAsOneList(benchmark::State& state)
{
    Scene& scene = Scene::Get();
    const auto before = scene.Connection().RoundTrips();
    for (auto _ : state) {
        kel4::List<unsigned> statuses;
        std::string error;
        scene.Data().GetStatus(scene.Objects(), true, kPersistence, true, statuses, error);
        benchmark::DoNotOptimize(statuses);
    }
    ReportRoundTrips(state, before);
}
BENCHMARK(BM_ObjectStatusAsOneList)->Unit(benchmark::kMillisecond);

// The same question object by object, as a caller without list questions would ask it.
void BM_ObjectStatusOneByOne(benchmark::State& state)
{
    Scene& scene = Scene::Get();
    const auto before = scene.Connection().RoundTrips();
    for (auto _ : state) {
        for (const auto& object : scene.Objects()) {
            kel4::List<unsigned> statuses;
            std::string error;
            scene.Data().GetStatus({object}, true, kPersistence, true, statuses, error);
            benchmark::DoNotOptimize(statuses);
        }
    }
    ReportRoundTrips(state, before);
}
BENCHMARK(BM_ObjectStatusOneByOne)->Unit(benchmark::kMillisecond);

// Per-object needs-action questions over the 1,000 objects with nothing known (as after a change
// of session), asked as an editability question asks them: after naming its work list through
// the related-objects question.
void BM_NeedsActionSeries(benchmark::State& state)
{
    Scene& scene = Scene::Get();
    const auto before = scene.Connection().RoundTrips();
    for (auto _ : state) {
        scene.Connection().Cache().Invalidate();
        kel4::IDataControl::ObjectSet related;
        scene.Data().GetRelatedObjects(scene.Objects(), related);
        for (const auto& object : scene.Objects())
            benchmark::DoNotOptimize(scene.Data().NeedsAction(object, true, kPersistence));
    }
    ReportRoundTrips(state, before);
}
BENCHMARK(BM_NeedsActionSeries)->Unit(benchmark::kMillisecond);

// The first per-object question after a change made through the services, in a workspace of N
// saved assets: about an asset the change touched, and about one it did not touch. The change is
// a revert of the first asset's files (nothing is open, so the depot is left as it was).
class ChangedWorkspace
{
public:
    static ChangedWorkspace& Get(int assets)
    {
        static std::map<int, std::unique_ptr<ChangedWorkspace>> scenes;
        auto& scene = scenes[assets];
        if (!scene)
            scene.reset(new ChangedWorkspace(assets));
        return *scene;
    }

    ServerConnection& Connection() { return m_depot.Connection(); }
    DataControl& Data() { return m_depot.Data(); }
    const kel4::IDataControl::ObjectList& Objects() const { return m_objects; }
    void ChangeTheFirstAsset()
    {
        std::string error;
        if (m_depot.Files().Revert(m_depot.Session(), m_firstFiles, error, 0, 0).IsFailure())
            throw std::runtime_error(error);
    }

private:
    explicit ChangedWorkspace(int assets)
    {
        std::string error;
        for (int i = 0; i < assets; ++i) {
            NewAsset asset;
            asset.name = "Stone" + std::to_string(i);
            m_objects.emplace_back(m_depot.Space().CreateAsset(asset, error));
        }
        m_depot.Space().Save();
        kel4::Set<std::string> files;
        Data().GetFiles(m_objects.front(), true, kPersistence, "", files);
        m_firstFiles.assign(files.begin(), files.end());
    }

    hbrc::bench::DepotWorkspace m_depot;
    kel4::IDataControl::ObjectList m_objects;
    kel4::List<std::string> m_firstFiles;
};

template <bool AboutTheChangedAsset>
void BM_FirstNeedsActionAfterChange(benchmark::State& state)
{
    ChangedWorkspace& scene = ChangedWorkspace::Get(int(state.range(0)));
    const auto& object =
        AboutTheChangedAsset ? scene.Objects().front() : *std::next(scene.Objects().begin(), state.range(0) / 2);
    std::uint64_t roundTrips = 0;
    for (auto _ : state) {
        state.PauseTiming();
        scene.ChangeTheFirstAsset();
        const auto before = scene.Connection().RoundTrips();
        state.ResumeTiming();
        benchmark::DoNotOptimize(scene.Data().NeedsAction(object, true, kPersistence));
        state.PauseTiming();
        roundTrips += scene.Connection().RoundTrips() - before;
        state.ResumeTiming();
    }
    state.counters["round_trips_per_question"] = benchmark::Counter(double(roundTrips) / double(state.iterations()));
}
BENCHMARK_TEMPLATE(BM_FirstNeedsActionAfterChange, true)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_FirstNeedsActionAfterChange, false)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv)
{
    RatioReporter reporter({{"1,000-object status, object by object / as one list", "BM_ObjectStatusOneByOne",
                             "BM_ObjectStatusAsOneList"}});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
