// The system time is set by a service on port 60123, which here is the test's own: no clock is
// touched. Other runs of this test wait for the port.

#include <VLBase/os/velaos.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <array>
#include <functional>
#include <future>
#include <thread>

namespace {

constexpr quint16 port = 60123;
constexpr bool utc = true;
const QHostAddress host(QHostAddress::LocalHost);

IVelaOS& os()
{
    return VelaOS::Get();
}

bool within30Seconds(const std::function<bool()>& isDone)
{
    for (const QDeadlineTimer deadline(30000); !deadline.hasExpired(); QTest::qSleep(20)) {
        if (isDone())
            return true;
    }
    return false;
}

struct Outcome
{
    bool isSet = false;
    qint64 milliseconds = 0;
    QByteArray request;
};

/// Has the service answer the pieces one after the other, then hang up or keep still.
Outcome ask(const std::function<bool()>& question, const QList<QByteArray>& answer, bool hangsUp)
{
    std::promise<void> listening;
    std::promise<void> asked;
    Outcome outcome;
    std::thread service([&] {
        QTcpServer server;
        const bool isListening = within30Seconds([&] { return server.listen(host, port); });
        listening.set_value();
        if (!isListening || !server.waitForNewConnection(30000))
            return;
        QTcpSocket* caller = server.nextPendingConnection();
        while (caller->bytesAvailable() < 16 && caller->waitForReadyRead(30000)) {
        }
        outcome.request = caller->readAll();
        for (const QByteArray& piece : answer) {
            caller->write(piece);
            caller->waitForBytesWritten();
            QTest::qSleep(5);
        }
        if (!hangsUp)
            asked.get_future().wait();
    });
    listening.get_future().wait();
    QElapsedTimer timer;
    timer.start();
    outcome.isSet = question();
    outcome.milliseconds = timer.elapsed();
    asked.set_value();
    service.join();
    return outcome;
}

QByteArray requestFor(const QDateTime& time, int dayOfWeek)
{
    const std::array<int, 8> fields{time.date().year(),   time.date().month(), dayOfWeek,
                                    time.date().day(),    time.time().hour(),  time.time().minute(),
                                    time.time().second(), time.time().msec()};
    QByteArray bytes;
    for (const int field : fields)
        bytes.append(static_cast<char>(field & 0xFF)).append(static_cast<char>(field >> 8));
    return bytes;
}

} // namespace

class TestSetTime : public QObject
{
    Q_OBJECT

private slots:
    void noService()
    {
        QTcpSocket holder; // has the port, but does not listen
        QVERIFY(within30Seconds(
            [&] { return holder.bind(host, port, QAbstractSocket::ReuseAddressHint); }));
        const quint64 stamp = os().GetTimestamp();
        QVERIFY(!os().SetSystemTime(2024, 2, 29, 12, 0, 0, 0, utc));
        QVERIFY(os().GetTimestamp() > stamp);
    }

    void answers()
    {
        const struct
        {
            QList<QByteArray> pieces;
            bool hangsUp;
            bool isSet;
        } cases[] = {
            {{QByteArray(4, '\0')}, false, true},
            {{QByteArray(1, '\0'), QByteArray(3, '\0')}, false, true},
            {{QByteArray(9, '\0')}, true, true},
            {{QByteArray("\0\0\0\1", 4)}, false, false},
            {{QByteArray(3, '\0')}, false, false},
            {{QByteArray(3, '\0')}, true, false},
            {{}, true, false},
            {{}, false, false},
        };
        for (const auto& [pieces, hangsUp, isSet] : cases) {
            const Outcome outcome =
                ask([] { return os().SetSystemTime(2021, 12, 31, 23, 59, 59, 999, utc); }, pieces,
                    hangsUp);
            QCOMPARE(outcome.isSet, isSet);
            QCOMPARE(outcome.request,
                     QByteArray("\xE5\x07\x0C\0\0\0\x1F\0\x17\0\x3B\0\x3B\0\xE7\3", 16));
            QVERIFY2(outcome.milliseconds < 2000,
                     qPrintable(QString::number(outcome.milliseconds)));
        }
    }

    // From a thread that Qt does not know, too.
    void localTimeAndStamps()
    {
#ifdef Q_OS_WIN
        const int offset = QDateTime::currentDateTime().offsetFromUtc();
        constexpr int stampCount = 0; // Wine's clock is too slow to be outrun
#else
        qputenv("TZ", "XXX-3:30");
        const int offset = 12600;
        constexpr int stampCount = 3000000; // some seconds ahead of the clock
#endif
        for (int i = 0; i < stampCount; ++i)
            os().GetTimestamp();
        const quint64 ahead = os().GetTimestamp();
        bool isSet = false;
        const Outcome outcome = ask(
            [&] {
                std::thread([&] {
                    isSet = os().SetSystemTime(2024, 3, 1, 1, 15, 30, 250, !utc);
                }).join();
                return isSet;
            },
            {QByteArray(4, '\0')}, false);
        QVERIFY(outcome.isSet);
        const QDateTime wanted(QDate(2024, 3, 1), QTime(1, 15, 30, 250), Qt::OffsetFromUTC, offset);
        QCOMPARE(outcome.request,
                 requestFor(wanted.toUTC(), wanted.toUTC().date().dayOfWeek() % 7));
        QVERIFY(stampCount == 0 || os().GetTimestamp() < ahead);
    }

    void timesThatAreNone()
    {
        QTcpServer server;
        QVERIFY(within30Seconds([&] { return server.listen(host, port); }));
        const std::array<int, 7> cases[] = {
            {2024, 13, 1, 0, 0, 0, 0}, {2024, 0, 1, 0, 0, 0, 0},    {2023, 2, 30, 0, 0, 0, 0},
            {2024, 1, 0, 0, 0, 0, 0},  {2024, 1, 1, 24, 0, 0, 0},   {2024, 1, 1, 0, 60, 0, 0},
            {2024, 1, 1, 0, 0, 60, 0}, {2024, 1, 1, 0, 0, 0, 1000}, {1600, 12, 31, 0, 0, 0, 0},
            {67560, 1, 1, 0, 0, 0, 0}, {2024, 1, 1, 0, 0, 0, -1},
        };
        for (const auto& [year, month, day, hour, minute, second, millisecond] : cases) {
            for (const bool isUtc : {true, false}) {
                const bool isSet =
                    os().SetSystemTime(year, month, day, hour, minute, second, millisecond, isUtc);
                QVERIFY2(!isSet && !server.waitForNewConnection(0),
                         qPrintable(QString::number(year)));
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestSetTime)
#include "tst_settime.moc"
