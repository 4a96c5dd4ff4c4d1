#include <VLBase/utilities/numberhelpers.h>

#include <QtTest>

#include <limits>
#include <type_traits>

using NumberHelpers::parse;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);
const QLocale german(QLocale::German, QLocale::Germany);
const QLocale french(QLocale::French, QLocale::France);
const QLocale swedish(QLocale::Swedish, QLocale::Sweden);
const QLocale egyptian(QLocale::Arabic, QLocale::Egypt);
const QLocale adlam(QLocale::Fulah, QLocale::AdlamScript, QLocale::Guinea);

template <typename T, typename = void> constexpr bool isParsed = false;
template <typename T> constexpr bool isParsed<T, std::void_t<decltype(parse<T>(QString()))>> = true;
static_assert(isParsed<unsigned long> && !isParsed<char> && !isParsed<long double>);

/// The limits of a type are read back in every form, one beyond is refused.
template <typename T> void readsItsRange()
{
    using Limits = std::numeric_limits<T>;
    bool ok = false;
    for (const QLocale& locale : {english, german, egyptian}) {
        // The 8-bit members take ASCII only.
        const QLocale own = sizeof(T) == 1 ? QLocale::c() : locale;
        for (const T value : {Limits::min(), T(0), T(1), Limits::max()}) {
            QVERIFY(parse<T>(own.toString(value), locale, &ok, 10) == value && ok);
            for (int base = 2; base <= 36; ++base)
                QVERIFY(parse<T>(QString::number(value, base), own, &ok, base) == value && ok);
        }
    }
    const QString most = QString::number(Limits::max()); // its last digit is 5 or 7, or 8 below 0
    const QString least = std::is_signed_v<T> ? QString::number(Limits::min()) : u"-0"_qs;
    for (const QString& text : {most.chopped(1) + u'9', most + u'0', least.chopped(1) + u'9'})
        for (const int base : {0, 10})
            QVERIFY2(parse<T>(text, english, &ok, base) == T(0) && !ok, qPrintable(text));
}

} // namespace

class NumberHelpersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rangesOfTheWholeNumbers()
    {
        readsItsRange<signed char>();
        readsItsRange<unsigned char>();
        readsItsRange<short>();
        readsItsRange<unsigned short>();
        readsItsRange<int>();
        readsItsRange<unsigned int>();
        readsItsRange<qint64>();
        readsItsRange<quint64>();
        readsItsRange<std::int64_t>(); // another type than qint64 where long has 64 bits
        readsItsRange<std::uint64_t>();
        readsItsRange<long>();
        bool ok = true; // bytes do not know the locale
        QVERIFY(parse<signed char>(u"\u0661"_qs, egyptian, &ok, 10) == 0 && !ok);
        QVERIFY(parse<signed char>(u"0b11"_qs, english, &(ok = true), 0) == 0 && !ok);
    }

    void forms()
    {
        constexpr int refused = 0;
        QLocale strict = english;
        strict.setNumberOptions(QLocale::RejectGroupSeparator);
        const std::tuple<QLocale, QString, int, int> cases[] = {
            {english, u"0x1F"_qs, 0, 31},
            {english, u"017"_qs, 0, 15},
            {english, u"0XfF"_qs, 16, 255},
            {english, u"  -0x10 "_qs, 0, -16},
            {english, u"12"_qs, 2, refused},
            {english, u"1"_qs, 37, refused},
            {english, u"1"_qs, 1, refused},
            {english, QString(), 0, refused},
            {english, u"0b11"_qs, 0, refused},
            {english, u"--1"_qs, 0, refused},
            {english, u"1,234,567"_qs, 10, 1234567},
            {english, u"1,234,567"_qs, 0, 1234567},
            {english, u"0x12,345"_qs, 16, 0x12345},
            {english, u"-1,234"_qs, 8, -01234},
            {german, u"1.234"_qs, 0, 1234},
            {german, u"1,234"_qs, 0, refused},
            {french, u"1\u202f234"_qs, 0, 1234},
            {french, u"1 234"_qs, 0, 1234},
            {swedish, u"\u221217"_qs, 0, -17},
            {swedish, u"-17"_qs, 16, -0x17},
            {english, u"1,2345"_qs, 0, refused},
            {english, u"1234,567"_qs, 0, refused},
            {english, u",123"_qs, 0, refused},
            {english, u"123,"_qs, 0, refused},
            {egyptian, u"\u0661\u0662"_qs, 10, 12},
            {egyptian, u"\u0661\u0662"_qs, 16, 0x12},
            {egyptian, u"1f"_qs, 16, 0x1F},
            {adlam, u"\U0001E951\U0001E952"_qs, 8, 012}, // two units each
            {strict, u"1,234"_qs, 10, refused},
            {strict, u"1,234"_qs, 0, refused},
        };
        for (const auto& [locale, text, base, value] : cases) {
            bool ok = value == refused;
            QVERIFY2(parse<int>(text, locale, &ok, base) == value, qPrintable(text));
            QVERIFY2(ok == (value != refused), qPrintable(text));
            QCOMPARE(parse<qint64>(text, locale, nullptr, base), qint64{value});
            QCOMPARE(parse<quint64>(text, locale, &ok, base), quint64(qMax(value, 0)));
            QCOMPARE(ok, value > 0);
        }
    }

    // Negative numbers of right-to-left scripts among them, which QLocale does not read itself.
    void everyLocaleGoesThereAndBack()
    {
        const auto locales = QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript,
                                                      QLocale::AnyTerritory);
        QVERIFY(locales.size() > 100);
        bool ok = false;
        for (const QLocale& locale : locales) {
            for (const int value : {0, -5, 1234, -32768, 1234567, -123456789}) {
                const QString text = locale.toString(value);
                QVERIFY2(parse<int>(text, locale, &ok, 10) == value && ok, qPrintable(text));
                QVERIFY2(parse<int>(text, locale, &ok, 0) == value && ok, qPrintable(text));
            }
            const QString text = locale.toString(-1234.5, 'f', 1);
            QVERIFY2(parse<double>(text, locale, &ok, 16) == -1234.5 && ok, qPrintable(text));
            QVERIFY2(parse<float>(text, locale, &ok, 2) == -1234.5F && ok, qPrintable(text));
        }
        QVERIFY(parse<float>(u"-1e99"_qs, english, &ok, 10) ==
                    -std::numeric_limits<float>::infinity() &&
                !ok);
    }

    void truthValues()
    {
        const std::tuple<bool, bool, std::vector<const char*>> cases[] = {
            {true, true, {"true", " Yes ", "ON", "1", "0x1", "01"}},
            {false, true, {"false", "No\t", "oFF", "0", "0x0", "-0"}},
            {true, false, {"2", "-1", "0x7fff"}},
            {false, false, {"maybe", "", "99999", "yes no", "1.0", "0b1"}},
        };
        for (const auto& [value, valid, words] : cases) {
            for (const char* word : words) {
                bool ok = !valid;
                QVERIFY2(parse<bool>(QLatin1String(word), german, &ok, 10) == value, word);
                QVERIFY2(ok == valid, word);
            }
        }
    }
};

QTEST_APPLESS_MAIN(NumberHelpersTest)
#include "tst_numberhelpers.moc"
