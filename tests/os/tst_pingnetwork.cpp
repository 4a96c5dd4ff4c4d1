// Pings in a network of their own, against a station that answers as it should not, through both
// kinds of socket.

#include "pingresponder.h"

#include <VLBase/os/pingthread.h>
#include <VLBase/os/velaos.h>
#include <VLBase/platform/echo.h>

#include <QElapsedTimer>
#include <QtTest>

#include <cerrno>
#include <linux/capability.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

IVelaOS& os()
{
    return VelaOS::Get();
}

constexpr int limitMs = 200;

/// Whether the pings that follow use datagram sockets, or else raw ones.
bool useDatagrams(bool datagrams)
{
    return shell(datagrams ? "echo 0 0 > /proc/sys/net/ipv4/ping_group_range"
                           : "echo 1 0 > /proc/sys/net/ipv4/ping_group_range");
}

QByteArray told(const Icmp_Echo_Result& result)
{
    return QByteArray::number(result.replies) + ' ' + result.message.toUtf8();
}

/// What is told of a host that cannot be reached. A kernel leaves out an error message now and
/// then, by its own counters: once in some hundred requests here.
QByteArray errorFrom(const char* host)
{
    Icmp_Echo_Result result;
    for (int tries = 0; tries == 0 || (result.message == u"IP Timeout." && tries < 3); ++tries)
        result = os().Ping(4, 10'000, host);
    return told(result);
}

void dropPrivilegesOfThread()
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct none[2] = {};
    syscall(SYS_capset, &header, none);
}

} // namespace

class TestPingNetwork : public QObject
{
    Q_OBJECT

public:
    QByteArray missing;

private slots:
    void initTestCase()
    {
        if (!missing.isEmpty())
            QSKIP(missing.constData());
        if (!useDatagrams(true))
            QSKIP("the kernel's settings cannot be written here");
    }

    void stationsAnswers()
    {
        for (const bool datagrams : {true, false}) {
            QVERIFY(useDatagrams(datagrams));
            for (const bool isV6 : {false, true}) {
                const auto& all = scenarios(isV6);
                for (std::size_t size = 0; size < all.size(); ++size) {
                    QElapsedTimer time;
                    time.start();
                    const Icmp_Echo_Result result =
                        os().Ping(static_cast<int>(size), limitMs, isV6 ? "fd77::2" : "10.77.0.2");
                    const qint64 elapsedMs = time.elapsed();
                    const Scenario& expected = all[size];
                    const QByteArray what = QByteArray::number(datagrams) + ' ' +
                                            QByteArray::number(isV6) + ' ' +
                                            QByteArray::number(size) + ": " + told(result);
                    QVERIFY2(told(result) ==
                                 QByteArray::number(expected.replies) + ' ' + expected.message,
                             what);
                    if (result.message == u"IP Timeout.")
                        QVERIFY2(elapsedMs >= limitMs && elapsedMs < limitMs + 300, what);
                    QCOMPARE(int{result.timeToLive}, result.replies == 1 && !isV6 ? 64 : 0);
                    QVERIFY2(result.roundTripTime <= elapsedMs, what);
                    if (size == 1) // noise, and the reply 60 ms later
                        QVERIFY2(result.roundTripTime >= 60, what);
                    if (size == 3) // still shooting
                        QTest::qWait(500);
                    QCOMPARE(os().GetLastError() == 0, result.replies == 1);
                    os().SetLastError(0);
                }
            }
        }
    }

    // The reply comes after 60 ms, and is read when the noise before it has been slept over.
    void timeOfArrival()
    {
        using namespace std::chrono_literals;
        for (const bool datagrams : {true, false}) {
            QVERIFY(useDatagrams(datagrams));
            vlbase::platform::EchoRequest request;
            request.address = "10.77.0.2";
            request.size = 1;
            request.limit = 10s;
            request.isAbandoned = [] { return QTest::qSleep(400), false; };
            const auto answer = vlbase::platform::sendEcho(request);
            QCOMPARE(answer.replies, 1U);
            QVERIFY(answer.roundTrip >= 60ms && answer.roundTrip < 300ms);
        }
    }

