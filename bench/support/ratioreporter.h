#pragma once

// A console reporter that also keeps each benchmark run's real time per iteration and, after the
// run, prints one "ratio <label>: <value>" line per requested pair of runs measured side by side.
// Header-only: include it as "../support/ratioreporter.h" from a benchmark folder.

#include <benchmark/benchmark.h>

#include <cstdio>
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

    explicit RatioReporter(std::vector<Ratio> ratios) : m_ratios(std::move(ratios)) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                m_times[run.benchmark_name()] = run.GetAdjustedRealTime();
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
    std::map<std::string, double> m_times;
};
