#pragma once

// A console reporter that also keeps each benchmark run's time per iteration and, after the run,
// prints one "ratio <label>: <value>" line per requested pair of runs measured side by side, in the
// reporter's clock or the pair's own. For a benchmark run with repetitions it takes the median of
// the repetitions.
// Header-only; benchmark folders link the interface target hbrc_benchsupport.

#include <benchmark/benchmark.h>

#include <QApplication>

#include <cstdio>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    // Real time by default; CPU time stays comparable for single-threaded work (or a run that
    // measures the process's CPU time) while other processes share the machine.
    enum class Clock { Real, Cpu };
    struct Ratio
    {
        std::string label;
        std::string numerator;    // a run name such as "BM_Open/10000"
        std::string denominator;
        std::optional<Clock> clock = std::nullopt;  // none: the reporter's
    };

    explicit RatioReporter(std::vector<Ratio> ratios, Clock clock = Clock::Real)
        : m_ratios(std::move(ratios)), m_clock(clock) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            const Times time{run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                m_medians[run.run_name.str()] = time;
            else if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                m_times[run.benchmark_name()] = time;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        for (const Ratio& ratio : m_ratios) {
            const Clock clock = ratio.clock.value_or(m_clock);
            const double top = timeOf(ratio.numerator, clock);
            const double bottom = timeOf(ratio.denominator, clock);
            if (top > 0 && bottom > 0)
                std::printf("ratio %s: %.2f\n", ratio.label.c_str(), top / bottom);
        }
    }

private:
    struct Times
    {
        double real = 0;
        double cpu = 0;
    };

    double timeOf(const std::string& run, Clock clock) const
    {
        for (const auto* times : {&m_medians, &m_times}) {
            if (const auto found = times->find(run); found != times->end())
                return clock == Clock::Real ? found->second.real : found->second.cpu;
        }
        return 0;
    }

    std::vector<Ratio> m_ratios;
    Clock m_clock;
    std::map<std::string, Times> m_times;
    std::map<std::string, Times> m_medians;
};

// The main of a benchmark that needs widgets: one QApplication (offscreen unless the caller chose
// a platform), then every benchmark with the reporter, then beforeQuit (e.g. closing a host whose
// widgets must go while the application still runs).
inline int RunWidgetBenchmarks(int argc, char** argv, RatioReporter& reporter,
                               const std::function<void()>& beforeQuit = {})
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    if (beforeQuit)
        beforeQuit();
    return 0;
}
