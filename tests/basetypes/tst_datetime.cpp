#include <VLBase/basetypes/datetime.h>
#include <VLBase/basetypes/timestamp2qstring.h>

#include <QProcess>
#include <QTimeZone>
#include <QtTest>

#include <cstdio>
#include <limits>

using Vela::DateTime;

namespace {

constexpr quint64 second = 1'000'000;
constexpr quint64 lastStamp = std::numeric_limits<quint64>::max();
constexpr quint64 noStamp = 4'294'967'295 * second;
constexpr qint64 local = DateTime::localTimeOffset;

/// What this program asks of itself in another time zone: each argument is a stamp, or a local time
/// to read. One line each.
int answerInThisZone(const QStringList& questions)
{
    for (const QString& question : questions) {
        bool isStamp = false;
        const quint64 stamp = question.toULongLong(&isStamp);
        QString answer;
        if (isStamp) {
            TimeStamp2QString log;
            answer = DateTime(stamp).toMSString(local) + u'|' + log.toString(stamp);
        } else {
            answer = QString::number(DateTime().fromString(question));
        }
        std::puts(qPrintable(answer));
    }
    return 0;
}

} // namespace

class tst_DateTime : public QObject
{
    Q_OBJECT

private slots:
    void knownInstants_data();
    void knownInstants();
    void placeholders_data();
    void placeholders();
    void asQtWritesIt();
    void displayOffsets_data();
    void displayOffsets();
    void parsing_data();
    void parsing();
    void everyMicrosecondComesBack();
    void localTimeOfTheMachine();
    void zones_data();
    void zones();
    void fields();
    void order();
    void noInstant();
    void durations_data();
    void durations();
    void logTexts();
};

