#include "contest.h"

#include "peers.h"
#include "race.h"
#include "sharedlog.h"

#include <cstdio>
#include <functional>
#include <map>
#include <memory>
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
    Series linesPerSecond = {};
    int spoilt = 0; ///< runs that lost, tore or repeated a line, or did not end
};

std::vector<Contender> contenders(const Options& options)
{
    const auto path = [folder = options.folder] { return folder + '/' + uniqueName() + ".log"; };
    const auto ours = [](SharedLogLine line) {
        return [line] { return makeSharedLog(uniqueName(), line, FullBuffer::Wait, halfBytes); };
    };
    return {
        {"shared log, ready line", ours(SharedLogLine::Ready)},
        {"shared log, SendError", ours(SharedLogLine::Sent)},
        {"Boost.Log queue", [] { return makeBoostLogQueue(uniqueName()); }, {{1, 1.0}, {4, 1.3}}},
        {"Interprocess queue", [] { return makeInterprocessQueue(uniqueName()); }},
        {"write, O_APPEND", [path] { return makeAppendedFile(path()); }, {{4, 2.5}}},
        {"spdlog, flush each", [path] { return makeSpdlogFile(path()); }, {{4, 3.0}}},
    };
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
              int writers)
{
    const Series gain = ratio(ready.linesPerSecond, contender.linesPerSecond);
    const auto goal = contender.goals.find(writers);
    const std::string met = goal == contender.goals.end() ? "" : verdict(gain, goal->second);
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
    std::printf(
        "\n%llu lines of %zu bytes, %d repetitions; medians (least to greatest)\n\n"
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
            printRow(contender, field[0], field[1], writers);
        std::fflush(stdout);
    }
}

} // namespace bench
