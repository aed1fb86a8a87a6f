// The per-field difference of two versions of a 1 MB asset (about 20,000 fields, a tenth of them
// changed, colours among them, and external files), as the History tab and Submitted Changes show
// it: both .kel texts parsed and compared. Printed beside the parse of one version, as the ratio of
// the two in CPU time (goal: the difference under 50 ms, a few parses' worth).
#include "assetdiff.h"

#include <hbrcdatamodel/kelformat.h>

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <ratioreporter.h>

#include <string>

namespace {

using hbrc::host::AssetRecord;
using hbrc::studio::AssetDiff;
using hbrc::studio::AssetVersion;
using hbrc::studio::ExternalFileState;

constexpr int kFields = 20000;

// The .kel text of one version; the second changes every tenth field (every thirtieth a colour).
std::string assetText(int version)
{
    AssetRecord record;
    record.id = "5b0d6c1e-2f4e-4c1b-9a53-7f1d2b1c9e01";
    record.type = "Material";
    record.name = "Rock";
    record.version = std::uint64_t(version);
    for (int i = 0; i < kFields; ++i) {
        const bool changed = version > 1 && i % 10 == 0;
        const std::string key = "field" + std::to_string(100000 + i) + (i % 3 == 0 ? "_colour" : "_weight");
        std::string value = i % 3 == 0 ? (changed ? "#b0483a" : "#808080") : std::to_string(i * (changed ? 3 : 1)) + ".25";
        record.fields[key] = value + " " + std::string(20, 'x');
    }
    record.externalFiles = {"rock.bin", "rock_normal.bin"};
    return hbrc::host::KelFormat::Serialize(record);
}

AssetVersion parsed(const std::string& text)
{
    AssetVersion version;
    std::string error;
    version.exists = hbrc::host::KelFormat::Parse(text, version.record, error);
    for (const std::string& name : version.record.externalFiles)
        version.externalFiles.push_back(ExternalFileState::of(name, QByteArray(1 << 16, char(version.record.version))));
    return version;
}

const std::string& text(int version)
{
    static const std::string first = assetText(1), second = assetText(2);
    return version == 1 ? first : second;
}

void BM_ParseOneVersion(benchmark::State& state)
{
    for (auto _ : state) {
        AssetRecord record;
        std::string error;
        benchmark::DoNotOptimize(hbrc::host::KelFormat::Parse(text(2), record, error));
    }
    state.counters["bytes"] = double(text(2).size());
}

void BM_Difference(benchmark::State& state)
{
    std::size_t rows = 0;
    for (auto _ : state) {
        const auto differences = AssetDiff::compare(parsed(text(1)), parsed(text(2)));
        rows = differences.size();
        benchmark::DoNotOptimize(differences.data());
    }
    state.counters["rows"] = double(rows);
}

void BM_CompareParsed(benchmark::State& state)
{
    const AssetVersion before = parsed(text(1)), after = parsed(text(2));
    for (auto _ : state)
        benchmark::DoNotOptimize(AssetDiff::compare(before, after).data());
}

void options(benchmark::internal::Benchmark* benchmark)
{
    benchmark->MeasureProcessCPUTime()->Repetitions(5)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);
}

BENCHMARK(BM_ParseOneVersion)->Apply(options);
BENCHMARK(BM_Difference)->Apply(options);
BENCHMARK(BM_CompareParsed)->Apply(options);

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter({{"difference of two 1 MB versions / parse of one", "BM_Difference/repeats:5/process_time",
                             "BM_ParseOneVersion/repeats:5/process_time"},
                            {"compare of two parsed versions / parse of one", "BM_CompareParsed/repeats:5/process_time",
                             "BM_ParseOneVersion/repeats:5/process_time"}},
                           RatioReporter::Clock::Cpu);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
