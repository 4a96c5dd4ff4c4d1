#include <VLBase/basetypes/emptyenum.h>
#include <VLBase/basetypes/frequencyunit.h>
#include <VLBase/basetypes/timeunit.h>

#include <QMetaEnum>
#include <QTranslator>
#include <QtTest>

using EnumHelpers::EmptyEnum;

namespace {

template <typename Unit> QString described()
{
    QStringList texts;
    const QMetaEnum keys = QMetaEnum::fromType<typename Unit::Type>();
    for (const auto value : Unit::values())
        texts += QStringLiteral("%1=%2=%3=%4")
                     .arg(QLatin1String(keys.valueToKey(value)))
                     .arg(int{value})
                     .arg(Unit::toString(value), Unit::toDisplayString(value));
    return texts.join(u' ');
}

template <typename Unit> int parsed(const QString& text)
{
    bool ok = false;
    const int value = Unit::fromString(text, &ok);
    const int quiet = Unit::fromString(text);
    return value != quiet ? -99 : ok ? value : value == Unit::values().first() ? 99 : -98;
}

} // namespace

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void families();
    void lenientParsing_data();
    void lenientParsing();
    void stepping();
    void noUnit();
    void translated();
};

void tst_Units::families()
{
    QCOMPARE(described<FrequencyUnit>(),
             QStringLiteral("Hz=0=Hz=Hz KHz=3=kHz=kHz MHz=6=MHz=MHz GHz=9=GHz=GHz THz=12=THz=THz"));
    QCOMPARE(described<TimeUnit>(),
             QStringLiteral("NanoSeconds=-9=ns=ns MicroSeconds=-6=us=\u00b5s MilliSeconds=-3=ms=ms "
                            "Seconds=0=s=s Minutes=60=m=m Hours=3600=h=h Days=86400=d=d"));
    QCOMPARE(described<EmptyEnum>(), QStringLiteral("Constant=0=="));
    QVERIFY(FrequencyUnit::toString(FrequencyUnit::Type(7)).isNull());
    QVERIFY(TimeUnit::toDisplayString(TimeUnit::Type(7)).isNull());
    QVERIFY(!EmptyEnum::toString(EmptyEnum::Constant).isNull());
}

void tst_Units::lenientParsing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("frequency"); // 99 is none
    QTest::addColumn<int>("time");
    const auto row = [](const QString& text, int frequency, int time) {
        QTest::newRow(qUtf8Printable(QLatin1Char('"') + text + QLatin1Char('"')))
            << text << frequency << time;
    };
    row(QString(), 99, 99);
    row(QStringLiteral(" \t"), 99, 99);
    row(QStringLiteral("x"), 99, 99);
    row(QStringLiteral("  mhz extra"), 6, 99);
    row(QStringLiteral("k"), 3, 99);
    row(QStringLiteral("H"), 0, 3600);
    row(QStringLiteral("m"), 6, -3);
    row(QStringLiteral("M s"), 6, -3);
    row(QStringLiteral("\u00a0US\u2003"), 99, -6);
    row(QStringLiteral("\u00b5s"), 99, 99);
    row(QStringLiteral("sec"), 99, 99);
    row(QStringLiteral("S\nd"), 99, 0);
    row(QStringLiteral("d"), 99, 86400);
}

void tst_Units::lenientParsing()
{
    QFETCH(QString, text);
    QTEST(parsed<FrequencyUnit>(text), "frequency");
    QTEST(parsed<TimeUnit>(text), "time");
}

void tst_Units::stepping()
{
    const QList<FrequencyUnit::Type>& all = FrequencyUnit::values();
    QCOMPARE(FrequencyUnit::predecessor(FrequencyUnit::KHz, all), FrequencyUnit::KHz);
    QCOMPARE(FrequencyUnit::predecessor(FrequencyUnit::MHz, all), FrequencyUnit::KHz);
    QCOMPARE(FrequencyUnit::predecessor(FrequencyUnit::THz, {FrequencyUnit::Hz}),
             FrequencyUnit::THz);
    QCOMPARE(
        FrequencyUnit::predecessor(FrequencyUnit::THz, {FrequencyUnit::KHz, FrequencyUnit::MHz}),
        FrequencyUnit::MHz);
    QCOMPARE(FrequencyUnit::successor(FrequencyUnit::Hz, all), FrequencyUnit::KHz);
    QCOMPARE(FrequencyUnit::successor(FrequencyUnit::Type(7), all), FrequencyUnit::Type(7));
    QCOMPARE(FrequencyUnit::predecessor(FrequencyUnit::Type(7), all), FrequencyUnit::Type(7));
    QCOMPARE(TimeUnit::successor(TimeUnit::Days, TimeUnit::values()), TimeUnit::Days);
    QCOMPARE(TimeUnit::successor(TimeUnit::Seconds, {TimeUnit::Seconds, TimeUnit::Hours}),
             TimeUnit::Hours);
    QCOMPARE(TimeUnit::successor(TimeUnit::Hours, {TimeUnit::Seconds}), TimeUnit::Hours);
}

void tst_Units::noUnit()
{
    bool ok = false;
    QCOMPARE(EmptyEnum::fromString(QString(), &ok), EmptyEnum::Constant);
    QVERIFY(ok);
    QCOMPARE(EmptyEnum::fromString(QStringLiteral(" "), &ok), EmptyEnum::Constant);
    QVERIFY(!ok);
    QCOMPARE(EmptyEnum::fromString(QStringLiteral("x")), EmptyEnum::Constant);
}

void tst_Units::translated()
{
    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(":/VLBase_test.qm")));
    QVERIFY(QCoreApplication::installTranslator(&translator));
    QCOMPARE(TimeUnit::toDisplayString(TimeUnit::MicroSeconds),
             QStringLiteral("\u043c\u043a\u0441"));
    QCOMPARE(FrequencyUnit::toDisplayString(FrequencyUnit::KHz),
             QStringLiteral("\u043a\u0413\u0446"));
    // What is typed and kept stays as it is.
    QCOMPARE(TimeUnit::toString(TimeUnit::MicroSeconds), QStringLiteral("us"));
    QCOMPARE(FrequencyUnit::fromString(QStringLiteral("khz")), FrequencyUnit::KHz);
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(FrequencyUnit::toDisplayString(FrequencyUnit::KHz), QStringLiteral("kHz"));
}

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
