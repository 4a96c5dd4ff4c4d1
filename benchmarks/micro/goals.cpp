#include "goals.h"

#include <cstdio>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bench {

namespace {

struct Entry
{
    std::string name;
    double greatest;
    std::function<double(const Medians&)> ratio;
};

std::vector<Entry>& entries()
{
    static std::vector<Entry> all;
    return all;
}

} // namespace

Goal::Goal(std::string name, double greatest, std::function<double(const Medians&)> ratio)
{
    entries().push_back({std::move(name), greatest, std::move(ratio)});
}

void GoalReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.error_occurred)
            std::printf("%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
        if (run.run_type != Run::RT_Iteration || run.error_occurred)
            continue;
        const std::string& arguments = run.run_name.args;
        const auto items = run.counters.find("items_per_second");
        m_nanoseconds[run.run_name.function_name + (arguments.empty() ? "" : '/' + arguments)].add(
            items != run.counters.end()
                ? 1e9 / items->second.value
                : run.real_accumulated_time * 1e9 / static_cast<double>(run.iterations));
    }
}

void GoalReporter::Finalize()
{
    printTimes();
    printGoals();
}

void GoalReporter::printTimes() const
{
    std::printf("\nMedians (least to greatest)\n\n| benchmark | ns |\n|---|--:|\n");
    for (const auto& [name, nanoseconds] : m_nanoseconds)
        std::printf("| %-20s | %-28s |\n", name.c_str(), nanoseconds.text(0).c_str());
}

void GoalReporter::printGoals() const
{
    Medians medians;
    for (const auto& [name, nanoseconds] : m_nanoseconds)
        medians[name] = nanoseconds.median();
    std::printf("\n| ratio of medians | measured | goal |\n|---|--:|---|\n");
    for (const Entry& goal : entries()) {
        double ratio = 0;
        try {
            ratio = goal.ratio(medians);
        } catch (const std::out_of_range&) {
            continue; // a filter left one of its benchmarks out
        }
        std::printf("| %s | %.2f | <= %.2g: %s |\n", goal.name.c_str(), ratio, goal.greatest,
                    ratio <= goal.greatest ? "met" : "MISSED");
    }
}

} // namespace bench
