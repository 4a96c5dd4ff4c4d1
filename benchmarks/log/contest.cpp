#include "contest.h"

#include "peers.h"
#include "race.h"
#include "sharedlog.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <thread>
#include <unistd.h>

namespace bench {

namespace {

constexpr int halfBytes = 1 << 20;

struct Contender
{
    std::string name;
    std::function<std::unique_ptr<Transport>()> make;
    /// Goals for our ready lines in units of this one's, by number of writers.
    std::map<int, double> goals = {};
    double busyGoal = 0; ///< the same for any number of writers on a busy machine; 0: none
    Series linesPerSecond = {};
    int spoilt = 0; ///< runs that lost, tore or repeated a line, or did not end
};

std::vector<Contender> contenders(const Options& options)
{
    const auto path = [folder = options.folder] { return folder + '/' + uniqueName() + ".log"; };
    const auto ours = [](SharedLogLine line) {
        return [line] { return makeSharedLog(uniqueName(), line, FullBuffer::Wait, halfBytes); };
    };
    const std::map<int, double> queueGoals{{1, 1.0}, {2, 1.3}, {4, 1.3}, {8, 1.3}};
    std::vector<Contender> all{
        {"shared log, ready line", ours(SharedLogLine::Ready)},
        {"shared log, SendError", ours(SharedLogLine::Sent)},
        {"Boost.Log queue", [] { return makeBoostLogQueue(uniqueName()); }, queueGoals, 1.0},
        {"Interprocess queue", [] { return makeInterprocessQueue(uniqueName()); }, queueGoals, 1.0},
        {"write, O_APPEND", [path] { return makeAppendedFile(path()); }, {{4, 2.5}}},
        {"spdlog, flush each", [path] { return makeSpdlogFile(path()); }, {{4, 3.0}}},
    };
    // The first two are what the others are measured by.
    const auto isUnwanted = [&options](const Contender& contender) {
        return contender.name.find(options.only) == std::string::npos;
    };
    all.erase(std::remove_if(all.begin() + 2, all.end(), isUnwanted), all.end());
    return all;
}

void runOnce(Contender& contender, const RaceSetup& setup)
{
    if (stopAsked())
        return;
    const auto transport = contender.make();
    const auto result = runRace(*transport, setup);
    if (result && result->complete())
        contender.linesPerSecond.add(result->linesPerSecond());
    else
        ++contender.spoilt;
}

void printRow(const Contender& contender, const Contender& ready, const Contender& sent,
              int writers, bool isBusy)
{
    const Series gain = ratio(ready.linesPerSecond, contender.linesPerSecond);
    const auto idleGoal = contender.goals.find(writers);
    const double goal = isBusy                              ? contender.busyGoal
                        : idleGoal == contender.goals.end() ? 0
                                                            : idleGoal->second;
    const std::string met = goal > 0 ? verdict(gain, goal) : "";
    Series thousands;
    for (const double value : contender.linesPerSecond.values())
        thousands.add(value / 1000);
    std::printf("| %d | %-22s | %-23s | %-19s | %-19s | %s |", writers, contender.name.c_str(),
                thousands.text(0).c_str(), gain.text(2).c_str(),
                ratio(sent.linesPerSecond, contender.linesPerSecond).text(2).c_str(), met.c_str());
    if (contender.spoilt > 0)
        std::printf(" SPOILT: %d", contender.spoilt);
    std::printf("\n");
}

void runTable(const Options& options, bool isBusy)
{
    std::printf(
        ": %llu lines of %zu bytes, %d repetitions; medians (least to greatest)\n\n"
        "| writers | transport | 1000 lines/s | ready line / this | SendError / this | goal "
        "|\n|--:|---|--:|--:|--:|---|\n",
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
            printRow(contender, field[0], field[1], writers, isBusy);
        std::fflush(stdout);
    }
}

void busyLoop(const Parent&)
{
    for (volatile unsigned turns = 0;; turns = turns + 1) {
    }
}

} // namespace

std::string uniqueName()
{
    static int counter = 0;
    return "vlbench-" + std::to_string(::getpid()) + '-' + std::to_string(++counter);
}

std::string verdict(const Series& gain, double goal)
{
    if (gain.isEmpty())
        return "NOT MEASURED";
    char text[64];
    std::snprintf(text, sizeof text, ">= %.2g: %s", goal, gain.median() >= goal ? "met" : "MISSED");
    return text;
}

void runContest(const Options& options)
{
    std::printf("\nNothing else running");
    runTable(options, false);
}

void runBusyContest(const Options& options)
{
    std::list<Process> loops;
    for (unsigned core = 0; core < std::thread::hardware_concurrency(); ++core)
        loops.emplace_back(busyLoop);
    std::printf("\nBeside %zu busy loops, one for each core", loops.size());
    runTable(options, true);
}

void runCrowd(const Options& options)
{
    struct Crowd
    {
        int writers;
        Series nsPerLine = {};
        int spoilt = 0;
    };
    constexpr double mostCost = 1.2;
    std::vector<Crowd> crowds{{4}, {16}, {64}, {128}};
    for (int repetition = 0; repetition < options.repetitions; ++repetition) {
        for (Crowd& crowd : crowds) {
            Contender log = contenders(options).front();
            RaceSetup setup;
            setup.writers = crowd.writers;
            setup.lines = options.lines;
            runOnce(log, setup);
            crowd.spoilt += log.spoilt;
            for (const double linesPerSecond : log.linesPerSecond.values())
                crowd.nsPerLine.add(1e9 / linesPerSecond);
        }
    }
    std::printf("\nThe shared log with many writers, ready lines\n\n"
                "| writers | ns/line | cost of a line / with four writers | goal |\n"
                "|--:|--:|--:|---|\n");
    for (const Crowd& crowd : crowds) {
        const Series cost = ratio(crowd.nsPerLine, crowds.front().nsPerLine);
        const bool isMet = !cost.isEmpty() && cost.median() <= mostCost;
        std::printf("| %d | %s | %s | <= %.2g: %s |", crowd.writers,
                    crowd.nsPerLine.text(0).c_str(), cost.text(2).c_str(), mostCost,
                    isMet ? "met" : "MISSED");
        if (crowd.spoilt > 0)
            std::printf(" SPOILT: %d", crowd.spoilt);
        std::printf("\n");
    }
    std::fflush(stdout);
}

} // namespace bench
