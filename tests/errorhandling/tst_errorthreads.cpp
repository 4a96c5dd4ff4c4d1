#include "../support/privatetemp.h"

#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/ilogtracer.h>
#include <VLBase/errorhandling/messagelist.h>
#include <VLBase/errorhandling/quality.h>
#include <VLBase/errorhandling/vlexception.h>

#include <QSemaphore>
#include <QtTest>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool Sanitized = true;
#else
constexpr bool Sanitized = false;
#endif

namespace {

constexpr int ThreadCount = 16;
constexpr int ReportsPerThread = Sanitized ? 2000 : 100000;
// What costs more per report finds its faults with fewer of them.
constexpr int FewReportsPerThread = Sanitized ? 2000 : 10000;
// A thread goes on when its last batch has been recorded, so that memory stays bounded.
constexpr int Batch = 500;

// Outlives the tracers that count into it.
struct Counts
{
    std::array<int, ThreadCount> next{};
    std::array<QSemaphore, ThreadCount> batches; // recorded ones
    std::atomic<int> received = 0;
    std::atomic<int> outOfOrder = 0;
    std::atomic<int> overlapping = 0;
    std::atomic<int> afterItsEnd = 0;
};

// Reports carry their number as the reason and the number of their thread as the line.
class CountingTracer : public ILogTracer
{
public:
    explicit CountingTracer(Counts& counts)
        : m_counts(counts)
    {
    }
    ~CountingTracer() override { m_alive = false; }

    void SendDataTrace(QString text) override
    {
        if (!m_alive)
            ++m_counts.afterItsEnd;
        if (m_busy.exchange(true))
            ++m_counts.overlapping;
        const QList<QStringView> fields = QStringView(text).split(u'@');
        if (fields.size() == 7) { // the configuration trace is no record
            const auto thread = static_cast<std::size_t>(fields[3].toInt());
            if (fields[1].toInt() != m_counts.next[thread]++)
                ++m_counts.outOfOrder;
            ++m_counts.received;
            if (m_counts.next[thread] % Batch == 0)
                m_counts.batches[thread].release();
        }
        m_busy = false;
    }
    void ReportException(QString) override {}
    bool IsOpen() override { return true; }

private:
    Counts& m_counts;
    std::atomic<bool> m_busy = false;
    std::atomic<bool> m_alive = true;
};

template <class Body> std::vector<std::thread> startThreads(int count, Body body)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back(body, number);
    return threads;
}

void joinAll(std::vector<std::thread>& threads)
{
    for (std::thread& thread : threads)
        thread.join();
}

void reportAtOnce(int thread, int number)
{
    ErrorHandler::Interface()->ProtocolException(VLException(QString::number(number), u"f"_qs,
                                                             QString(), QString(),
                                                             static_cast<unsigned int>(thread), 0));
}

} // namespace

class ErrorThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ErrorHandler::Instance().TurnLogFileOff(); }

    void init()
    {
        m_counts = std::make_unique<Counts>();
        ErrorHandler::SetLogTracer(std::make_unique<CountingTracer>(*m_counts));
    }

    void cleanup()
    {
        ErrorHandler::SetLogTracer(nullptr);
        QCOMPARE(m_counts->outOfOrder.load(), 0);
        QCOMPARE(m_counts->overlapping.load(), 0);
        QCOMPARE(m_counts->afterItsEnd.load(), 0);
    }

    // While others read them.
    void losesNoException()
    {
        auto threads = startThreads(ThreadCount, [](int thread) {
            for (int number = 0; number < ReportsPerThread; ++number)
                reportAtOnce(thread, number);
        });
        int malformed = 0;
        for (int read = 0; read < FewReportsPerThread / 4;) {
            bool atEnd = false;
            ErrorHandler::Interface()->InitGetNextMessage(atEnd, 1);
            for (;;) {
                const QString text = ErrorHandler::Interface()->GetNextMessage(atEnd);
                if (atEnd)
                    break;
                ++read;
                malformed += text.count(u'@') != 6 || !text.startsWith(u'!');
            }
        }
        joinAll(threads);
        QCOMPARE(malformed, 0);
        QCOMPARE(m_counts->received.load(), ThreadCount * ReportsPerThread);
        QCOMPARE(ErrorHandler::Instance().GetMessages()->GetList().size(), std::size_t(100));
    }

    void losesNoMessage()
    {
        auto threads = startThreads(ThreadCount, [this](int thread) {
            for (int number = 0; number < FewReportsPerThread; ++number) {
                if (number >= 2 * Batch && number % Batch == 0)
                    m_counts->batches[static_cast<std::size_t>(thread)].acquire();
                ErrorHandler::Interface()->ProtocolMessage(
                    QString::number(number), u"f"_qs, QString(), QString(),
                    static_cast<unsigned short>(thread), 255);
            }
        });
        QTRY_COMPARE_WITH_TIMEOUT(m_counts->received.load(), ThreadCount * FewReportsPerThread,
                                  120000);
        joinAll(threads);
    }

    void replacesTracersUnderLoad()
    {
        constexpr int reports = FewReportsPerThread / 4;
        std::atomic<int> running = 4;
        auto threads = startThreads(4, [&running](int thread) {
            for (int number = 0; number < reports; ++number)
                reportAtOnce(thread, number);
            --running;
        });
        int replaced = 0;
        for (; running > 0; ++replaced) {
            ErrorHandler::SetLogTracer(std::make_unique<CountingTracer>(*m_counts));
            ErrorHandler::Instance().TurnLogFileOn();
            ErrorHandler::Instance().TurnLogFileOff();
        }
        joinAll(threads);
        QVERIFY(replaced > 0);
        QCOMPARE(m_counts->received.load(), 4 * reports);
    }

private:
    PrivateTemp m_temp;
    std::unique_ptr<Counts> m_counts;
};

QTEST_GUILESS_MAIN(ErrorThreadsTest)
#include "tst_errorthreads.moc"
