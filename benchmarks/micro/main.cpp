// What happens within one process: texts, appends, reports.

#include "goals.h"

#include <VLBase/logging/loginstance.h>

#include <QCoreApplication>
#include <QString>
#include <QtGlobal>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <vector>

int main(int argc, char** argv)
{
    // With a zone in the environment the C library does not look at a file for each local time,
    // which would flatter us beside the plain way of composing a line.
    qputenv("TZ", "UTC");
    const QCoreApplication application(argc, argv);
    if (!setLogInstance(QStringLiteral("vlbench-%1").arg(QCoreApplication::applicationPid()))) {
        std::fputs("the log's name was refused\n", stderr);
        return 1;
    }

    // Interleaved repetitions, which the machine's load hits alike; the command line overrules.
    char repetitions[] = "--benchmark_repetitions=9";
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    char shortRuns[] = "--benchmark_min_time=0.1";
    std::vector<char*> arguments{argv[0], repetitions, interleaved, shortRuns};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;

    bench::GoalReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