void tst_DateTime::knownInstants_data()
{
    QTest::addColumn<quint64>("stamp");
    QTest::addColumn<QString>("expected");
    const auto row = [](quint64 stamp, const char* text) {
        QTest::newRow(text) << stamp << QString::fromLatin1(text);
    };
    row(0, "1970-01-01 00:00:00.000000");
    row(951'782'400 * second, "2000-02-29 00:00:00.000000");
    row(1'700'000'000'123'456, "2023-11-14 22:13:20.123456");
    row(2'147'483'648 * second - 1, "2038-01-19 03:14:07.999999");
    row(4'294'967'296 * second, "2106-02-07 06:28:16.000000");
    row(253'402'300'800 * second - 1, "9999-12-31 23:59:59.999999");
    row(253'402'300'800 * second, "10000-01-01 00:00:00.000000");
    row(lastStamp, "586524-01-19 08:01:49.551615");
}

void tst_DateTime::knownInstants()
{
    QFETCH(quint64, stamp);
    QFETCH(QString, expected);
    const DateTime instant(stamp);
    QCOMPARE(instant.toMSString(), expected);
    QCOMPARE(instant.toString(), expected.chopped(7));
    QCOMPARE(DateTime::UTCtoUTCString(stamp), expected.chopped(7));
    QCOMPARE(instant.getTimeStamp(), stamp);

    const QDateTime qt = DateTime::VLTimeStamp2QDateTime(stamp);
    QCOMPARE(qt.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")), expected.chopped(3));
    QCOMPARE(qt.timeSpec(), Qt::UTC);
    QCOMPARE(DateTime::QDateTime2TimeStamp(qt), stamp / 1000 * 1000);
    QCOMPARE(DateTime(qt.toLocalTime()).getTimeStamp(), stamp / 1000 * 1000);
}

void tst_DateTime::placeholders_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<int>("microseconds");
    QTest::addColumn<QString>("expected");
    const auto row = [](const QString& format, int microseconds, const char* expected) {
        QTest::addRow("%s of %d", qUtf8Printable(format), microseconds)
            << format << microseconds << QString::fromUtf8(expected);
    };
    row(QStringLiteral("z"), 987'654, "987");
    row(QStringLiteral("zz"), 987'654, "98");
    row(QStringLiteral("zzz"), 987'654, "987");
    row(QStringLiteral("\u00b5"), 987'654, "654");
    row(QStringLiteral("\u00b5\u00b5\u00b5"), 987'654, "654");
    row(QStringLiteral("z zz zzz"), 7'005, "7 00 007");
    row(QStringLiteral("\u00b5 \u00b5\u00b5\u00b5 \u00b5\u00b5"), 7'005, "5 005 55");
    row(QStringLiteral("zzzz"), 42'000, "04242");
    row(QStringLiteral("\u00b5\u00b5\u00b5yyyy\u00b5s"), 1'009,
        "00920239"
        "20");
    row(QStringLiteral("hh 'o''clock' 'zz'"), 120'000, "22 o'clock 12");
    row(QStringLiteral("d.M.yy H:m:s AP"), 0, "14.11.23 22:13:20 PM");
    row(QString(), 1, "");
}

void tst_DateTime::placeholders()
{
    QFETCH(QString, format);
    QFETCH(int, microseconds);
    DateTime instant(1'700'000'000 * second + static_cast<quint64>(microseconds));
    QTEST(instant.toString(format), "expected");
    QCOMPARE(instant.getFormatString(), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    instant.setFormatString(format);
    QTEST(instant.toString(), "expected");
}

void tst_DateTime::asQtWritesIt()
{
    // Days of every length of month and year, at odd times of the day.
    for (qint64 seconds = -200'000'000'000; seconds < 400'000'000'000;
         seconds += 86'400LL * 997 + 8191) {
        DateTime instant(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC));
        QCOMPARE(
            instant.toString(),
            QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC).toString(DateTime::defaultFormat()));
    }
}

void tst_DateTime::displayOffsets_data()
{
    QTest::addColumn<quint64>("stamp");
    QTest::addColumn<qint64>("offset");
    QTest::addColumn<QString>("expected");
    const qint64 hour = 3600 * qint64{second};
    QTest::newRow("ahead") << quint64{86'399'999'999} << hour
                           << QStringLiteral("1970-01-02 00:59:59.999999");
    QTest::newRow("quarters of an hour")
        << quint64{0} << 5 * hour + hour * 3 / 4 << QStringLiteral("1970-01-01 05:45:00.000000");
    QTest::newRow("before the epoch")
        << quint64{0} << -hour << QStringLiteral("1969-12-31 23:00:00.000000");
    QTest::newRow("a microsecond before")
        << quint64{0} << qint64{-1} << QStringLiteral("1969-12-31 23:59:59.999999");
    QTest::newRow("carry") << 999'999 + second << qint64{1'000'001}
                           << QStringLiteral("1970-01-01 00:00:03.000000");
    QTest::newRow("at the end") << lastStamp << hour
                                << QStringLiteral("586524-01-19 09:01:49.551615");
}

void tst_DateTime::displayOffsets()
{
    QFETCH(quint64, stamp);
    QFETCH(qint64, offset);
    DateTime instant(stamp);
    QTEST(instant.toMSString(offset), "expected");
    instant.setOffsetFromUTC(offset);
    QTEST(instant.toMSString(), "expected");
    QCOMPARE(instant.getTimeStamp(), stamp);
    QCOMPARE(instant.second(), DateTime(stamp).second());
}

void tst_DateTime::parsing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown"); // in the object's own offset
    QTest::addColumn<bool>("isLocal");
    const auto row = [](const char* text, const char* shown, bool isLocal) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(shown) << isLocal;
    };
    row("2024-01-02T03:04:05.25", "2024-01-02 03:04:05.250000", true);
    row("2024-01-02 03:04:05", "2024-01-02 03:04:05.000000", true);
    row("2024-01-02", "2024-01-02 00:00:00.000000", true);
    row("2024-01-02T03:04", "2024-01-02 03:04:00.000000", true);
    row("2024-01-02T24:00:00", "2024-01-03 00:00:00.000000", true);
    row("2024-01-02T03:04:05Z", "2024-01-02 03:04:05.000000", false);
    row("2024-01-02T03:04:05+05:45", "2024-01-01 21:19:05.000000", false);
    row("2024-01-02T03:04:05.25Z", "2024-01-02 03:04:05.000000", true); // the zone is lost too
    row("2024-01-02T03:04:05.", "2024-01-02 03:04:05.000000", true);
    row("2024-01-02T03:04:05.9999999", "2024-01-02 03:04:05.999999", true);
    row("2024-01-02T03:04:05.5.5", "2024-01-02 03:04:05.000000", true);
    row("2024-01-02T03:04:05.-5", "2024-01-02 03:04:05.000000", true);
    row("2024-01-02T03:04:05.15e1", "2024-01-02 03:04:06.500000", true);
    row("2024-01-02T03:04:05.1e300", "2024-01-02 03:04:05.000000", true);
    row("2024-01-02T03:04:05.1e999", "2024-01-02 03:04:05.000000", true);
    row("1960-05-06T07:08:09.5", "1960-05-06 07:08:09.500000", true);
    row("", "", true);
    row("yesterday", "", true);
    row("2023-02-29", "", true);
    row(".5", "", true);
    row("2024-01-02T03:04:61", "", true);
}

void tst_DateTime::parsing()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QFETCH(bool, isLocal);
    DateTime instant(12'345'678);
    const quint64 stamp = instant.fromString(text);
    QCOMPARE(instant.toMSString(), shown);
    QCOMPARE(instant.getOffsetFromUTC(), isLocal ? local : 0);
    QCOMPARE(instant.isValid(), !shown.isEmpty());
    QCOMPARE(stamp, instant.getTimeStamp());
    if (shown.isEmpty())
        QCOMPARE(stamp / second, noStamp / second);
}

void tst_DateTime::everyMicrosecondComesBack()
{
    DateTime read;
    for (int micros = 0; micros < 1'000'000; micros += 71) {
        const QString text =
            QStringLiteral("2024-07-02T03:04:05.%1").arg(micros, 6, 10, QLatin1Char('0'));
        const quint64 stamp = read.fromString(text);
        if (stamp % second != static_cast<quint64>(micros))
            QFAIL(qPrintable(text));
    }
}

void tst_DateTime::localTimeOfTheMachine()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime summer(QDate(2021, 7, 1), QTime(12, 30, 59, 999));
    for (const QDateTime& time : {now, summer, summer.addMonths(-6)}) {
        const DateTime instant(time.date(), time.time());
        QCOMPARE(instant, DateTime(time));
        QCOMPARE(instant.getTimeStamp(), quint64(time.toMSecsSinceEpoch()) * 1000);
        QCOMPARE(instant.toString(QStringLiteral("yyyyMMddhhmmsszzz")),
                 time.toString(QStringLiteral("yyyyMMddhhmmsszzz")));
        QCOMPARE(instant.date(), time.date());
        QCOMPARE(instant.time(),
                 QTime(time.time().hour(), time.time().minute(), time.time().second()));
        QCOMPARE(DateTime::UTCtoLocalString(instant.getTimeStamp()), instant.toString());
    }
    const DateTime day(QDate(2021, 7, 1));
    QCOMPARE(day.getOffsetFromUTC(), 0);
    QCOMPARE(day.toString(), QStringLiteral("2021-07-01 00:00:00"));
    QCOMPARE(day.getTimeStamp(),
             quint64(QDate(2021, 7, 1).startOfDay().toMSecsSinceEpoch()) * 1000);
}

void tst_DateTime::zones_data()
{
    QTest::addColumn<QString>("skipped"); // a local time that does not exist
    QTest::addColumn<QString>("readAs");
    QTest::addColumn<QString>("twice");
    QTest::addColumn<QString>("first");
    QTest::newRow("Europe/Berlin") << "2024-03-31T02:30:00"
                                   << "2024-03-31T01:30:00Z"
                                   << "2024-10-27T02:30:00"
                                   << "2024-10-27T00:30:00Z";
    QTest::newRow("America/Havana") << "2024-03-10T00:00:00"
                                    << "2024-03-10T05:00:00Z"
                                    << "2024-11-03T00:30:00"
                                    << "2024-11-03T04:30:00Z";
    QTest::newRow("Australia/Lord_Howe") << "2024-10-06T02:15:00"
                                         << "2024-10-05T15:45:00Z"
                                         << "2024-04-07T01:45:00"
                                         << "2024-04-06T14:45:00Z";
    QTest::newRow("Asia/Kathmandu") << "1986-01-01T00:10:00"
                                    << "1985-12-31T18:40:00Z"
                                    << ""
                                    << "";
    QTest::newRow("Africa/Monrovia") << "1972-01-07T00:30:00"
                                     << "1972-01-07T01:14:30Z"
                                     << ""
                                     << "";
    QTest::newRow("Pacific/Apia") << "2011-12-30T12:00:00"
                                  << "2011-12-30T22:00:00Z"
                                  << ""
                                  << "";
    QTest::newRow("America/St_Johns") << "2006-04-02T00:30:00"
                                      << "2006-04-02T04:00:00Z"
                                      << "2006-10-28T23:30:00"
                                      << "2006-10-29T02:00:00Z";
}

void tst_DateTime::zones()
{
    QFETCH(QString, skipped);
    QFETCH(QString, twice);
    const QTimeZone zone(QTest::currentDataTag());
    if (QSysInfo::kernelType() == QLatin1String("winnt") || !zone.isValid())
        QSKIP("The machine's zone cannot be chosen for a process, or the zone is not known.");

    QList<quint64> stamps = {0, 1'700'000'000'123'456, 2'147'483'648 * second + 1,
                             4'294'967'296 * second, 64'000'000'000 * second + 999'999};
    for (const QString& text : {skipped, twice}) {
        const QDateTime about = QDateTime::fromString(text + u'Z', Qt::ISODate);
        for (int quarters = -60; about.isValid() && quarters < 60; ++quarters)
            stamps.append(quint64(about.addSecs(quarters * 900 - 1).toSecsSinceEpoch()) * second +
                          5);
    }
    QStringList questions = {skipped, twice};
    for (const quint64 stamp : stamps)
        questions.append(QString::number(stamp));

    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TZ"), QLatin1String(QTest::currentDataTag()));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(),
                QStringList(QStringLiteral("--answer")) + questions);
    QVERIFY(child.waitForFinished());
    const QStringList answers = QString::fromLatin1(child.readAll()).split(u'\n');
    QCOMPARE(answers.size(), questions.size() + 1);

    const auto stampOf = [](const QString& iso) {
        return QString::number(QDateTime::fromString(iso, Qt::ISODate).toSecsSinceEpoch() *
                               1'000'000);
    };
    QFETCH(QString, readAs);
    QFETCH(QString, first);
    QCOMPARE(answers[0], stampOf(readAs));
    if (!twice.isEmpty())
        QCOMPARE(answers[1], stampOf(first));
    for (qsizetype i = 0; i < stamps.size(); ++i) {
        const QDateTime there = QDateTime::fromMSecsSinceEpoch(qint64(stamps[i] / 1000), zone);
        const QString micros = QStringLiteral("%1").arg(stamps[i] % 1000, 3, 10, QLatin1Char('0'));
        const QString text = there.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
        QString log = text + u'.' + micros;
        if (stamps[i] < second)
            log = QStringLiteral("000.000");
        QCOMPARE(answers[i + 2], text + micros + u'|' + log);
    }
}

void tst_DateTime::fields()
{
    DateTime instant(1'700'000'000'123'456);
    instant.setOffsetFromUTC(2 * 3600 * qint64{second});
    QCOMPARE(instant.date(), QDate(2023, 11, 15));
    QCOMPARE(instant.time(), QTime(0, 13, 20));
    instant.setDate(QDate(2024, 2, 29)); // both in UTC
    instant.setTime(QTime(23, 59, 58, 765));
    QCOMPARE(instant.toMSString(0), QStringLiteral("2024-02-29 23:59:58.765000"));
    QCOMPARE(instant.second(), 58);
    instant.setTime_t(4'294'967'295);
    QCOMPARE(instant.getTimeStamp(), 4'294'967'295 * second + 765'000);
    instant.setTime_ts(lastStamp);
    QCOMPARE(instant.getTimeStamp(), lastStamp);

    instant.setTime_ts(5 * second + 7);
    const DateTime later = instant.addDays(1).addSecs(-6);
    QCOMPARE(later.getTimeStamp(), 86'399 * second + 7);
    QCOMPARE(later.getOffsetFromUTC(), instant.getOffsetFromUTC());
    QCOMPARE(instant.secsTo(later), 86'394);
    QCOMPARE(instant.daysTo(later), 0);
    QCOMPARE(DateTime::microsecToSec(-1'999'999), -1);
    QCOMPARE(DateTime::secToMicrosec(-2), -2'000'000);
}

void tst_DateTime::order()
{
    const DateTime inOrder[] = {
        DateTime(),         DateTime(QDateTime(QDate(1950, 1, 1), QTime(), Qt::UTC)),
        DateTime(0),        DateTime(1),
        DateTime(second),   DateTime(second + 1),
        DateTime(lastStamp)};
    for (const DateTime& a : inOrder) {
        for (const DateTime& b : inOrder) {
            QCOMPARE(a == b, &a == &b);
            QCOMPARE(a != b, &a != &b);
            QCOMPARE(a < b, &a < &b);
            QCOMPARE(a <= b, &a <= &b);
            QCOMPARE(a > b, &a > &b);
            QCOMPARE(a >= b, &a >= &b);
        }
    }
}

void tst_DateTime::noInstant()
{
    DateTime none;
    QVERIFY(none.isNull() && !none.isValid());
    QCOMPARE(none.getTimeStamp(), noStamp);
    QCOMPARE(none.toMSString(), QString());
    QCOMPARE(none.toMSString(local), QString());
    QCOMPARE(none.toString(QStringLiteral("zzz"), 1), QString());
    QCOMPARE(DateTime(QDate(), QTime()).getTimeStamp(), noStamp);
    QCOMPARE(DateTime(QDate()).getTimeStamp(), noStamp);
    QCOMPARE(DateTime::QDateTime2TimeStamp(QDateTime()), noStamp);
    const QDateTime before(QDate(1969, 12, 31), QTime(23, 59, 59, 250), Qt::UTC);
    QCOMPARE(DateTime::QDateTime2TimeStamp(before), noStamp + 250'000);
    QCOMPARE(DateTime(before).toMSString(), QStringLiteral("1969-12-31 23:59:59.250000"));
}

void tst_DateTime::durations_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");
    const auto row = [](double seconds, const char* expected) {
        QTest::newRow(expected) << seconds << QString::fromLatin1(expected);
    };
    row(0.0, " 0.0 s");
    row(7.5, " 7.5 s");
    row(59.96, "60.0 s");
    row(60.0, "1:00.0 min");
    row(123.45, "2:03.4 min");
    row(3723.45, "1:02:03.4 hours");
    row(360'000.0, "100:00:00.0 hours");
    row(-0.5, "-0.5 s");
    row(1e18, "277777777777777:46:40.0 hours");
    row(std::numeric_limits<double>::infinity(), " inf s");
    row(std::numeric_limits<double>::quiet_NaN(), " nan s");
}

void tst_DateTime::durations()
{
    QFETCH(double, seconds);
    QTEST(DateTime::GetReadeableShortTimeString(seconds), "expected");
}

void tst_DateTime::logTexts()
{
    TimeStamp2QString log;
    QCOMPARE(log.toString(999'999), QStringLiteral("999.999"));
    const quint64 stamp = 1'714'979'289 * second;
    const QString date = DateTime::UTCtoLocalString(stamp);
    const QString kept = log.toString(stamp + 123'456);
    QCOMPARE(kept, date + QStringLiteral(".123.456"));
    const TimeStamp2QString copy = log;
    QCOMPARE(log.toString(stamp + 123'000), date + QStringLiteral(".123.000"));
    QCOMPARE(kept, date + QStringLiteral(".123.456")); // the caller's text is the caller's
    QCOMPARE(TimeStamp2QString(copy).toString(stamp + 7), date + QStringLiteral(".000.007"));

    // Back in second 0 the date part is there, and times beyond 32 bits of seconds are.
    QCOMPARE(log.toString(5), DateTime::UTCtoLocalString(0) + QStringLiteral(".000.005"));
    for (const quint64 later : {2'147'483'648 * second, 4'294'967'296 * second, lastStamp})
        QCOMPARE(log.toString(later).section(u'.', 0, 0), DateTime::UTCtoLocalString(later));
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--answer"))
        return answerInThisZone(arguments.mid(2));
    tst_DateTime test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_datetime.moc"
