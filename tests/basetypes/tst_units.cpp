#include <VLBase/basetypes/emptyenum.h>
#include <VLBase/basetypes/frequencyunit.h>
#include <VLBase/basetypes/timeunit.h>

#include <QTranslator>
#include <QtTest>

using EnumHelpers::EmptyEnum;

namespace {

constexpr int none = 99;

template <typename Unit> int parsed(const QString& text)
{
    bool ok = false;
    const int value = Unit::fromString(text, &ok);
    const bool isSame = value == Unit::fromString(text) && (ok || value == Unit::values().first());
    return !isSame ? -99 : ok ? value : none;
}

} // namespace

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void lenientParsing()
    {
        QCOMPARE(int{TimeUnit::Days}, 86400);
        QVERIFY(FrequencyUnit::toString(FrequencyUnit::Type(7)).isNull());
        QVERIFY(TimeUnit::toDisplayString(TimeUnit::Type(7)).isNull());
        const std::tuple<QString, int, int> cases[] = {
            {QString(), none, none},     {u" \t"_qs, none, none},
            {u"x"_qs, none, none},       {u"  mhz extra"_qs, 6, none},
            {u"k"_qs, 3, none},          {u"H"_qs, 0, 3600},
            {u"M s"_qs, 6, -3},          {u"\u00a0US\u2003"_qs, none, -6},
            {u"\u00b5s"_qs, none, none}, {u"S\nd"_qs, none, 0},
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
        // Downwards never to the first.
        QVERIFY(F::predecessor(F::KHz, all) == F::KHz && F::predecessor(F::MHz, all) == F::KHz);
        QVERIFY(F::predecessor(F::THz, {F::Hz}) == F::THz);
        QVERIFY(F::predecessor(F::THz, {F::KHz, F::MHz}) == F::MHz);
        const auto unknown = F::Type(7);
        QVERIFY(F::predecessor(unknown, all) == unknown && F::successor(unknown, all) == unknown);
        QVERIFY(F::successor(F::Hz, all) == F::KHz);
        QVERIFY(T::successor(T::Days, T::values()) == T::Days);
        QVERIFY(T::successor(T::Seconds, {T::Seconds, T::Hours}) == T::Hours);
        QVERIFY(T::successor(T::Hours, {T::Seconds}) == T::Hours);
    }

    void translated()
    {
        QTranslator translator;
        QVERIFY(translator.load(QStringLiteral(":/VLBase_test.qm")));
        QVERIFY(QCoreApplication::installTranslator(&translator));
        QCOMPARE(TimeUnit::toDisplayString(TimeUnit::MicroSeconds), u"мкс"_qs);
        QCOMPARE(FrequencyUnit::toDisplayString(FrequencyUnit::KHz), u"кГц"_qs);
        QCOMPARE(TimeUnit::toString(TimeUnit::MicroSeconds), u"us"_qs); // what is typed and kept
    }
};

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
