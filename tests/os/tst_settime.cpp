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
const QHostAddress host(QHostAddress::LocalHost);

IVelaOS& os()
{
    return VelaOS::Get();
}

bool within30Seconds(const std::function<bool()>& isDone)
{
    const QDeadlineTimer deadline(30000);
    while (!isDone() && !deadline.hasExpired())
        QTest::qSleep(20);
    return !deadline.hasExpired();
}

/// Asks from a thread that Qt does not know, while the service answers the pieces one after the
/// other, then hangs up or keeps still.
/// \return whether the time was set, and the request.
std::pair<bool, QByteArray> ask(const QDateTime& time, bool utc, const QList<QByteArray>& answer,
                                bool hangsUp)
{
    QTcpServer server;
    if (!within30Seconds([&] { return server.listen(host, port); }))
        return {};
    auto result = std::async(std::launch::async, [&] {
        const QDate day = time.date();
        const QTime at = time.time();
        return os().SetSystemTime(day.year(), day.month(), day.day(), at.hour(), at.minute(),
                                  at.second(), at.msec(), utc);
    });
    if (!server.waitForNewConnection(30000))
        return {};
    const std::unique_ptr<QTcpSocket> caller(server.nextPendingConnection());
    while (caller->bytesAvailable() < 16 && caller->waitForReadyRead(30000)) {
    }
    const QByteArray request = caller->readAll();
    for (const QByteArray& piece : answer) {
        caller->write(piece);
        caller->waitForBytesWritten();
        QTest::qSleep(5);
    }
    if (hangsUp)
        caller->close();
    return {result.get(), request};
}

QByteArray requestFor(const QDateTime& time, int dayOfWeek)
{
    const QDate day = time.date();
    const QTime at = time.time();
    QByteArray bytes;
    for (const int field : {day.year(), day.month(), dayOfWeek, day.day(), at.hour(), at.minute(),
                            at.second(), at.msec()})
        bytes.append(static_cast<char>(field & 0xFF)).append(static_cast<char>(field >> 8));
    return bytes;
}

} // namespace

class TestSetTime : public QObject
{
    Q_OBJECT

private slots:
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
        const QDateTime time(QDate(2021, 12, 31), QTime(23, 59, 59, 999), Qt::UTC);
        QElapsedTimer timer;
        timer.start();
        for (const auto& [pieces, hangsUp, isSet] : cases)
            QCOMPARE(ask(time, true, pieces, hangsUp), std::pair(isSet, requestFor(time, 0)));
        QVERIFY(timer.elapsed() < 10000);
    }

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
        const QDateTime time(QDate(2024, 3, 1), QTime(1, 15, 30, 250), Qt::OffsetFromUTC, offset);
        const QDateTime inUtc = time.toUTC();
        QVERIFY(!ask(time, false, {}, true).first);
        QVERIFY(os().GetTimestamp() > ahead);
        QCOMPARE(ask(time, false, {QByteArray(4, '\0')}, false),
                 std::pair(true, requestFor(inUtc, inUtc.date().dayOfWeek() % 7)));
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
