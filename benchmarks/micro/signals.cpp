// What the signal helpers cost beside Qt's own connections, and what a long burst keeps.

#include "goals.h"

#include <VLBase/qthelpers/signaldelayer.h>
#include <VLBase/qthelpers/signalhandler.h>

#include <QObject>
#include <QString>

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <stdexcept>

namespace {

using QObjectHelpers::SignalDelayer;
using QObjectHelpers::SignalHandler;

class Sender : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void changed(int value);
    void told(const QString& text);
};

void signalToLambda(benchmark::State& state)
{
    Sender sender;
    int sum = 0;
    QObject::connect(&sender, &Sender::changed, [&sum](int value) { sum += value; });
    for (auto _ : state)
        Q_EMIT sender.changed(1);
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(signalToLambda);

void signalToHandler(benchmark::State& state)
{
    Sender sender;
    int sum = 0;
    SignalHandler::connectHandler<void(int)>(&sender, SIGNAL(changed(int)),
                                             [&sum](int value) { sum += value; });
    for (auto _ : state)
        Q_EMIT sender.changed(1);
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(signalToHandler);

/// Bytes that the heap holds, blocks of its caches included.
double heldBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

double heldAfterOne = 0.0;
double heldAfterMillion = 0.0;

void burstThroughDelayer(benchmark::State& state)
{
    constexpr int burst = 1'000'000;
    for (auto _ : state) {
        Sender sender;
        Sender receiver;
        SignalDelayer::connectDelayed<void(const QString&)>(
            &sender, SIGNAL(told(QString)), &receiver, SIGNAL(told(QString)), 60'000);
        const auto tell = [&sender](int number) { Q_EMIT sender.told(QString::number(number)); };
        tell(burst);
        heldAfterOne = heldBytes();
        for (int i = 1; i < burst; ++i)
            tell(burst + i);
        heldAfterMillion = heldBytes();
    }
    state.SetItemsProcessed(state.iterations() * burst);
}
BENCHMARK(burstThroughDelayer)->Unit(benchmark::kMillisecond);

const bench::Goal goals[] = {
    bench::Goal("signal through SignalHandler / to a lambda", 1.5,
                [](const bench::Medians& ns) {
                    return ns.at("signalToHandler") / ns.at("signalToLambda");
                }),
    bench::Goal("bytes held after a million delayed signals / after one", 1.0,
                [](const bench::Medians& ns) {
                    if (ns.count("burstThroughDelayer") == 0)
                        throw std::out_of_range("not run");
                    return heldAfterMillion / heldAfterOne;
                }),
};

} // namespace

#include "signals.moc"
