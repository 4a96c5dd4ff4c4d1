#pragma once

#include "../series.h"

#include <benchmark/benchmark.h>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench {

/// Median times in nanoseconds by name of benchmark ("appendToFull/64").
using Medians = std::map<std::string, double>;

/// A ratio of measured times that shall not be exceeded. Made as a constant beside the
/// benchmarks that it compares.
class Goal
{
public:
    /// \param ratio is called only when all benchmarks that it asks for were run
    Goal(std::string name, double greatest, std::function<double(const Medians&)> ratio);
};

/// Collects all repetitions and shows at the end their medians and what became of the goals.
/// Times are per item where a benchmark counts items.
class GoalReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    void printTimes() const;
    void printGoals() const;

    std::map<std::string, Series> m_nanoseconds;
};

} // namespace bench
