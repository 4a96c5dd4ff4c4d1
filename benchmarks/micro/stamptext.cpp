// Time stamps as text, beside QDateTime and fmt. All texts of a group are the same but for the
// fraction, which QDateTime has to the millisecond only.

#include "goals.h"

#include <VLBase/basetypes/datetime.h>
#include <VLBase/basetypes/timestamp2qstring.h>

#include <QDateTime>
#include <QString>

#include <benchmark/benchmark.h>
#include <chrono>
#include <fmt/chrono.h>
#include <iterator>

namespace {

constexpr quint64 firstStamp = 1'700'000'000'000'000;

/// The stamps of a log that grows by so many lines a second.
class Stream
{
public:
    explicit Stream(benchmark::State& state)
        : m_step(1'000'003 / static_cast<quint64>(state.range(0)))
    {
    }
    quint64 next() { return m_stamp += m_step; }

private:
    quint64 m_stamp = firstStamp;
    quint64 m_step;
};

void stampText(benchmark::State& state)
{
    Stream stream(state);
    TimeStamp2QString text;
    for (auto _ : state)
        benchmark::DoNotOptimize(text.toString(stream.next()).constData());
}
BENCHMARK(stampText)->Arg(10'000)->Arg(1);

void stampTextQt(benchmark::State& state)
{
    Stream stream(state);
    const QString format = QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz");
    for (auto _ : state) {
        const QString text =
            QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(stream.next() / 1000))
                .toString(format);
        benchmark::DoNotOptimize(text.constData());
    }
}
BENCHMARK(stampTextQt)->Arg(10'000)->Arg(1);

void stampTextFmt(benchmark::State& state)
{
    Stream stream(state);
    fmt::memory_buffer text;
    for (auto _ : state) {
        const quint64 stamp = stream.next();
        text.clear();
        fmt::format_to(std::back_inserter(text), "{:%Y-%m-%d %H:%M:%S}.{:03}.{:03}",
                       fmt::localtime(static_cast<std::time_t>(stamp / 1'000'000)),
                       stamp / 1000 % 1000, stamp % 1000);
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(stampTextFmt)->Arg(10'000)->Arg(1);

void dateTimeMicroseconds(benchmark::State& state)
{
    const Vela::DateTime instant(firstStamp + 123'456);
    for (auto _ : state)
        benchmark::DoNotOptimize(instant.toMSString().constData());
}
BENCHMARK(dateTimeMicroseconds);

void dateTimeDefault(benchmark::State& state)
{
    const Vela::DateTime instant(firstStamp + 123'456);
    for (auto _ : state)
        benchmark::DoNotOptimize(instant.toString().constData());
}
BENCHMARK(dateTimeDefault);

/// What stands in quotes is the text that the microseconds would have.
void qtDateTime(benchmark::State& state, const QString& format)
{
    const QDateTime instant = QDateTime::fromMSecsSinceEpoch(firstStamp / 1000 + 123, Qt::UTC);
    for (auto _ : state)
        benchmark::DoNotOptimize(instant.toString(format).constData());
}
BENCHMARK_CAPTURE(qtDateTime, microseconds, QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz'456'"));
BENCHMARK_CAPTURE(qtDateTime, default, QStringLiteral("yyyy-MM-dd hh:mm:ss"));

const bench::Goal besideQt("stamp text : QDateTime with milliseconds", 1.0 / 25,
                           [](const bench::Medians& times) {
                               return times.at("stampText/10000") / times.at("stampTextQt/10000");
                           });
const bench::Goal besideFmt("stamp text : fmt", 1.0, [](const bench::Medians& times) {
    return times.at("stampText/10000") / times.at("stampTextFmt/10000");
});
const bench::Goal microseconds("toMSString : QDateTime", 1.0 / 5, [](const bench::Medians& times) {
    return times.at("dateTimeMicroseconds") / times.at("qtDateTime/microseconds");
});
const bench::Goal defaultFormat("toString : QDateTime", 1.0 / 5, [](const bench::Medians& times) {
    return times.at("dateTimeDefault") / times.at("qtDateTime/default");
});

} // namespace
