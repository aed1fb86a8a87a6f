#pragma once

// A console reporter that also keeps each benchmark run's time per iteration and, after the run,
// prints one "ratio <label>: <value>" line per requested pair of runs measured side by side.
// Header-only; benchmark folders link the interface target hbrc_benchsupport.

#include <benchmark/benchmark.h>

#include <QApplication>

#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    struct Ratio
    {
        std::string label;
        std::string numerator;    // a run name such as "BM_Open/10000"
        std::string denominator;
    };
    // Real time by default; CPU time stays comparable for single-threaded work while other
    // processes share the machine.
    enum class Clock { Real, Cpu };

    explicit RatioReporter(std::vector<Ratio> ratios, Clock clock = Clock::Real)
        : m_ratios(std::move(ratios)), m_clock(clock) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                m_times[run.benchmark_name()] =
                    m_clock == Clock::Real ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        for (const Ratio& ratio : m_ratios) {
            const double top = m_times[ratio.numerator];
            const double bottom = m_times[ratio.denominator];
            if (top > 0 && bottom > 0)
                std::printf("ratio %s: %.2f\n", ratio.label.c_str(), top / bottom);
        }
    }

private:
    std::vector<Ratio> m_ratios;
    Clock m_clock;
    std::map<std::string, double> m_times;
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
