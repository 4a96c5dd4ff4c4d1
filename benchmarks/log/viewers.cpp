#include "contest.h"
#include "race.h"
#include "sharedlog.h"

#include <cstdio>

namespace bench {

namespace {

using namespace std::chrono_literals;

// A viewer shows a line within a tenth of a second if it looks five times as often.
constexpr auto viewerInterval = 20ms;
constexpr double leastRate = 0.85;
constexpr int halves[] = {64 << 10, 1 << 20, 4 << 20};

enum class Viewer { Absent, Draining, Stopped };

const char* nameOf(Viewer viewer)
{
    switch (viewer) {
    case Viewer::Absent:
        return "absent";
    case Viewer::Draining:
        return "draining";
    case Viewer::Stopped:
        return "stopped";
    }
    return "";
}

struct Watched
{
    Viewer viewer;
    Series linesPerSecond = {};
    Series cpuNsPerLine = {};
    int spoilt = 0;
};

RaceSetup setupFor(Viewer viewer, const std::string& name)
{
    RaceSetup setup;
    switch (viewer) {
    case Viewer::Absent:
        break;
    case Viewer::Draining:
        setup.bystander = drainingViewer(name, viewerInterval);
        break;
    case Viewer::Stopped:
        setup.bystander = stoppedViewer(name);
        setup.bystanderStops = true;
        break;
    }
    return setup;
}

void runOnce(Watched& watched, const Options& options, int writers, int halfBytes)
{
    if (stopAsked())
        return;
    const std::string name = uniqueName();
    RaceSetup setup = setupFor(watched.viewer, name);
    setup.writers = writers;
    setup.lines = options.lines;
    const auto log = makeSharedLog(name, SharedLogLine::Ready, FullBuffer::Wait, halfBytes);
    const auto result = runRace(*log, setup);
    if (!result || !result->complete()) {
        ++watched.spoilt;
        return;
    }
    const auto lines = static_cast<double>(result->timedLines);
    watched.linesPerSecond.add(lines / result->writerSeconds);
    watched.cpuNsPerLine.add(result->writerCpuSeconds * 1e9 / lines);
}

void printRow(const Watched& watched, const Watched& absent, int writers, int halfBytes)
{
    const Series kept = ratio(watched.linesPerSecond, absent.linesPerSecond);
    std::printf("| %d | %d KiB | %-8s | %-19s | %-16s | %s |", writers, halfBytes / 1024,
                nameOf(watched.viewer), kept.text(2).c_str(), watched.cpuNsPerLine.text(0).c_str(),
                watched.viewer == Viewer::Absent ? "" : verdict(kept, leastRate).c_str());
    if (watched.spoilt > 0)
        std::printf(" SPOILT: %d", watched.spoilt);
    std::printf("\n");
}

} // namespace

void runViewers(const Options& options)
{
    std::printf("\nA viewer that drains every %d ms, or is stopped by a signal\n\n"
                "| writers | half | viewer | lines/s / without viewer | writers' ns/line | goal |\n"
                "|--:|--:|---|--:|--:|---|\n",
                static_cast<int>(viewerInterval.count()));
    for (const int writers : {1, 4}) {
        for (const int halfBytes : halves) {
            Watched field[] = {{Viewer::Absent}, {Viewer::Draining}, {Viewer::Stopped}};
            for (int repetition = 0; repetition < options.repetitions; ++repetition) {
                for (Watched& watched : field)
                    runOnce(watched, options, writers, halfBytes);
            }
            for (const Watched& watched : field)
                printRow(watched, field[0], writers, halfBytes);
            std::fflush(stdout);
        }
    }
}

void runLosses(const Options& options)
{
    std::printf("\nWriters that do not wait for the owner\n\n"
                "| writers | half | lines | lost | counted by the owner |\n"
                "|--:|--:|--:|--:|---|\n");
    for (const int writers : options.writers) {
        for (const int halfBytes : {64 << 10, 1 << 20}) {
            if (stopAsked())
                return;
            RaceSetup setup;
            setup.writers = writers;
            setup.lines = options.lines;
            const auto log =
                makeSharedLog(uniqueName(), SharedLogLine::Sent, FullBuffer::Lose, halfBytes);
            const auto result = runRace(*log, setup);
            if (!result) {
                std::printf("| %d | %d KiB | | | run FAILED |\n", writers, halfBytes / 1024);
                continue;
            }
            const std::uint64_t lost = result->lines - result->received;
            const bool exact = lost == result->reportedLost && result->bad == 0;
            std::printf("| %d | %d KiB | %llu | %llu | %s |\n", writers, halfBytes / 1024,
                        static_cast<unsigned long long>(result->lines),
                        static_cast<unsigned long long>(lost), exact ? "exactly" : "WRONGLY");
        }
    }
}

} // namespace bench
