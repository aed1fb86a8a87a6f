// Status of many files: one batched call against the same files asked one by one, and the round
// trips a 1,000-file question costs.
#include <depot/depot.h>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace hbrc::depot;

namespace {

constexpr int kFiles = 10000;

// A depot holding kFiles submitted files, synced into one workspace, built once per run.
class Workspace
{
public:
    Workspace() : m_root(fs::temp_directory_path() / ("bench_depot_" + std::to_string(::getpid())))
    {
        fs::remove_all(m_root);
        fs::create_directories(m_root / "ws");
        const std::string depotPath = (m_root / "depot.db").string();
        Depot::create(depotPath);
        m_depot = std::make_unique<Depot>(depotPath);
        m_depot->addUser("bench", "");
        m_depot->addWorkspace("bench-ws", "bench", (m_root / "ws").string());
        m_depot->login("bench", "", "bench-ws", m_ticket);
        for (int i = 0; i < kFiles; ++i) {
            const fs::path file = m_root / "ws" / ("assets/" + std::to_string(i % 100)) / (std::to_string(i) + ".kel");
            fs::create_directories(file.parent_path());
            std::ofstream(file) << "asset " << i;
            m_files.push_back(file.string());
        }
        m_depot->add(m_ticket, m_files, "");
        ChangelistId submitted;
        const Result result = m_depot->submit(m_ticket, "", "bench assets", submitted);
        if (!result.ok())
            std::fprintf(stderr, "setting up the bench depot failed: %s\n", result.error.c_str());
    }
    ~Workspace()
    {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }

    Depot& depot() { return *m_depot; }
    const std::string& ticket() const { return m_ticket; }
    std::vector<std::string> files(std::size_t count) const
    {
        return std::vector<std::string>(m_files.begin(), m_files.begin() + static_cast<std::ptrdiff_t>(count));
    }

private:
    fs::path m_root;
    std::unique_ptr<Depot> m_depot;
    std::string m_ticket;
    std::vector<std::string> m_files;
};

Workspace& workspace()
{
    static Workspace instance;
    return instance;
}

void BM_StatusBatched(benchmark::State& state)
{
    const auto files = workspace().files(static_cast<std::size_t>(state.range(0)));
    std::vector<FileStatus> statuses;
    std::uint64_t roundTrips = 0;
    for (auto _ : state) {
        const std::uint64_t before = workspace().depot().roundTrips();
        workspace().depot().status(workspace().ticket(), files, statuses);
        roundTrips = workspace().depot().roundTrips() - before;
        benchmark::DoNotOptimize(statuses.data());
    }
    state.counters["round_trips_per_question"] = static_cast<double>(roundTrips);
    state.counters["files_per_second"] =
        benchmark::Counter(static_cast<double>(files.size()), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_StatusBatched)->Arg(1000)->Arg(kFiles)->Unit(benchmark::kMillisecond);

// The same question asked one file per call, as a host without list questions would; each
// iteration also asks it batched, so that the ratio of the two is measured side by side.
void BM_StatusOneByOne(benchmark::State& state)
{
    using Clock = std::chrono::steady_clock;
    const auto files = workspace().files(static_cast<std::size_t>(state.range(0)));
    std::vector<FileStatus> statuses;
    Clock::duration oneByOne{};
    Clock::duration batched{};
    std::uint64_t roundTrips = 0;
    for (auto _ : state) {
        const std::uint64_t before = workspace().depot().roundTrips();
        const auto start = Clock::now();
        for (const std::string& file : files)
            workspace().depot().status(workspace().ticket(), {file}, statuses);
        const auto middle = Clock::now();
        roundTrips = workspace().depot().roundTrips() - before;
        workspace().depot().status(workspace().ticket(), files, statuses);
        oneByOne += middle - start;
        batched += Clock::now() - middle;
    }
    state.counters["one_by_one_over_batched"] =
        std::chrono::duration<double>(oneByOne).count() / std::chrono::duration<double>(batched).count();
    state.counters["round_trips_per_question"] = static_cast<double>(roundTrips);
    state.counters["files_per_second"] =
        benchmark::Counter(static_cast<double>(files.size()), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_StatusOneByOne)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
