// Status of many files: one batched call against the same files asked one by one, and the round
// trips a 1,000-file question costs. The history questions on a long history: a file's 1,000
// revisions and the list of 10,000 submitted changes, each one round trip, timed against a plain
// status question.
#include <depot/depot.h>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace hbrc::depot;

namespace {

constexpr int kFiles = 10000;

// A depot in a folder of its own with one user's workspace, filled once per run.
class Workspace
{
public:
    using Fill = std::function<void(Workspace&)>;

    Workspace(const std::string& name, const Fill& fill)
        : m_root(fs::temp_directory_path() / (name + "_" + std::to_string(::getpid())))
    {
        fs::remove_all(m_root);
        fs::create_directories(m_root / "ws");
        const std::string depotPath = (m_root / "depot.db").string();
        Depot::create(depotPath);
        m_depot = std::make_unique<Depot>(depotPath);
        m_depot->addUser("bench", "");
        m_depot->addWorkspace("bench-ws", "bench", (m_root / "ws").string());
        m_depot->login("bench", "", "bench-ws", m_ticket);
        fill(*this);
    }
    ~Workspace()
    {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }

    Depot& depot() { return *m_depot; }
    const std::string& ticket() const { return m_ticket; }
    // Writes a workspace file (writable first, as an opened file is) and names it among files().
    std::string write(const std::string& relative, const std::string& content)
    {
        const fs::path file = m_root / "ws" / relative;
        fs::create_directories(file.parent_path());
        std::error_code ignored;
        fs::permissions(file, fs::perms::owner_write, fs::perm_options::add, ignored);
        std::ofstream(file, std::ios::trunc) << content;
        if (m_named.insert(file.string()).second)
            m_files.push_back(file.string());
        return file.string();
    }
    void submit(const std::string& description)
    {
        ChangelistId submitted;
        const Result result = m_depot->submit(m_ticket, "", description, submitted);
        if (!result.ok())
            std::fprintf(stderr, "setting up the bench depot failed: %s\n", result.error.c_str());
    }
    std::vector<std::string> files(std::size_t count) const
    {
        return std::vector<std::string>(m_files.begin(), m_files.begin() + static_cast<std::ptrdiff_t>(count));
    }

private:
    fs::path m_root;
    std::unique_ptr<Depot> m_depot;
    std::string m_ticket;
    std::vector<std::string> m_files;
    std::set<std::string> m_named;
};

// kFiles files submitted in one change.
Workspace& workspace()
{
    static Workspace instance("bench_depot", [](Workspace& w) {
        for (int i = 0; i < kFiles; ++i)
            w.write("assets/" + std::to_string(i % 100) + "/" + std::to_string(i) + ".kel", "asset " + std::to_string(i));
        w.depot().add(w.ticket(), w.files(kFiles), "");
        w.submit("bench assets");
    });
    return instance;
}

constexpr int kRevisions = 1000;
constexpr int kChanges = 10000;

// ship.kel with kRevisions revisions, among kChanges submitted changes (the others add a file each).
Workspace& history()
{
    static Workspace instance("bench_depot_history", [](Workspace& w) {
        const std::string ship = w.write("ship.kel", "revision 1");
        w.depot().add(w.ticket(), {ship}, "");
        w.submit("ship 1");
        for (int change = 2; change <= kChanges; ++change) {
            if (change <= kRevisions) {
                w.depot().edit(w.ticket(), {ship}, "");
                w.write("ship.kel", "revision " + std::to_string(change));
            } else {
                w.depot().add(w.ticket(), {w.write("other/" + std::to_string(change) + ".kel", "other")}, "");
            }
            w.submit("change " + std::to_string(change));
        }
    });
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

// A history question against a plain status question of the same file, side by side in each
// iteration; a question that takes more than one round trip fails the run.
void measureAgainstStatus(benchmark::State& state, std::size_t listed, const std::function<std::size_t()>& ask)
{
    using Clock = std::chrono::steady_clock;
    Workspace& w = history();
    const std::vector<std::string> ship = w.files(1);
    std::vector<FileStatus> statuses;
    Clock::duration asked{};
    Clock::duration status{};
    for (auto _ : state) {
        const std::uint64_t before = w.depot().roundTrips();
        const auto start = Clock::now();
        const std::size_t answered = ask();
        const auto middle = Clock::now();
        if (w.depot().roundTrips() - before != 1 || answered != listed) {
            state.SkipWithError("the question took more than one round trip or missed entries");
            return;
        }
        w.depot().status(w.ticket(), ship, statuses);
        asked += middle - start;
        status += Clock::now() - middle;
    }
    state.counters["round_trips_per_question"] = 1;
    state.counters["over_one_file_status"] =
        std::chrono::duration<double>(asked).count() / std::chrono::duration<double>(status).count();
}

void BM_FileHistory(benchmark::State& state)
{
    std::vector<std::vector<FileRevision>> histories;
    measureAgainstStatus(state, kRevisions, [&] {
        history().depot().fileHistory(history().ticket(), history().files(1), 0, histories);
        return histories.empty() ? 0 : histories.front().size();
    });
}
BENCHMARK(BM_FileHistory)->Unit(benchmark::kMillisecond);

void BM_SubmittedChanges(benchmark::State& state)
{
    std::vector<Changelist> changes;
    measureAgainstStatus(state, kChanges, [&] {
        history().depot().submittedChanges(history().ticket(), {}, changes);
        return changes.size();
    });
}
BENCHMARK(BM_SubmittedChanges)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
