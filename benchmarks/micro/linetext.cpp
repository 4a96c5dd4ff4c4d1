// What the text of a line costs, beside the plain way of composing the same text.

#include "goals.h"
#include "privatelog.h"

#include <QDateTime>
#include <QString>

#include <benchmark/benchmark.h>
#include <charconv>
#include <string>

namespace {

using bench::PrivateLog;
using bench::Writer;

constexpr int halfBytes = 1 << 20;
// Half a buffer of lines, so that neither half ever runs over between two drains.
constexpr int linesPerDrain = 3500;

const QString event =
    QStringLiteral("Error\tinput 3 saturated\tsignal above the limit of the converter\t0 00000000");
const QString station = QStringLiteral("station-07");
const QString module = QStringLiteral("receiver");

std::string plainLine(long index)
{
    const QDateTime now = QDateTime::currentDateTime();
    const QString line = QStringLiteral("%1\t%2\tUTC: %3\t%4\t%5\t%6")
                             .arg(index)
                             .arg(now.toUTC().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")))
                             .arg(double(now.offsetFromUtc()) * 1e6, 0, 'f')
                             .arg(station, module, event);
    return line.toStdString();
}

/// Adds lines by \p add and drains them from time to time; both belong to what is measured.
template <class Add> void fillLog(benchmark::State& state, const Add& add)
{
    PrivateLog log(halfBytes);
    Writer writer;
    if (!log.isOpen() || !writer.IsOpen()) {
        state.SkipWithError("no log");
        return;
    }
    int undrained = 0;
    for (auto _ : state) {
        add(writer);
        if (++undrained == linesPerDrain) {
            log.drain();
            undrained = 0;
        }
    }
}

void readyLine(benchmark::State& state)
{
    std::string line = plainLine(100000);
    fillLog(state, [&line](Writer& writer) {
        const Lock lock(&writer);
        std::to_chars(line.data(), line.data() + 6, writer.GetAndIncIndex());
        writer.Add(line.c_str());
    });
}
BENCHMARK(readyLine);

void sentLine(benchmark::State& state)
{
    fillLog(state, [](Writer& writer) { writer.Send(event); });
}
BENCHMARK(sentLine);

void plainText(benchmark::State& state)
{
    long index = 100000;
    for (auto _ : state)
        benchmark::DoNotOptimize(plainLine(++index));
}
BENCHMARK(plainText);

const bench::Goal textGoal("text of a line / the plain way", 0.1, [](const bench::Medians& ns) {
    return (ns.at("sentLine") - ns.at("readyLine")) / ns.at("plainText");
});

} // namespace
