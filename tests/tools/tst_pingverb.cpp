// `vlbase ping` as a program.

#include "tests/support/program.h"
#include "tools/vlbase/ping/roundtrips.h"

#include <VLBase/os/velaos.h>

#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

namespace {

constexpr int limitMs = 60'000;

class Ping : public QProcess
{
public:
    explicit Ping(const QString& arguments)
    {
        startVlbase(*this, QStringList(QStringLiteral("ping")) +
                               arguments.split(u' ', Qt::SkipEmptyParts));
    }

    int finish()
    {
        const bool isEnded = awaitEnd(*this, limitMs) && exitStatus() == NormalExit;
        return isEnded ? exitCode() : -1;
    }
    QString output() { return QString::fromUtf8(readAllStandardOutput()).remove(u'\r'); }
};

} // namespace

class TestPingVerb : public QObject
{
    Q_OBJECT

private slots:
    void figures()
    {
        using std::chrono::microseconds;
        vlbase::tool::ping::RoundTrips roundTrips;
        QCOMPARE(roundTrips.text(), QStringLiteral("0 sent, 0 received, 0% lost\n"));
        for (const int time : {2000, 4000, 4000, 4000, 5000, 5000, 7000, 9000})
            roundTrips.addReply(microseconds(time));
        roundTrips.addLoss();
        QCOMPARE(roundTrips.text(),
                 QStringLiteral("9 sent, 8 received, 11.1% lost\n"
                                "round trip min/avg/max/mdev 2.000/5.000/9.000/2.000 ms\n"));
    }

    void refusals()
    {
        for (const char* arguments : {"", "a b", "--count 0 h", "--count x h", "--size 65536 h",
                                      "--interval -1 h", "--timeout soon h"})
            QCOMPARE(Ping(QLatin1String(arguments)).finish(), 2);
        Ping unknown(QStringLiteral("--count 1 1.2.3.4.5"));
        QCOMPARE(unknown.finish(), 1);
        QVERIFY(unknown.readAllStandardError().contains("'1.2.3.4.5' has no address"));
    }

    void repliesAndTimes()
    {
        if (VelaOS::Get().Ping(4, limitMs, "127.0.0.1").replies == 0)
            QSKIP("this user may not send echo requests");
        Ping ping(QStringLiteral("--count 3 --interval 0.05 --size 4 --timeout 20 127.0.0.1"));
        QCOMPARE(ping.finish(), 0);
        const QRegularExpression form(
            QStringLiteral("^127\\.0\\.0\\.1 \\(127\\.0\\.0\\.1\\), 4 bytes of data\n"
                           "(reply [123] in [0-9]+\\.[0-9]{3} ms, time-to-live [0-9]+\n){3}"
                           "3 sent, 3 received, 0% lost\n"
                           "round trip min/avg/max/mdev ([0-9]+\\.[0-9]{3}[/ ]){4}ms\n$"));
        const QString output = ping.output();
        QVERIFY2(form.match(output).hasMatch(), qPrintable(output));

        // More than a packet or, on Windows, the room for its reply can hold.
        Ping tooBig(QStringLiteral("--count 2 --interval 0 --size 65535 127.0.0.1"));
        QCOMPARE(tooBig.finish(), 1);
        QVERIFY(tooBig.output().endsWith(QLatin1String("\n2 sent, 0 received, 100% lost\n")));
        QVERIFY(tooBig.readAllStandardError().contains("no reply came"));

#ifdef Q_OS_LINUX
        Ping endless(QStringLiteral("--interval 100 127.0.0.1"));
        while (!endless.peek(4096).contains("reply 1") && endless.waitForReadyRead(limitMs)) {
        }
        endless.terminate();
        QCOMPARE(endless.finish(), 0);
        QVERIFY(endless.output().contains(QLatin1String("\n1 sent, 1 received, 0% lost\nround")));
#endif
    }
};

QTEST_GUILESS_MAIN(TestPingVerb)

#include "tst_pingverb.moc"
