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

/// The limits of a type are read back, one beyond is refused.
template <typename T> void readsItsRange()
{
    using Limits = std::numeric_limits<T>;
    for (const QLocale& locale : {english, german, egyptian}) {
        // The 8-bit members take ASCII only.
        const QLocale& own = sizeof(T) == 1 ? QLocale::c() : locale;
        for (const T value : {Limits::min(), T(0), T(1), Limits::max()}) {
            bool ok = false;
            QCOMPARE(parse<T>(own.toString(value), own, &ok, 10), value);
            QVERIFY(ok);
            QCOMPARE(parse<T>(QString::number(value, 16), english, &ok, 16), value);
            QVERIFY(ok);
        }
    }
    const auto beyond = [](T limit, int last) {
        QString text = QString::number(limit);
        text.chop(1);
        return text + QString::number(last);
    };
    for (const QString& text :
         {beyond(Limits::max(), 9), beyond(Limits::max(), 0) + QLatin1Char('0'),
          std::is_signed_v<T> ? beyond(Limits::min(), 9) : u"-1"_qs}) {
        for (const int base : {0, 10}) {
            bool ok = true;
            QCOMPARE(parse<T>(text, english, &ok, base), T(0));
            QVERIFY2(!ok, qPrintable(text));
        }
    }
}

} // namespace

class NumberHelpersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rangesOfTheWholeNumbers();
    void bases_data();
    void bases();
    void everyBaseGoesThereAndBack();
    void everyLocaleGoesThereAndBack();
    void bytes_data();
    void bytes();
    void fractions();
    void truthValues_data();
    void truthValues();
};

void NumberHelpersTest::rangesOfTheWholeNumbers()
{
    readsItsRange<signed char>();
    readsItsRange<unsigned char>();
    readsItsRange<short>();
    readsItsRange<unsigned short>();
    readsItsRange<int>();
    readsItsRange<unsigned int>();
    readsItsRange<qint64>();
    readsItsRange<quint64>();
}

void NumberHelpersTest::bases_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("base");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("value");

    const auto row = [](const char* name, const QLocale& locale, const QString& text, int base,
                        bool ok, int value = 0) {
        QTest::newRow(name) << locale << text << base << ok << value;
    };
    row("found: 16", english, u"0x1F"_qs, 0, true, 31);
    row("found: 8", english, u"017"_qs, 0, true, 15);
    row("found: 10", english, u"17"_qs, 0, true, 17);
    row("prefix of base 16", english, u"0XfF"_qs, 16, true, 255);
    row("sign and blanks", english, u"  -0x10 "_qs, 0, true, -16);
    row("base 36", english, u"zz"_qs, 36, true, 1295);
    row("digit beyond the base", english, u"12"_qs, 2, false);
    row("no such base", english, u"1"_qs, 37, false);
    row("base 1", english, u"1"_qs, 1, false);
    row("nothing", english, QString(), 0, false);
    row("sign alone", english, u"-"_qs, 0, false);
    row("two signs", english, u"--1"_qs, 0, false);
    row("fraction", english, u"1.5"_qs, 0, false);

    row("groups, base 10", english, u"1,234,567"_qs, 10, true, 1234567);
    row("groups, base 0", english, u"1,234,567"_qs, 0, true, 1234567);
    row("groups, base 16", english, u"0x12,345"_qs, 16, true, 0x12345);
    row("groups, base 8", english, u"-1,234"_qs, 8, true, -01234);
    row("German groups", german, u"1.234"_qs, 0, true, 1234);
    row("English groups in German", german, u"1,234"_qs, 0, false);
    row("French groups", french, u"1\u202f234"_qs, 0, true, 1234);
    row("typed French groups", french, u"1 234"_qs, 0, true, 1234);
    row("Swedish minus", swedish, u"\u221217"_qs, 0, true, -17);
    row("plain minus", swedish, u"-17"_qs, 16, true, -0x17);
    row("group of two", english, u"12,34"_qs, 0, false);
    row("group of four", english, u"1,2345"_qs, 0, false);
    row("missing separator", english, u"1234,567"_qs, 0, false);
    row("leading separator", english, u",123"_qs, 0, false);
    row("trailing separator", english, u"123,"_qs, 0, false);
    row("two separators", english, u"1,,234"_qs, 0, false);

    row("Arabic digits, base 10", egyptian, u"\u0661\u0662"_qs, 10, true, 12);
    row("Arabic digits, base 16", egyptian, u"\u0661\u0662"_qs, 16, true, 0x12);
    row("ASCII digits in Arabic, base 16", egyptian, u"1f"_qs, 16, true, 0x1F);
    row("digits of two units", adlam, u"\U0001E951\U0001E952"_qs, 8, true, 012);
    QLocale strict = english;
    strict.setNumberOptions(QLocale::RejectGroupSeparator);
    row("groups refused, base 10", strict, u"1,234"_qs, 10, false);
    row("groups refused, base 0", strict, u"1,234"_qs, 0, false);
}

