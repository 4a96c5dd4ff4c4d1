#include <VLBase/basetypes/datetime.h>
#include <VLBase/basetypes/timestamp2qstring.h>

#include <QTimeZone>
#include <QtTest>

#include <limits>

using Vela::DateTime;

namespace {

constexpr quint64 second = 1'000'000;
constexpr qint64 hour = 3600 * qint64{second};
constexpr quint64 lastStamp = std::numeric_limits<quint64>::max();
constexpr quint64 noStamp = 4'294'967'295 * second;
constexpr qint64 local = DateTime::localTimeOffset;

/// Against Qt's own reading of the database of zones.
void verifyLocalTexts(const QTimeZone& zone, quint64 stamp)
{
    const QString text = QDateTime::fromMSecsSinceEpoch(qint64(stamp / 1000), zone)
                             .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    const QString micros = QString::number(1000 + stamp % 1000).mid(1);
    QCOMPARE(DateTime(stamp).toMSString(local), text + micros);
    QCOMPARE(TimeStamp2QString().toString(stamp),
             stamp < second ? QStringLiteral("000.000") : text + u'.' + micros);
}

QDateTime fromIso(const char* text)
{
    return QDateTime::fromString(QLatin1String(text), Qt::ISODate);
}

} // namespace

class tst_DateTime : public QObject
{
    Q_OBJECT

private slots:
    void knownInstants()
    {
        const std::pair<quint64, const char*> cases[] = {
            {0, "1970-01-01 00:00:00.000000"},
            {951'782'400 * second, "2000-02-29 00:00:00.000000"},
            {1'700'000'000'123'456, "2023-11-14 22:13:20.123456"},
            {2'147'483'648 * second - 1, "2038-01-19 03:14:07.999999"},
            {4'294'967'296 * second, "2106-02-07 06:28:16.000000"},
            {253'402'300'800 * second - 1, "9999-12-31 23:59:59.999999"},
            {253'402'300'800 * second, "10000-01-01 00:00:00.000000"},
            {lastStamp, "586524-01-19 08:01:49.551615"},
        };
        for (const auto& [stamp, text] : cases) {
            const QString expected = QLatin1String(text);
            const DateTime instant(stamp);
            QCOMPARE(instant.toMSString(), expected);
            QCOMPARE(instant.toString(), expected.chopped(7));
            QCOMPARE(DateTime::UTCtoUTCString(stamp), expected.chopped(7));
            QCOMPARE(instant.getTimeStamp(), stamp);

            const QDateTime qt = DateTime::VLTimeStamp2QDateTime(stamp);
            QCOMPARE(qt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")), expected.chopped(3));
            QCOMPARE(DateTime::QDateTime2TimeStamp(qt), stamp / 1000 * 1000);
            QCOMPARE(DateTime(qt.toLocalTime()).getTimeStamp(), stamp / 1000 * 1000);
        }
        // Days of every length of month and year, at odd times of the day.
        for (qint64 seconds = -200'000'000'000; seconds < 400'000'000'000;
             seconds += 86'400LL * 997 + 8191) {
            const QDateTime qt = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
            QCOMPARE(DateTime(qt).toString(), qt.toString(DateTime::defaultFormat()));
        }
    }

    void placeholders()
    {
        const std::tuple<const char*, int, const char*> cases[] = {
            {"z", 987'654, "987"},
            {"zz", 987'654, "98"},
            {"µ", 987'654, "654"},
            {"z zz zzz", 7'005, "7 00 007"},
            {"µ µµµ µµ", 7'005, "5 005 55"},
            {"zzzz", 42'000, "04242"},
            {"µµµyyyyµs", 1'009, "0092023920"},
            {"hh 'o''clock' 'zz'", 120'000, "22 o'clock 12"},
            {"", 1, ""},
        };
        for (const auto& [format, microseconds, expected] : cases) {
            DateTime instant(1'700'000'000 * second + static_cast<quint64>(microseconds));
            QCOMPARE(instant.toString(QString::fromUtf8(format)), QLatin1String(expected));
            instant.setFormatString(QString::fromUtf8(format));
            QCOMPARE(instant.toString(), QLatin1String(expected));
        }
    }

    void displayOffsets()
    {
        const std::tuple<quint64, qint64, const char*> cases[] = {
            {86'399'999'999, hour, "1970-01-02 00:59:59.999999"},
            {0, hour * 23 / 4, "1970-01-01 05:45:00.000000"},
            {0, -1, "1969-12-31 23:59:59.999999"},
            {999'999 + second, 1'000'001, "1970-01-01 00:00:03.000000"},
            {lastStamp, hour, "586524-01-19 09:01:49.551615"},
        };
        for (const auto& [stamp, offset, expected] : cases) {
            DateTime instant(stamp);
            QCOMPARE(instant.toMSString(offset), QLatin1String(expected));
            instant.setOffsetFromUTC(offset);
            QCOMPARE(instant.toMSString(), QLatin1String(expected));
            QVERIFY(instant.getTimeStamp() == stamp &&
                    instant.second() == DateTime(stamp).second());
        }
    }

    void parsing()
    {
        const QString day = QStringLiteral("2024-01-02");
        // What follows the day, what is shown behind it in the object's own offset, and that.
        const std::tuple<const char*, const char*, qint64> cases[] = {
            {"T03:04:05.25", " 03:04:05.250000", local},
            {"", " 00:00:00.000000", local},
            {"T03:04:05Z", " 03:04:05.000000", 0},
            {"T09:04:05+05:45", " 03:19:05.000000", 0},
            {"T03:04:05.25Z", " 03:04:05.000000", local}, // the zone is lost too
            {"T03:04:05.9999999", " 03:04:05.999999", local},
            {"T03:04:05.000251", " 03:04:05.000250", local},
            {"T03:04:05.5.5", " 03:04:05.000000", local},
            {"T03:04:05.15e1", " 03:04:06.500000", local},
            {"T03:04:05.1e999", " 03:04:05.000000", local},
        };
        DateTime instant(12'345'678);
        for (const auto& [text, shown, offset] : cases) {
            instant.setOffsetFromUTC(0);
            const quint64 stamp = instant.fromString(day + QLatin1String(text));
            QCOMPARE(instant.toMSString(), day + QLatin1String(shown));
            QVERIFY(instant.getOffsetFromUTC() == offset && stamp == instant.getTimeStamp());
        }
        for (const char* text : {"", "yesterday", "2023-02-29", ".5", "2024-01-02T03:04:61"}) {
            QCOMPARE(instant.fromString(QLatin1String(text)) / second, noStamp / second);
            QVERIFY(!instant.isValid() && instant.toMSString().isEmpty());
        }
        for (quint64 micros = 0; micros < second; micros += 71) {
            const QString text =
                QStringLiteral("%1T03:04:05.%2").arg(day).arg(micros, 6, 10, QLatin1Char('0'));
            const quint64 lost = micros - instant.fromString(text) % second;
            QVERIFY2(lost == 0 || lost == 1, qPrintable(text)); // the nearest double may lie below
        }
    }

    void localTimeOfTheMachine()
    {
        for (const int month : {1, 7}) {
            const QDateTime time(QDate(2021, month, 1), QTime(12, 30, 59, 999));
            const DateTime instant(time.date(), time.time());
            QCOMPARE(instant, DateTime(time));
            QCOMPARE(instant.getTimeStamp(), quint64(time.toMSecsSinceEpoch()) * 1000);
            const QString format = QStringLiteral("yyyyMMddhhmmsszzz");
            QCOMPARE(instant.toString(format), time.toString(format));
            QVERIFY(instant.date() == time.date() && instant.time() == QTime(12, 30, 59));
            QCOMPARE(DateTime::UTCtoLocalString(instant.getTimeStamp()), instant.toString());
            QCOMPARE(DateTime(time.date(), QTime()), DateTime(time.date(), QTime(0, 0)));
            const DateTime day(time.date());
            QCOMPARE(day.toString(),
                     time.date().toString(Qt::ISODate) + QStringLiteral(" 00:00:00"));
            QCOMPARE(day.getTimeStamp(),
                     quint64(time.date().startOfDay().toMSecsSinceEpoch()) * 1000);
        }
    }

    void cleanup() { qunsetenv("TZ"); }

    // In each zone a time that the clocks skip, and one that they show twice, as they are read.
    void zones()
    {
        if (QSysInfo::kernelType() == QLatin1String("winnt"))
            QSKIP("The machine's zone cannot be chosen for a process.");
        const std::pair<const char*, QByteArrayList> known[] = {
            {"Europe/Berlin",
             {"2024-03-31T02:30:00", "2024-03-31T01:30:00Z", //
              "2024-10-27T02:30:00", "2024-10-27T00:30:00Z"}},
            {"Australia/Lord_Howe",
             {"2024-10-06T02:15:00", "2024-10-05T15:45:00Z", //
              "2024-04-07T01:45:00", "2024-04-06T14:45:00Z"}},
            {"Africa/Monrovia", {"1972-01-07T00:30:00", "1972-01-07T01:14:30Z"}},
            {"Pacific/Apia", {"2011-12-30T12:00:00", "2011-12-30T22:00:00Z"}},
        };
        for (const auto& [name, times] : known) {
            const QTimeZone zone(name);
            QVERIFY(zone.isValid());
            qputenv("TZ", name);
            for (qsizetype i = 0; i < times.size(); i += 2) {
                const QDateTime time = fromIso(times[i]);
                const auto expected = quint64(fromIso(times[i + 1]).toMSecsSinceEpoch()) * 1000;
                // The C library may answer as it did before, from either side of the change.
                for (const int month : {1, 7}) {
                    (void)QDateTime(QDate(2024, month, 1), QTime(2, 30)).toSecsSinceEpoch();
                    const QDateTime asQtReadsIt(time.date(), time.time());
                    DateTime moved(time.date().addDays(-2));
                    moved.setTime(time.time());
                    moved = moved.addDays(2);
                    QCOMPARE(moved.getTimeStamp(), expected);
                    QCOMPARE(DateTime(asQtReadsIt).getTimeStamp(), expected);
                    QCOMPARE(DateTime::QDateTime2TimeStamp(asQtReadsIt), expected);
                    QCOMPARE(DateTime(time.date(), time.time()).getTimeStamp(), expected);
                    QCOMPARE(DateTime().fromString(QLatin1String(times[i])), expected);
                }
                const auto around = quint64(fromIso(times[i] + 'Z').toSecsSinceEpoch());
                for (quint64 quarter = 0; quarter < 120; ++quarter)
                    verifyLocalTexts(zone, (around + quarter * 900 - 54'001) * second + 5);
            }
            for (const quint64 stamp :
                 {quint64{0}, 4'294'967'296 * second, 64'000'000'000 * second})
                verifyLocalTexts(zone, stamp);
        }
    }

    void fields()
    {
        DateTime instant(1'700'000'000'123'456);
        instant.setOffsetFromUTC(2 * hour);
        QVERIFY(instant.date() == QDate(2023, 11, 15) && instant.time() == QTime(0, 13, 20));
        instant.setDate(QDate(2024, 2, 29)); // both in UTC
        instant.setTime(QTime(23, 59, 58, 765));
        QCOMPARE(instant.toMSString(0), QStringLiteral("2024-02-29 23:59:58.765000"));
        instant.setTime_t(4'294'967'295);
        QCOMPARE(instant.getTimeStamp(), 4'294'967'295 * second + 765'000);

        instant.setTime_ts(5 * second + 7);
        const DateTime later = instant.addDays(1).addSecs(-6);
        QCOMPARE(later.getTimeStamp(), 86'399 * second + 7);
        QCOMPARE(later.getOffsetFromUTC(), 2 * hour);
        QVERIFY(instant.secsTo(later) == 86'394 && instant.daysTo(later) == 0);
        QCOMPARE(DateTime::microsecToSec(-1'999'999), -1);
    }

    void orderAndWhatHasNoStamp()
    {
        const DateTime inOrder[] = {DateTime(),       DateTime(fromIso("1950-01-01T00:00:00Z")),
                                    DateTime(0),      DateTime(1),
                                    DateTime(second), DateTime(second + 1)};
        for (const DateTime& none : {DateTime(), DateTime(QDate(), QTime()), DateTime(QDate())}) {
            QVERIFY(!none.isValid() && none.getTimeStamp() == noStamp);
            QCOMPARE(none.toMSString() + none.toMSString(local), QString());
        }
        const QDateTime before = fromIso("1969-12-31T23:59:59Z").addMSecs(250);
        QCOMPARE(DateTime::QDateTime2TimeStamp(before), noStamp + 250'000);
        QCOMPARE(DateTime(before).toMSString(), QStringLiteral("1969-12-31 23:59:59.250000"));
        for (const DateTime& a : inOrder) {
            for (const DateTime& b : inOrder) {
                QVERIFY((a == b) == (&a == &b) && (a != b) == (&a != &b));
                QVERIFY((a < b) == (&a < &b) && (a <= b) == (&a <= &b));
                QVERIFY((a > b) == (&a > &b) && (a >= b) == (&a >= &b));
            }
        }
    }

    void durations()
    {
        const std::pair<double, const char*> cases[] = {
            {0.0, " 0.0 s"},
            {7.5, " 7.5 s"},
            {59.96, "60.0 s"},
            {60.0, "1:00.0 min"},
            {123.45, "2:03.4 min"},
            {3723.45, "1:02:03.4 hours"},
            {-0.5, "-0.5 s"},
            {1e18, "277777777777777:46:40.0 hours"},
            {std::numeric_limits<double>::infinity(), " inf s"},
        };
        for (const auto& [seconds, expected] : cases)
            QCOMPARE(DateTime::GetReadeableShortTimeString(seconds), QLatin1String(expected));
    }

    void logTexts()
    {
        TimeStamp2QString log;
        QCOMPARE(log.toString(999'999), QStringLiteral("999.999"));
        const quint64 stamp = 1'714'979'289 * second;
        const QString date = DateTime::UTCtoLocalString(stamp);
        const QString kept = log.toString(stamp + 123'456);
        const TimeStamp2QString copy = log;
        QCOMPARE(log.toString(stamp + 123'000), date + QStringLiteral(".123.000"));
        QCOMPARE(kept, date + QStringLiteral(".123.456")); // the caller's text is the caller's
        QCOMPARE(TimeStamp2QString(copy).toString(stamp + 7), date + QStringLiteral(".000.007"));
        // Back in second 0 the date part is there, and times beyond 32 bits of seconds are.
        for (const quint64 other : {quint64{5}, 2'147'483'648 * second, lastStamp})
            QCOMPARE(log.toString(other).section(u'.', 0, 0), DateTime::UTCtoLocalString(other));
    }
};

QTEST_GUILESS_MAIN(tst_DateTime)
#include "tst_datetime.moc"
