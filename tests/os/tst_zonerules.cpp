#include <VLBase/os/velaos.h>
#include <VLBase/platform/posix/zonerules.h>

#include <QTimeZone>
#include <QtTest>

#include <atomic>
#include <thread>
#include <tuple>

namespace {

/// In force at noon of the day, and without daylight saving.
std::pair<int, int> offsetsOn(QDate day)
{
    const qint64 noon = QDateTime(day, QTime(12, 0), Qt::UTC).toSecsSinceEpoch();
    using vlbase::platform::localUtcOffsetAt;
    return {static_cast<int>(localUtcOffsetAt(noon, true).count()),
            static_cast<int>(localUtcOffsetAt(noon, false).count())};
}

} // namespace

class TestZoneRules : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { qunsetenv("TZ"); }

    // Qt reads the same database with code of its own. Among the zones are those that moved
    // (Apia across the date line, Istanbul and Moscow without a change of the clocks, Caracas).
    void agreesWithQt()
    {
        const QByteArray zones =
            "UTC Europe/Berlin Europe/London Europe/Istanbul Europe/Moscow America/New_York "
            "America/St_Johns America/Sao_Paulo America/Caracas America/Nuuk Asia/Kolkata "
            "Asia/Tehran Asia/Pyongyang Australia/Adelaide Australia/Lord_Howe Pacific/Chatham "
            "Pacific/Apia Antarctica/Troll";
        for (const QByteArray& name : zones.split(' ')) {
            const QTimeZone zone(name);
            qputenv("TZ", name);
            for (QDate day(2005, 1, 1); zone.isValid() && day.year() < 2036; day = day.addDays(5)) {
                const QDateTime noon(day, QTime(12, 0), Qt::UTC);
                const auto expected =
                    std::pair(zone.offsetFromUtc(noon), zone.standardTimeOffset(noon));
                QVERIFY2(offsetsOn(day) == expected, name + ' ' + day.toString().toLatin1());
            }
        }
    }

    // Offsets as the laws and Windows' own descriptions of the zones have them.
    void knownSeasons()
    {
        const QDate summer(2024, 7, 1), ramadan(2024, 3, 25);
        const std::tuple<const char*, QDate, int, int> cases[] = {
            {"Europe/Berlin", summer, 7200, 3600},
            {"Europe/Dublin", summer, 3600, 0},
            {"Africa/Casablanca", ramadan, 0, 0},
            {"Africa/Casablanca", summer, 3600, 0},
            {"Africa/Windhoek", QDate(2018, 2, 1), 7200, 7200}, // winter time just abolished
            {"right/Europe/Berlin", summer, 7200, 3600},        // with leap seconds
            {"ABC-9:30DEF,M3.5.0,M10.5.0/3", summer, 37800, 34200},
            // One after the other, they differ in nothing but the season that is not now.
            {"AAA-1BBB-2,M9.5.0,M3.5.0", summer, 3600, 3600},
            {"AAA-1BBB0,M9.5.0,M3.5.0", summer, 3600, 0},
            {"EST5EDT,0/0,J365/25", summer, -14400, -18000}, // daylight saving all year
            {"", summer, 0, 0},
        };
        const bool knowsLeapSeconds = QFile::exists(QStringLiteral("/usr/share/zoneinfo/right"));
        for (const auto& [zone, day, now, standard] : cases) {
            qputenv("TZ", zone);
            if (*zone != 'r' || knowsLeapSeconds)
                QVERIFY2(offsetsOn(day) == std::pair(now, standard), zone);
        }
    }

    // Lines of a log are stamped from any thread; the zone may change between them.
    void everyThreadSeesTheZone()
    {
        for (const auto& [zone, hours] : {std::pair("XXX-3", 3), std::pair("YYY+11", -11)}) {
            qputenv("TZ", zone);
            std::atomic<int> right{0};
            const auto ask = [&right, expected = hours * qint64{3600000000}] {
                for (int n = 0; n < 200; ++n)
                    right += VelaOS::Get().GetTimezoneOffset(n % 2 == 0) == expected;
            };
            std::thread other(ask);
            ask();
            other.join();
            QCOMPARE(right.load(), 400);
        }
    }
};

QTEST_GUILESS_MAIN(TestZoneRules)
#include "tst_zonerules.moc"
