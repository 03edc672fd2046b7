// SPDX-License-Identifier: MIT
// The main function of the benchmarks. Beside the library's own table it prints, for every series of at least
// three sizes, the exponent of the curve that fits its times best: 1 is linear. It fails when one grows
// faster than kGreatest, or when a benchmark reports an error.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double kGreatest = 1.1;

class GrowthReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            m_failed |= run.error_occurred;
            if (run.run_type != Run::RT_Iteration || run.error_occurred || run.complexity_n <= 0) continue;
            const bool timesItself = run.run_name.time_type == "manual_time";
            m_series[run.run_name.function_name].emplace_back(
                std::log(static_cast<double>(run.complexity_n)),
                std::log(timesItself ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime()));
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // Whether every series grows as it may.
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
    using Points = std::vector<std::pair<double, double>>;

    // Of the least-squares line.
    static double Slope(const Points& points) {
        double x = 0, y = 0, xx = 0, xy = 0;
        for (const auto& [size, time] : points) {
            x += size;
            y += time;
            xx += size * size;
            xy += size * time;
        }
        const auto n = static_cast<double>(points.size());
        return (n * xy - x * y) / (n * xx - x * x);
    }

    std::map<std::string, Points> m_series;
    bool m_failed = false;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    GrowthReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.PrintGrowth() ? 0 : 1;
}
