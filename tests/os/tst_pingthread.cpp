// What a handler gets from a thread that pings this machine, and when the thread ends.

#include <VLBase/os/pingthread.h>
#include <VLBase/os/velaos.h>

#include <QElapsedTimer>
#include <QtTest>

#include <memory>
#include <vector>

namespace {

class Handler : public IPingHandler
{
public:
    struct Result
    {
        quint32 replies;
        QString message;
        qint64 atMs;
        QThread* thread;
    };
    std::vector<Result> results;

    Handler() { m_time.start(); }

    bool event(QEvent* event) override
    {
        if (event->type() != 1001)
            return IPingHandler::event(event);
        const auto* result = static_cast<EventPingResult*>(event);
        const std::unique_ptr<EventPingResult> copy(result->clone());
        results.push_back(
            {copy->replies(), copy->message(), m_time.elapsed(), QThread::currentThread()});
        return true;
    }

private:
    QElapsedTimer m_time;
};

constexpr int limitMs = 30'000;

} // namespace

class TestPingThread : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (VelaOS::Get().Ping(4, limitMs, "127.0.0.1").replies == 0)
            QSKIP("this user may not send echo requests");
    }

    void pingsOncePerInterval()
    {
        Handler handler;
        PingThread thread(&handler);
        thread.SetAddress(QStringLiteral("localhost:5000"));
        thread.SetFrequency(1);
        thread.start();
        QTRY_VERIFY_WITH_TIMEOUT(handler.results.size() >= 3, limitMs);
        const auto results = handler.results;
        for (const Handler::Result& result : results) {
            QCOMPARE(result.replies, 1U);
            QVERIFY(result.message.isEmpty() && result.thread == QThread::currentThread());
        }
        QVERIFY(results[2].atMs >= 1990);

        // From the next cycle on.
        thread.SetAddress(QStringLiteral("no-such-host.invalid:80"));
        QTRY_COMPARE_WITH_TIMEOUT(handler.results.back().message,
                                  QStringLiteral("Invalid IP Address"), limitMs);
        QCOMPARE(handler.results.back().replies, 0U);

        // A bare IPv6 address is nothing before its first colon.
        thread.SetAddress(QStringLiteral("::1"));
        QTRY_VERIFY_WITH_TIMEOUT(
            [&handler] {
                handler.results.clear();
                QTest::qWait(1500);
                return handler.results.empty();
            }(),
            limitMs);
    }

    void noPingWithoutIntervalOrAddress()
    {
        Handler handler;
        PingThread idle(&handler);
        idle.SetAddress(QStringLiteral("127.0.0.1"));
        idle.start();
        PingThread nowhere(&handler);
        nowhere.SetFrequency(1);
        nowhere.start();
        PingThread unheard(nullptr);
        unheard.SetAddress(QStringLiteral("127.0.0.1"));
        unheard.SetFrequency(1);
        unheard.start();
        PingThread stopped(&handler);
        stopped.Stop();
        stopped.start();
        QVERIFY(stopped.wait(limitMs));
        QTest::qWait(1300);
        QVERIFY(handler.results.empty() && idle.isRunning() && nowhere.isRunning());

        QElapsedTimer time;
        time.start();
        idle.Stop();
        QVERIFY(idle.wait(limitMs));
        QVERIFY(time.elapsed() < 3000); // in the middle of a minute
    }

    // Settings change while it runs, and the handler ends first.
    void ownerAndThreadAtOnce()
    {
        auto handler = std::make_unique<Handler>();
        PingThread thread(handler.get());
        thread.start();
        QElapsedTimer time;
        time.start();
        for (unsigned i = 0; time.elapsed() < 2500; ++i) {
            thread.SetAddress(i % 2 == 0 ? QStringLiteral("127.0.0.1") : QString());
            thread.SetFrequency(1 + i % 2);
            if (i % 64 == 0)
                QTest::qWait(1);
        }
        thread.SetAddress(QStringLiteral("127.0.0.1"));
        handler.reset();
        QTest::qWait(1500);
        QVERIFY(thread.isRunning());
    }
};

QTEST_GUILESS_MAIN(TestPingThread)

#include "tst_pingthread.moc"
