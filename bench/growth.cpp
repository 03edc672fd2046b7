// SPDX-License-Identifier: MIT
// The main function of the benchmarks. Besides the library's own table it prints, for every series of at
// least three sizes, the exponent of the curve that fits its CPU times best: 1 is linear. It fails when one
// grows faster than kGreatest, or when a benchmark reports an error. For each size the fastest of a few runs
// counts, so that other work of the machine hardly shows. Memory is allocated as in the program, since page
// faults would grow faster than the work.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "app/commands/posix/large_heap.h"

namespace {

constexpr double kGreatest = 1.1;

class GrowthReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            m_failed |= run.error_occurred;
            if (run.run_type != Run::RT_Iteration || run.error_occurred || run.complexity_n <= 0) continue;
            const bool timesItself = run.run_name.time_type == "manual_time";
            const double time = timesItself ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
            const auto [known, isNew] =
                m_series[run.run_name.function_name].try_emplace(static_cast<double>(run.complexity_n), time);
            if (!isNew) known->second = std::min(known->second, time);
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // Whether every series grows within the limit and no benchmark failed.
    bool PrintGrowth() const {
        bool holds = !m_failed;
        for (const auto& [name, points] : m_series) {
            if (points.size() < 3) continue;
            const double exponent = Slope(points);
            const bool fits = exponent <= kGreatest;
            holds &= fits;
            std::printf("%-44s grows with exponent %.2f%s\n", name.c_str(), exponent,
                        fits ? "" : ": more than linear");
        }
        return holds;
    }

private:
    using Points = std::map<double, double>;  // the best time by size

    // Of the least-squares line through the logarithms.
    static double Slope(const Points& points) {
        double x = 0, y = 0, xx = 0, xy = 0;
        for (const auto& [size, time] : points) {
            const double logSize = std::log(size), logTime = std::log(time);
            x += logSize;
            y += logTime;
            xx += logSize * logSize;
            xy += logSize * logTime;
        }
        const auto n = static_cast<double>(points.size());
        return (n * xy - x * y) / (n * xx - x * x);
    }

    std::map<std::string, Points> m_series;
    bool m_failed = false;
};

}  // namespace

int main(int argc, char** argv) {
    zr::UseLargeHeap();
    // The caller's arguments come later and take precedence.
    std::string defaults[] = {"--benchmark_repetitions=3", "--benchmark_min_time=0.1"};
    std::vector<char*> arguments{argv[0], defaults[0].data(), defaults[1].data()};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
    GrowthReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.PrintGrowth() ? 0 : 1;
}
