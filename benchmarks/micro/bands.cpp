// Channels and frequencies, and bands as XML.

#include "goals.h"

#include <VLBase/basetypes/gsm.h>

#include <QDomDocument>
#include <QDomElement>

#include <array>
#include <benchmark/benchmark.h>
#include <cstddef>

namespace {

void channelToFrequency(benchmark::State& state)
{
    GSM plan;
    unsigned long channel = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(plan.Channel2Frequency(channel, GSM::GSM900Down));
        channel = (channel + 1) & 127;
    }
}
BENCHMARK(channelToFrequency);

/// In a band of one piece, and of two; on channels and beside them.
void findFrequency(benchmark::State& state)
{
    Band band = GSM().GetBand(static_cast<unsigned>(state.range(0)));
    std::array<double, 128> hertz{};
    for (std::size_t i = 0; i < hertz.size(); ++i)
        hertz[i] = band.GetStartFreq() + static_cast<double>(i) * 100e3;
    std::size_t i = 0;
    for (auto _ : state) {
        unsigned long channel = 0;
        benchmark::DoNotOptimize(band.FindFrequency(hertz[i], channel));
        benchmark::DoNotOptimize(channel);
        i = (i + 1) % hertz.size();
    }
}
BENCHMARK(findFrequency)->Arg(GSM::GSM1800Down)->Arg(GSM::GSM900Down);

void snapToRaster(benchmark::State& state)
{
    Band band(QStringLiteral("air"), 25e3, 0.0, true);
    double hertz = 118e6;
    for (auto _ : state)
        benchmark::DoNotOptimize(hertz = band.GetFrequency(0, hertz + 30e3));
}
BENCHMARK(snapToRaster);

Band ownBand()
{
    return {QStringLiteral("mine"), 200e3, 935.2e6, 1, 124, 1, false};
}

void saveBand(benchmark::State& state)
{
    const Band band = ownBand();
    for (auto _ : state) {
        QDomDocument document;
        QDomElement root = document.createElement(QStringLiteral("Band"));
        band.Save(document, root);
        benchmark::DoNotOptimize(root.isNull());
    }
}
BENCHMARK(saveBand);

void readBand(benchmark::State& state)
{
    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("Band"));
    ownBand().Save(document, root);
    Band band;
    for (auto _ : state) {
        band.Read(document, root);
        benchmark::DoNotOptimize(band.GetStopChannel());
    }
}
BENCHMARK(readBand);

constexpr double goalNanoseconds = 20.0;

const bench::Goal channelGoal("Channel2Frequency : 20 ns", 1.0, [](const bench::Medians& times) {
    return times.at("channelToFrequency") / goalNanoseconds;
});
const bench::Goal findGoal("FindFrequency, two sub-bands : 20 ns", 1.0,
                           [](const bench::Medians& times) {
                               return times.at("findFrequency/1") / goalNanoseconds;
                           });

} // namespace