void NumberHelpersTest::bases()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, text);
    QFETCH(int, base);
    QFETCH(bool, ok);
    QFETCH(int, value);
    bool valid = !ok;
    QCOMPARE(parse<int>(text, locale, &valid, base), value);
    QCOMPARE(valid, ok);
    QCOMPARE(parse<qint64>(text, locale, &valid, base), qint64(value));
    QCOMPARE(valid, ok);
    QCOMPARE(parse<int>(text, locale, nullptr, base), value);
    QCOMPARE(parse<quint64>(text, locale, &valid, base), quint64(value < 0 ? 0 : value));
    QCOMPARE(valid, ok && value >= 0);
}

void NumberHelpersTest::everyBaseGoesThereAndBack()
{
    for (int base = 2; base <= 36; ++base) {
        for (const qint64 value : {qint64(-36), qint64(35), qint64(123456789012345)}) {
            bool ok = false;
            QCOMPARE(parse<qint64>(QString::number(value, base), german, &ok, base), value);
            QVERIFY(ok);
        }
    }
}

void NumberHelpersTest::everyLocaleGoesThereAndBack()
{
    // Negative numbers of right-to-left scripts among them, which QLocale does not read itself.
    const auto locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    QVERIFY(locales.size() > 100);
    for (const QLocale& locale : locales) {
        for (const int value : {0, -5, 1234, -32768, 1234567, -123456789}) {
            const QString text = locale.toString(value);
            for (const int base : {0, 10}) {
                // Elsewhere than in base 10 all groups have three digits.
                if (base == 0 && qAbs(value) > 99'999)
                    continue;
                bool ok = false;
                QVERIFY2(parse<int>(text, locale, &ok, base) == value && ok, qPrintable(text));
            }
        }
        bool ok = false;
        const QString text = locale.toString(-1234.5, 'f', 1);
        QVERIFY2(parse<double>(text, locale, &ok, 10) == -1234.5 && ok, qPrintable(text));
    }
}

void NumberHelpersTest::bytes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("base");
    QTest::addColumn<int>("signedValue"); // 1000 for refused
    QTest::addColumn<int>("unsignedValue");

    QTest::newRow("least") << u"-128"_qs << 10 << -128 << 1000;
    QTest::newRow("below") << u"-129"_qs << 10 << 1000 << 1000;
    QTest::newRow("127") << u"127"_qs << 10 << 127 << 127;
    QTest::newRow("128") << u"128"_qs << 10 << 1000 << 128;
    QTest::newRow("greatest") << u"0xff"_qs << 0 << 1000 << 255;
    QTest::newRow("beyond") << u"256"_qs << 10 << 1000 << 1000;
    QTest::newRow("far beyond") << u"300"_qs << 10 << 1000 << 1000;
    QTest::newRow("no locale") << u"\u0661"_qs << 10 << 1000 << 1000;
    QTest::newRow("no such base") << u"1"_qs << 99 << 1000 << 1000;
}

void NumberHelpersTest::bytes()
{
    QFETCH(QString, text);
    QFETCH(int, base);
    QFETCH(int, signedValue);
    QFETCH(int, unsignedValue);
    bool ok = false;
    QCOMPARE(int(parse<signed char>(text, egyptian, &ok, base)),
             signedValue == 1000 ? 0 : signedValue);
    QCOMPARE(ok, signedValue != 1000);
    QCOMPARE(int(parse<unsigned char>(text, egyptian, &ok, base)),
             unsignedValue == 1000 ? 0 : unsignedValue);
    QCOMPARE(ok, unsignedValue != 1000);
}

void NumberHelpersTest::fractions()
{
    bool ok = false;
    QCOMPARE(parse<double>(u"1.234,5"_qs, german, &ok, 16), 1234.5);
    QVERIFY(ok);
    QCOMPARE(parse<float>(u"1,234.5"_qs, english, &ok, 2), 1234.5F);
    QVERIFY(ok);
    parse<double>(u"1,5"_qs, english, &ok, 10);
    QVERIFY(!ok);
    parse<float>(u"1e99"_qs, english, &ok, 10);
    QVERIFY(!ok);
    QCOMPARE(parse<double>(u"1e99"_qs, english, nullptr, 10), 1e99);
}

void NumberHelpersTest::truthValues_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("value");
    QTest::addColumn<bool>("ok");

    for (const char* word : {"true", " Yes ", "ON", "1", "0x1", "01"})
        QTest::newRow(word) << QString::fromLatin1(word) << true << true;
    for (const char* word : {"false", "No\t", "oFF", "0", "0x0", "-0"})
        QTest::newRow(word) << QString::fromLatin1(word) << false << true;
    for (const char* word : {"2", "-1", "0x7fff"})
        QTest::newRow(word) << QString::fromLatin1(word) << true << false;
    for (const char* word : {"maybe", "", "99999", "yes no", "1.0"})
        QTest::newRow(word) << QString::fromLatin1(word) << false << false;
}

void NumberHelpersTest::truthValues()
{
    QFETCH(QString, text);
    bool ok = false;
    QTEST(parse<bool>(text, german, &ok, 10), "value");
    QTEST(ok, "ok");
}

QTEST_APPLESS_MAIN(NumberHelpersTest)
#include "tst_numberhelpers.moc"
