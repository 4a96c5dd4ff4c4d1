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

constexpr int none = 99;

template <typename Unit> int parsed(const QString& text)
{
    bool ok = false;
    const int value = Unit::fromString(text, &ok);
    return value != Unit::fromString(text)        ? -99
           : ok                                   ? value
           : value == int{Unit::values().first()} ? none
                                                  : -98;
}

} // namespace

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void families()
    {
        QCOMPARE(
            described<FrequencyUnit>(),
            QStringLiteral("Hz=0=Hz=Hz KHz=3=kHz=kHz MHz=6=MHz=MHz GHz=9=GHz=GHz THz=12=THz=THz"));
        QCOMPARE(described<TimeUnit>(),
                 QStringLiteral("NanoSeconds=-9=ns=ns MicroSeconds=-6=us=\u00b5s "
                                "MilliSeconds=-3=ms=ms Seconds=0=s=s Minutes=60=m=m "
                                "Hours=3600=h=h Days=86400=d=d"));
        QCOMPARE(described<EmptyEnum>(), QStringLiteral("Constant=0=="));
        QVERIFY(FrequencyUnit::toString(FrequencyUnit::Type(7)).isNull());
        QVERIFY(TimeUnit::toDisplayString(TimeUnit::Type(7)).isNull());
    }

    void lenientParsing()
    {
        const std::tuple<QString, int, int> cases[] = {
            {QString(), none, none},
            {QStringLiteral(" \t"), none, none},
            {QStringLiteral("x"), none, none},
            {QStringLiteral("  mhz extra"), 6, none},
            {QStringLiteral("k"), 3, none},
            {QStringLiteral("H"), 0, 3600},
            {QStringLiteral("M s"), 6, -3},
            {QStringLiteral("\u00a0US\u2003"), none, -6},
            {QStringLiteral("\u00b5s"), none, none},
            {QStringLiteral("S\nd"), none, 0},
        };
        for (const auto& [text, frequency, time] : cases) {
            QCOMPARE(parsed<FrequencyUnit>(text), frequency);
            QCOMPARE(parsed<TimeUnit>(text), time);
            QCOMPARE(parsed<EmptyEnum>(text), text.isEmpty() ? 0 : none);
        }
    }

    void stepping()
    {
        using F = FrequencyUnit;
        using T = TimeUnit;
        const QList<F::Type>& all = F::values();
        QCOMPARE(F::predecessor(F::KHz, all), F::KHz); // never down to the first
        QCOMPARE(F::predecessor(F::MHz, all), F::KHz);
        QCOMPARE(F::predecessor(F::THz, {F::Hz}), F::THz);
        QCOMPARE(F::predecessor(F::THz, {F::KHz, F::MHz}), F::MHz);
        QCOMPARE(F::successor(F::Hz, all), F::KHz);
        QCOMPARE(F::successor(F::Type(7), all), F::Type(7));
        QCOMPARE(F::predecessor(F::Type(7), all), F::Type(7));
        QCOMPARE(T::successor(T::Days, T::values()), T::Days);
        QCOMPARE(T::successor(T::Seconds, {T::Seconds, T::Hours}), T::Hours);
        QCOMPARE(T::successor(T::Hours, {T::Seconds}), T::Hours);
    }

    void translated()
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
    }
};

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
