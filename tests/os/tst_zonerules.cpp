#include <VLBase/os/velaos.h>
#include <VLBase/platform/posix/zonerules.h>

#include <QDateTime>
#include <QFile>
#include <QTest>
#include <QTimeZone>

#include <atomic>
#include <thread>
#include <vector>

using vlbase::platform::localUtcOffsetAt;

namespace {

QDateTime utc(int year, int month, int day)
{
    return QDateTime(QDate(year, month, day), QTime(12, 0), Qt::UTC);
}

int offsetAt(const QDateTime& instant, bool withDaylight)
{
    return static_cast<int>(localUtcOffsetAt(instant.toSecsSinceEpoch(), withDaylight).count());
}

} // namespace

class TestZoneRules : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("TZ"); }

    // Qt reads the same database with code of its own. Among the zones are those that moved
    // (Apia across the date line, Istanbul and Moscow without a change of the clocks, Caracas).
    void agreesWithQt_data()
    {
        QTest::addColumn<QByteArray>("zone");
        for (const char* zone : {"UTC",
                                 "Europe/Berlin",
                                 "Europe/London",
                                 "America/New_York",
                                 "America/St_Johns",
                                 "America/Sao_Paulo",
                                 "America/Caracas",
                                 "America/Nuuk",
                                 "Asia/Kolkata",
                                 "Asia/Kathmandu",
                                 "Asia/Tehran",
                                 "Asia/Pyongyang",
                                 "Australia/Adelaide",
                                 "Australia/Lord_Howe",
                                 "Pacific/Chatham",
                                 "Pacific/Apia",
                                 "Pacific/Kiritimati",
                                 "Europe/Istanbul",
                                 "Europe/Moscow",
                                 "Antarctica/Troll"})
            QTest::newRow(zone) << QByteArray(zone);
    }

    void agreesWithQt()
    {
        QFETCH(QByteArray, zone);
        const QTimeZone expected(zone);
        if (!expected.isValid())
            QSKIP("not in this machine's zone database");
        qputenv("TZ", zone);
        for (QDateTime at = utc(2005, 1, 1); at < utc(2036, 1, 1); at = at.addDays(5)) {
            QVERIFY2(offsetAt(at, true) == expected.offsetFromUtc(at),
                     qPrintable(at.toString(Qt::ISODate)));
            QVERIFY2(offsetAt(at, false) == expected.standardTimeOffset(at),
                     qPrintable(at.toString(Qt::ISODate)));
        }
    }

    // Offsets as the laws and Windows' own descriptions of the zones have them.
    void knownSeasons_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDateTime>("at");
        QTest::addColumn<int>("now");
        QTest::addColumn<int>("standard");

        const QDateTime summer = utc(2024, 7, 1);
        const QDateTime winter = utc(2024, 1, 15);
        QTest::newRow("Berlin, summer") << QByteArray("Europe/Berlin") << summer << 7200 << 3600;
        QTest::newRow("Berlin, winter") << QByteArray("Europe/Berlin") << winter << 3600 << 3600;
        QTest::newRow("Dublin, summer") << QByteArray("Europe/Dublin") << summer << 3600 << 0;
        QTest::newRow("Dublin, winter") << QByteArray("Europe/Dublin") << winter << 0 << 0;
        QTest::newRow("Morocco, Ramadan")
            << QByteArray("Africa/Casablanca") << utc(2024, 3, 25) << 0 << 0;
        QTest::newRow("Morocco, else") << QByteArray("Africa/Casablanca") << summer << 3600 << 0;
        QTest::newRow("Namibia, after its winter time was abolished")
            << QByteArray("Africa/Windhoek") << utc(2018, 2, 1) << 7200 << 7200;
        QTest::newRow("leap seconds")
            << QByteArray("right/Europe/Berlin") << summer << 7200 << 3600;
        QTest::newRow("rule in the variable")
            << QByteArray("ABC-9:30DEF,M3.5.0,M10.5.0/3") << summer << 37800 << 34200;
        QTest::newRow("empty variable") << QByteArray("") << summer << 0 << 0;
    }

    void knownSeasons()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDateTime, at);
        if (zone.contains('/') && !zone.contains(',') &&
            !QFile::exists(QLatin1String("/usr/share/zoneinfo/") + QLatin1String(zone)))
            QSKIP("not in this machine's zone database");
        qputenv("TZ", zone);
        QTEST(offsetAt(at, true), "now");
        QTEST(offsetAt(at, false), "standard");
    }

    // Lines of a log are stamped from any thread; the zone may change between them.
    void everyThreadSeesTheZone()
    {
        for (const auto& [zone, hours] : {std::pair("XXX-3", 3), std::pair("YYY+11", -11)}) {
            qputenv("TZ", zone);
            std::atomic<int> wrong{0};
            std::vector<std::thread> threads;
            for (int i = 0; i < 4; ++i) {
                threads.emplace_back([&wrong, expected = hours * qint64{3600000000}, i] {
                    for (int n = 0; n < 200; ++n)
                        wrong += VelaOS::Get().GetTimezoneOffset(i % 2 == 0) != expected;
                });
            }
            for (std::thread& thread : threads)
                thread.join();
            QCOMPARE(wrong.load(), 0);
        }
    }
};

QTEST_GUILESS_MAIN(TestZoneRules)
#include "tst_zonerules.moc"
