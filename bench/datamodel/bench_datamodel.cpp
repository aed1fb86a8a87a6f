// How the data model grows with the workspace: opening a folder of 1,000 and of 10,000 assets
// (every .kel file read and parsed, every object bound to an item) and running the save hook's
// object query with a tenth of the assets dirty. Both sizes run side by side; the summary prints
// the 10,000 / 1,000 ratio of each, which is 10 for linear growth. Times and ratios are of the
// process's CPU time, which other processes on a shared machine do not inflate, and the median of
// five repetitions run in random order, so that a busy moment does not fall on one size alone.
#include <hbrcdatamodel/kelformat.h>
#include <hbrcdatamodel/workspace.h>

#include <log/log.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <ratioreporter.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using hbrc::host::AssetKind;
using hbrc::host::AssetRecord;
using hbrc::host::Workspace;

const char* const kSaveHookQuery = "select object where OR(AND(IS_PERSISTABLE,AND(IS_METADATA, IS_DIRTY)),"
                                   "AND(IS_PERSISTABLE,AND(IS_VALUE_ASSET, IS_DIRTY)))";

// A workspace folder of count assets in folders of 100: metadata, value and data assets in turn,
// each with two fields, an external file name and two parts.
QString makeWorkspace(QTemporaryDir& dir, int count)
{
    const QString root = dir.filePath(QStringLiteral("ws%1").arg(count));
    for (int i = 0; i < count; ++i) {
        AssetRecord record;
        record.id = "asset-" + std::to_string(i);
        record.kind = static_cast<AssetKind>(i % 3);
        record.type = "Bench";
        record.name = "asset " + std::to_string(i);
        record.version = 1;
        record.fields = {{"colour", "grey"}, {"weight", std::to_string(i)}};
        record.externalFiles = {"asset" + std::to_string(i) + ".bin"};
        record.parts = {{record.id + "-a", "Layer", "a"}, {record.id + "-b", "Layer", "b"}};
        const QString folder = root + QStringLiteral("/f%1").arg(i / 100);
        QDir().mkpath(folder);
        QFile file(folder + QStringLiteral("/asset%1.kel").arg(i));
        if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray::fromStdString(hbrc::host::KelFormat::Serialize(record))) < 0)
            return {};
    }
    return root;
}

const QString& workspaceOf(int count)
{
    static QTemporaryDir dir;
    static std::map<int, QString> roots;
    auto found = roots.find(count);
    if (found == roots.end())
        found = roots.emplace(count, makeWorkspace(dir, count)).first;
    return found->second;
}

std::unique_ptr<Workspace> open(int count)
{
    std::string error;
    auto workspace = Workspace::Open(workspaceOf(count), error);
    if (!workspace || workspace->LoadOutcome().loaded != std::size_t(count))
        std::fprintf(stderr, "could not open the benchmark workspace: %s\n", error.c_str());
    return workspace;
}

void BM_OpenWorkspace(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(open(int(state.range(0))));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_SaveHookQuery(benchmark::State& state)
{
    const auto workspace = open(int(state.range(0)));
    for (int i = 0; i < state.range(0); i += 10)
        workspace->SetField(workspace->Model().ResolveObject(DbObjectId("asset-" + std::to_string(i))), "weight", "0");
    std::size_t selected = 0;
    for (auto _ : state) {
        kel4::Vector<kel4::CQueryResult> results;
        std::string error;
        workspace->Model().Query(kSaveHookQuery, results, 3, error);
        selected = results.size();
        benchmark::DoNotOptimize(results.data());
    }
    state.counters["selected"] = double(selected);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(1000)->Arg(10000)->MeasureProcessCPUTime()->Repetitions(5)->ReportAggregatesOnly(true);
    benchmark->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_OpenWorkspace)->Apply(sizes);
BENCHMARK(BM_SaveHookQuery)->Apply(sizes);

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    Log::Singleton::Instance().SetStderrEnabled(false);
    // Interleaved repetitions unless the command line says otherwise (a later flag wins).
    std::vector<char*> arguments(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, interleave);
    int count = int(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (workspaceOf(1000).isEmpty() || workspaceOf(10000).isEmpty()) {
        std::fprintf(stderr, "could not create the benchmark workspaces\n");
        return 1;
    }
    RatioReporter reporter({{"BM_OpenWorkspace 10000 / 1000 assets (linear: 10)", "BM_OpenWorkspace/10000/repeats:5/process_time",
                             "BM_OpenWorkspace/1000/repeats:5/process_time"},
                            {"BM_SaveHookQuery 10000 / 1000 assets (linear: 10)", "BM_SaveHookQuery/10000/repeats:5/process_time",
                             "BM_SaveHookQuery/1000/repeats:5/process_time"}},
                           RatioReporter::Clock::Cpu);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
