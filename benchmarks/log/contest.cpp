#include "contest.h"

#include "peers.h"

#include <cstdio>
#include <unistd.h>

namespace bench {

namespace {

struct Contender
{
    std::string name;
    std::function<std::unique_ptr<Transport>()> make;
    /// Goals for ours / this one in lines per second, by number of writers.
    std::map<int, double> goals;
    Series linesPerSecond = {};
    std::uint64_t spoilt = 0; ///< runs that lost, tore or repeated a line, or did not end
};

std::vector<Contender> contenders(const Options& options)
{
    const auto path = [folder = options.folder] { return folder + '/' + uniqueName() + ".log"; };
    return {
        {"Boost.Log queue", [] { return makeBoostLogQueue(uniqueName()); }, {{1, 1.0}, {4, 1.3}}},
        {"Interprocess queue", [] { return makeInterprocessQueue(uniqueName()); }, {}},
        {"write, O_APPEND", [path] { return makeAppendedFile(path()); }, {{4, 2.5}}},
        {"spdlog, flush each", [path] { return makeSpdlogFile(path()); }, {{4, 3.0}}},
    };
}

void runOnce(Contender& contender, const RaceSetup& setup)
{
    const auto transport = contender.make();
    const auto result = runRace(*transport, setup);
    if (!result || !result->complete()) {
        ++contender.spoilt;
        return;
    }
    contender.linesPerSecond.add(result->linesPerSecond());
}

void printRow(const Contender& contender, const Contender& ours, int writers)
{
    const Series gain = ratio(ours.linesPerSecond, contender.linesPerSecond);
    const auto goal = contender.goals.find(writers);
    std::string verdict;
    if (goal != contender.goals.end() && !gain.isEmpty()) {
        char text[64];
        std::snprintf(text, sizeof text, ">= %.1f: %s", goal->second,
                      gain.median() >= goal->second ? "met" : "MISSED");
        verdict = text;
    }
    Series thousands;
    for (const double value : contender.linesPerSecond.values())
        thousands.add(value / 1000);
    std::printf("| %d | %-18s | %-22s | %-20s | %-12s |", writers, contender.name.c_str(),
                thousands.text(0).c_str(), gain.text(2).c_str(), verdict.c_str());
    if (contender.spoilt > 0)
        std::printf(" %llu of the runs spoilt", static_cast<unsigned long long>(contender.spoilt));
    std::printf("\n");
}

} // namespace

std::string uniqueName()
{
    static int counter = 0;
    return "vlbench-" + std::to_string(::getpid()) + '-' + std::to_string(++counter);
}

void runContest(const Options& options)
{
    std::printf("\n%llu lines of %zu bytes, %d repetitions; medians (least to greatest)\n\n"
                "| writers | transport | 1000 lines/s | ours / this | goal |\n"
                "|--:|---|--:|--:|---|\n",
                static_cast<unsigned long long>(options.lines), lineLength, options.repetitions);
    for (const int writers : options.writers) {
        RaceSetup setup;
        setup.writers = writers;
        setup.lines = options.lines;
        std::vector<Contender> field = contenders(options);
        for (int repetition = 0; repetition < options.repetitions; ++repetition) {
            for (Contender& contender : field)
                runOnce(contender, setup);
        }
        for (const Contender& contender : field)
            printRow(contender, field.front(), writers);
        std::fflush(stdout);
    }
}

} // namespace bench
