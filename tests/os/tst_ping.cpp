// Pings of this machine and its network adapters, beside what Qt tells about them.

#include <VLBase/os/internal/echorequest.h>
#include <VLBase/os/velaos.h>

#include <QNetworkInterface>
#include <QtTest>

#include <thread>
#include <vector>

#ifdef Q_OS_LINUX
#include <cerrno>
#include <sys/resource.h>
#endif

namespace {

IVelaOS& os()
{
    return VelaOS::Get();
}

constexpr int limitMs = 20'000;

} // namespace

class TestPing : public QObject
{
    Q_OBJECT

private slots:
    void loopback()
    {
        const Icmp_Echo_Result result = os().Ping(4, limitMs, "127.0.0.1");
        if (result.message == u"IP NO RESOURCES")
            QSKIP("this user may not send echo requests");
        QCOMPARE(result.message, QString());
        QCOMPARE(result.replies, 1U);
        QVERIFY(result.timeToLive > 0 && result.roundTripTime < limitMs);
        for (const int size : {0, 1, 1000, 65536 + 5})
            QCOMPARE(os().Ping(size, limitMs, "localhost").replies, 1U);
        // A limit in the past, and one of no time: only what comes at once, and no longer wait.
        for (const int limit : {0, -1, -2'000'000'000})
            QVERIFY(os().Ping(4, limit, "127.0.0.1").replies <= 1);

        const Icmp_Echo_Result six = os().Ping(4, limitMs, "::1");
        QCOMPARE(six.message.isEmpty(), six.replies == 1);
        QCOMPARE(six.timeToLive, quint8{0});
    }

    void noAddress()
    {
        for (const char* host : {"", " ", "no-such-host.invalid", "1.2.3.4.5", "\xff"}) {
            os().SetLastError(0);
            const Icmp_Echo_Result result = os().Ping(4, limitMs, host);
            QCOMPARE(result.message, QStringLiteral("Invalid IP Address"));
            QVERIFY(result.replies == 0 && result.timeToLive == 0 && os().GetLastError() != 0);
        }
        QCOMPARE(os().Ping(4, limitMs, nullptr).message, QStringLiteral("Invalid IP Address"));
    }

    // As callers know them by number.
    void statusTexts()
    {
        const QStringList texts =
            QStringLiteral(
                "|IP buffer too small.|Destination network unreachable.|"
                "Destination host unreachable.|Destination protocol unreachable.|"
                "Destination port unreachable.|IP NO RESOURCES|IP BAD OPTION|Hardware error.|"
                "IP packet too big.|IP Timeout.|IP BAD REQ|IP BAD ROUTE|TTL expired.|TTL expired.|"
                "IP PARAM PROBLEM|IP SOURCE QUENCH|IP OPTION TOO BIG|Bad destination.|"
                "Invalid IP Address|")
                .split(u'|');
        for (std::uint32_t i = 0; i < 21; ++i)
            QCOMPARE(vlbase::echoStatusText(vlbase::platform::EchoStatus{11000 + i}), texts[i]);
        QCOMPARE(vlbase::echoStatusText(vlbase::platform::EchoStatus::Success), QString());
    }

    void adapters()
    {
#ifdef Q_OS_LINUX
        // Without a descriptor the system does not tell; asked again, it does.
        rlimit before{};
        QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
        const rlimit none{0, before.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
        const bool isTold = os().GetIpAddress(0)[0] != '\0';
        const quint32 error = os().GetLastError();
        QCOMPARE(setrlimit(RLIMIT_NOFILE, &before), 0);
        QVERIFY(!isTold && error == EMFILE);
#endif
        // The list is made by whoever comes first.
        std::vector<const char*> firsts(4);
        std::vector<std::thread> threads;
        for (const char*& first : firsts)
            threads.emplace_back([&first] { first = os().GetIdMac(0); });
        for (std::thread& thread : threads)
            thread.join();
        for (const char* first : firsts)
            QVERIFY(first == os().GetIdMac(0));

        QMultiHash<QString, QString> known; // addresses by hardware address
        QStringList names;
        for (const QNetworkInterface& adapter : QNetworkInterface::allInterfaces()) {
            if (adapter.flags() & QNetworkInterface::IsLoopBack)
                continue;
            names << adapter.hardwareAddress().replace(u':', u'-').toUpper();
            known.insert(names.last(), QStringLiteral("0.0.0.0"));
            for (const QNetworkAddressEntry& entry : adapter.addressEntries())
                known.insert(names.last(), entry.ip().toString());
        }
        QStringList found;
        for (int i = 0; os().GetIpAddress(i)[0] != '\0'; ++i) {
            found << QLatin1String(os().GetIdMac(i));
            QVERIFY2(known.contains(found.last(), QLatin1String(os().GetIpAddress(i))),
                     os().GetIdMac(i));
        }
#ifdef Q_OS_LINUX
        QCOMPARE(found, names);
#endif
        const auto past = static_cast<int>(found.size());
        for (const int index : {past, past + 1, -1, -2'000'000'000, 2'000'000'000})
            QVERIFY(os().GetIdMac(index)[0] == '\0' && os().GetIpAddress(index)[0] == '\0');
    }
};

QTEST_GUILESS_MAIN(TestPing)

#include "tst_ping.moc"