    void routes()
    {
        const std::pair<const char*, const char*> expected[] = {
            // Of the station, which routes.
            {"10.78.1.1", "0 Destination host unreachable."},
            {"10.78.2.1", "0 Destination host unreachable."},
            {"10.78.3.1", "0 Destination network unreachable."},
            {"10.78.4.1", "0 TTL expired."}, // sent back, with a time-to-live of 1
            {"fd78:3::1", "0 Destination network unreachable."},
            {"fd78:4::1", "0 TTL expired."}, // sent back and forth
            // Of this machine.
            {"10.79.1.1", "0 Destination host unreachable."},
            {"10.79.2.1", "0 Destination host unreachable."},
            {"10.79.3.1", "0 Bad destination."},
            {"10.80.0.1", "0 Destination network unreachable."},
            {"fd80::1", "0 Destination network unreachable."},
            {"10.77.0.9", "0 Destination host unreachable."}, // nobody has it
            {"fe80::1%nowhere", "0 Invalid IP Address"},
        };
        for (const bool datagrams : {true, false}) {
            QVERIFY(useDatagrams(datagrams));
            for (const auto& [host, answer] : expected)
                QVERIFY2(errorFrom(host) == answer, host);
        }
    }

    void linkLocalScopes()
    {
        const QString own = QStringLiteral("fe80::ff:fe00:a%near");
        QTRY_COMPARE_WITH_TIMEOUT(os().Ping(4, limitMs, own.toUtf8()).replies, 1U, 20'000);
    }

    void sizes()
    {
        for (const bool datagrams : {true, false}) {
            QVERIFY(useDatagrams(datagrams));
            for (const auto& [size, v4, v6] : {std::tuple(0, true, true),
                                               {65507, true, true},
                                               {65508, false, true},
                                               {65527, false, true},
                                               {65535, false, false},
                                               {-1, false, false},
                                               {65536 + 8, true, true}}) {
                const QByteArray tooBig = "0 IP packet too big.";
                QCOMPARE(told(os().Ping(size, 5000, "127.0.0.1")), v4 ? "1 " : tooBig);
                QCOMPARE(told(os().Ping(size, 5000, "::1")), v6 ? "1 " : tooBig);
            }
        }
    }

    void manyThreads()
    {
        for (const bool datagrams : {true, false}) {
            QVERIFY(useDatagrams(datagrams));
            const auto descriptors = QDir(QStringLiteral("/proc/self/fd")).entryList().size();
            std::atomic<quint32> replies{0};
            std::vector<std::thread> threads;
            for (int i = 0; i < 8; ++i) {
                threads.emplace_back([i, &replies] {
                    for (int n = 0; n < 40; ++n)
                        replies +=
                            os().Ping(i * 8000, 20'000, n % 2 == 0 ? "127.0.0.1" : "::1").replies;
                });
            }
            for (std::thread& thread : threads)
                thread.join();
            QCOMPARE(replies.load(), 320U);
            QCOMPARE(QDir(QStringLiteral("/proc/self/fd")).entryList().size(), descriptors);
        }
    }

    void bothKindsOfSocketClosed()
    {
        QVERIFY(useDatagrams(false));
        for (const char* host : {"127.0.0.1", "::1"}) {
            QByteArray answer;
            quint32 error = 0;
            std::thread([&] {
                dropPrivilegesOfThread();
                answer = told(os().Ping(4, limitMs, host));
                error = os().GetLastError();
            }).join();
            QCOMPARE(answer, "0 IP NO RESOURCES");
            QVERIFY(error == EPERM || error == EACCES);
        }
    }

    void adapters()
    {
        // Loopback and "near", with whatever the kernel adds by itself to every network.
        bool found = false;
        for (int i = 0; os().GetIpAddress(i)[0] != '\0'; ++i) {
            QVERIFY(qstrcmp(os().GetIpAddress(i), "127.0.0.1") != 0);
            if (qstrcmp(os().GetIdMac(i), "02-00-00-00-00-0A") == 0) {
                QCOMPARE(os().GetIpAddress(i), "10.77.0.1");
                found = true;
            }
        }
        QVERIFY(found);
    }

    void threadEndsInTheMiddleOfAPing()
    {
        IPingHandler handler;
        QElapsedTimer time;
        {
            PingThread thread(&handler);
            thread.SetAddress(QStringLiteral("10.77.0.2")); // silent for 4 bytes
            thread.SetFrequency(120);
            thread.start();
            QTest::qWait(200);
            time.start();
        }
        QVERIFY(time.elapsed() < 5000);
    }
};

int main(int argc, char* argv[])
{
    TestPingNetwork test;
    test.missing = makePrivateNetwork();
    QCoreApplication app(argc, argv);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_pingnetwork.moc"
