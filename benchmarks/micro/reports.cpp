// What a report costs until the error handler has recorded it.

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/ilogtracer.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QCoreApplication>
#include <QString>

#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

/// Counts what the handler has recorded. Open, so that no text file is written.
class CountingTracer : public ILogTracer
{
public:
    explicit CountingTracer(int& recorded)
        : m_recorded(recorded)
    {
    }

    void SendDataTrace(QString) override { ++m_recorded; }
    void ReportException(QString) override {}
    bool IsOpen() override { return true; }

private:
    int& m_recorded; // the handler's thread is the one that measures
};

constexpr int reportsPerRound = 8000;

void reportFrom(int threads, std::atomic<bool>& go, std::vector<std::thread>& reporters)
{
    for (int number = 0; number < threads; ++number) {
        reporters.emplace_back([threads, &go] {
            const QString text = QStringLiteral("signal above the limit of the converter");
            const QString file = QStringLiteral("input/converter");
            const QString className = QStringLiteral("Converter");
            const QString method = QStringLiteral("sample");
            while (!go)
                std::this_thread::yield();
            for (int report = 0; report < reportsPerRound / threads; ++report)
                ErrorHandler::Interface()->ProtocolMessage(text, file, className, method, 42, 1);
        });
    }
}

/// One round is timed from the threads' common start until the last report is recorded.
void protocolMessage(benchmark::State& state)
{
    int recorded = 0;
    ErrorHandler::Instance().TurnLogFileOff();
    ErrorHandler::SetLogTracer(std::make_unique<CountingTracer>(recorded));
    ErrorHandler::Interface()->ProtocolMessage({}, {}, {}, {}, 0, 1);
    QCoreApplication::processEvents(); // the first report also says how the handler is set up

    const auto threads = static_cast<int>(state.range(0));
    for (auto _ : state) {
        recorded = 0;
        std::atomic<bool> go{false};
        std::vector<std::thread> reporters;
        reportFrom(threads, go, reporters);
        const auto start = std::chrono::steady_clock::now();
        go = true;
        while (recorded < reportsPerRound)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(taken.count());
        for (std::thread& reporter : reporters)
            reporter.join();
    }
    state.SetItemsProcessed(state.iterations() * reportsPerRound);
    ErrorHandler::SetLogTracer(nullptr);
}
BENCHMARK(protocolMessage)->Arg(1)->Arg(2)->Arg(4)->UseManualTime()->Unit(benchmark::kMillisecond);

/// No tracer and no file: the report goes into the list of recent messages only.
void reportThatNoOneTakes(benchmark::State& state)
{
    ErrorHandler::Instance().TurnLogFileOff();
    const VLException failure(std::string("signal above the limit of the converter"),
                              "input/converter", "Converter", "sample", 42, 0);
    for (auto _ : state)
        ErrorHandler::Interface()->ProtocolException(failure);
}
BENCHMARK(reportThatNoOneTakes);

/// What remains when reports are blocked.
void blockedReport(benchmark::State& state)
{
    const ErrorHandler::ExceptionBlocker blocker;
    const VLException failure(std::string("signal above the limit of the converter"),
                              "input/converter", "Converter", "sample", 42, 0);
    for (auto _ : state)
        ErrorHandler::Interface()->ProtocolException(failure);
}
BENCHMARK(blockedReport);

} // namespace
