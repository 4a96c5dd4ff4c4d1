// A change told to its observers, beside a plain loop over them and a signal.

#include <VLBase/observableobserver/observable.h>

#include <QObject>

#include <benchmark/benchmark.h>
#include <memory>
#include <vector>

namespace {

class Subject : public Observable
{
public:
    using Observable::NotifyObservers;
};

class Counter : public IObserver
{
public:
    void Update(Observable*, TChangeCode code) override { m_sum += code; }

private:
    int m_sum = 0;
};

class Signaller : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void changed(int code);
};

constexpr auto code = static_cast<TChangeCode>(1);

void notifyObservers(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<Counter> observers(count);
    Subject subject;
    for (Counter& observer : observers)
        subject.AddObserver(&observer);
    for (auto _ : state)
        subject.NotifyObservers(code, nullptr);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(notifyObservers)->Arg(1)->Arg(10)->Arg(1000);

void callObservers(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<Counter> observers(count);
    std::vector<IObserver*> pointers;
    for (Counter& observer : observers)
        pointers.push_back(&observer);
    Subject subject;
    for (auto _ : state) {
        for (IObserver* observer : pointers)
            observer->Update(&subject, code);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(callObservers)->Arg(1)->Arg(10)->Arg(1000);

void signalObservers(benchmark::State& state)
{
    Signaller signaller;
    int sum = 0;
    for (auto i = state.range(0); i > 0; --i)
        QObject::connect(&signaller, &Signaller::changed, [&sum](int value) { sum += value; });
    for (auto _ : state)
        Q_EMIT signaller.changed(1);
    benchmark::DoNotOptimize(sum);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(signalObservers)->Arg(1)->Arg(10)->Arg(1000);

} // namespace

#include "observers.moc"
