#include "../support/privatetemp.h"

#include <VLBase/basetypes/token.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/messagelist.h>

#include <QtTest>

#include <clocale>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

using namespace Vela;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// All tokens up to the null string, an empty one shown as "<>".
QStringList tokens(const std::function<QString()>& next)
{
    QStringList all;
    for (QString token = next(); !token.isNull(); token = next())
        all.append(token.isEmpty() ? u"<>"_qs : token);
    return all;
}

QStringList words(const QString& text)
{
    return text.isEmpty() ? QStringList() : text.split(u' ');
}

} // namespace

class TokenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsAtDelimiters_data();
    void cutsAtDelimiters();
    void formsOfTheDelimiters();
    void endStaysTheEnd();
    void nullDelimitersAreReported();
    void copiesGoOnAlone();
    void agreesWithAPlainLoop();
    void separatesFields_data();
    void separatesFields();
    void strips_data();
    void strips();
    void knowsAscii();
    void replaces_data();
    void replaces();
    void readsNumbers_data();
    void readsNumbers();
    void localesPlayNoPart();

private:
    PrivateTemp m_temp;
};

void TokenTest::cutsAtDelimiters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("delimiters");
    QTest::addColumn<QString>("expected");

    QTest::newRow("words") << u"a b"_qs << u" "_qs << u"a b"_qs;
    QTest::newRow("run") << u"a,,b"_qs << u","_qs << u"a <> b"_qs;
    QTest::newRow("leading one is skipped") << u",a"_qs << u","_qs << u"a"_qs;
    QTest::newRow("two leading") << u",,a"_qs << u","_qs << u"<> a"_qs;
    QTest::newRow("trailing") << u"a,"_qs << u","_qs << u"a <>"_qs;
    QTest::newRow("mixed run") << u"a,;b"_qs << u";,"_qs << u"a <> b"_qs;
    QTest::newRow("no delimiters") << u"a,b"_qs << QString() << u"a,b"_qs;
    QTest::newRow("empty text") << QString() << u","_qs << QString();
    QTest::newRow("beyond Latin-1") << u"aäb\u2192c"_qs << u"\u2192ä"_qs << u"a b c"_qs;
    QTest::newRow("only delimiters") << u",,"_qs << u","_qs << u"<> <>"_qs;
}

void TokenTest::cutsAtDelimiters()
{
    QFETCH(QString, text);
    QFETCH(QString, delimiters);
    QFETCH(QString, expected);
    const QStringList all = words(expected);
    const std::wstring wide = delimiters.toStdWString();
    const auto count = static_cast<quint64>(delimiters.size());

    Tokenizer terminated(text);
    QCOMPARE(tokens([&] { return terminated(wide.c_str()); }), all);
    Tokenizer ofText(text);
    QCOMPARE(tokens([&] { return ofText(delimiters); }), all);
    Tokenizer counted(text);
    QCOMPARE(tokens([&] { return counted(wide.data(), wide.size()); }), all);
    Tokenizer countedText(text);
    QCOMPARE(tokens([&] { return countedText(delimiters, count); }), all);

    const std::string bytes = text.toLatin1().toStdString();
    const std::string byteDelimiters = delimiters.toLatin1().toStdString();
    if (QString::fromLatin1(byteDelimiters.c_str()) != delimiters)
        return;
    CTokenizer narrow(bytes);
    for (const QString& token : all)
        QCOMPARE(narrow(byteDelimiters.c_str()), token == u"<>" ? "" : token.toStdString());
    QCOMPARE(narrow(byteDelimiters.c_str()), std::string());
}

void TokenTest::formsOfTheDelimiters()
{
    const QString text = QStringLiteral("a\tb\nc d") + QChar(u'\0') + u"e,f"_qs;
    Tokenizer usual(text);
    QCOMPARE(tokens([&] { return usual(); }).join(u'|'), u"a|b|c|d|e,f"_qs);
    // The zero ends a terminated set and counts in a counted one.
    const QString withZero = QStringLiteral(" ") + QChar(u'\0') + u","_qs;
    Tokenizer terminated(text);
    QCOMPARE(tokens([&] { return terminated(withZero); }).size(), 2);
    Tokenizer counted(text);
    QCOMPARE(tokens([&] { return counted(withZero, 2); }).size(), 3);
    Tokenizer wide(text);
    QCOMPARE(tokens([&] { return wide(L" \0,", 3); }).size(), 4);
    Tokenizer more(text);
    QCOMPARE(tokens([&] { return more(withZero, 1000); }).size(), 4);
    // The set may change between calls.
    Tokenizer changing(text);
    QCOMPARE(changing(L"\n"), u"a\tb"_qs);
    QCOMPARE(changing(L" \n"), u"c"_qs);
    const std::string bytes("a\0b,c", 5);
    CTokenizer narrow(bytes);
    QCOMPARE(narrow(","), std::string("a\0b", 3));
}

void TokenTest::endStaysTheEnd()
{
    const QString text = u"a b"_qs;
    Tokenizer next(text);
    QCOMPARE(next(), u"a"_qs);
    QCOMPARE(next(), u"b"_qs);
    for (int i = 0; i < 3; ++i)
        QVERIFY(next().isNull());
}

void TokenTest::nullDelimitersAreReported()
{
    ErrorHandler& handler = ErrorHandler::Instance();
    const QString text = u"a,b"_qs;
    // The list keeps the newest in front; the time behind the last "@" is left off.
    const auto lastRecord = [&handler] {
        bool atEnd = false;
        handler.InitGetNextMessage(atEnd, 0);
        const QString record = handler.GetNextMessage(atEnd);
        return record.left(record.lastIndexOf(u'@'));
    };
    const wchar_t* none = nullptr;
    QCOMPARE(Tokenizer(text)(none), text);
    QCOMPARE(lastRecord(), QString());
    handler.SetMessageMask(2, true);
    QCOMPARE(Tokenizer(text)(none), text);
    QCOMPARE(lastRecord(), u"!@ASSERTION FAILED ws!=0@basetypes/token@75@@"_qs);
    QCOMPARE(Tokenizer(text)(none, 3), text);
    QCOMPARE(lastRecord(), u"!@ASSERTION FAILED ws!=0@basetypes/token@111@@"_qs);
    handler.SetMessageMask(2, false);
    const std::string bytes = "a,b";
    QCOMPARE(CTokenizer(bytes)(nullptr), bytes);
}

void TokenTest::copiesGoOnAlone()
{
    const QString text = u"a b c"_qs;
    const QString other = u"x y"_qs;
    Tokenizer first(text);
    first();
    Tokenizer second(first);
    QCOMPARE(second(), u"b"_qs);
    QCOMPARE(second(), u"c"_qs);
    QCOMPARE(first(), u"b"_qs);
    Tokenizer assigned(other);
    assigned = first;
    QCOMPARE(assigned(), u"c"_qs);
}

void TokenTest::agreesWithAPlainLoop()
{
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        QString text;
        for (auto size = random() % 12; size > 0; --size)
            text += QChar(u"ab,;\u20ac"[random() % 5]);
        const QString delimiters = QStringList{u","_qs, u",;"_qs, u"\u20ac,"_qs}[random() % 3];
        // Each character either ends a token or belongs to it; a delimiter in front ends none.
        QStringList expected;
        if (!text.isEmpty())
            expected.append(QString());
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (!delimiters.contains(text[i]))
                expected.last() += text[i];
            else if (i > 0)
                expected.append(QString());
        }
        expected.replaceInStrings(QRegularExpression(u"^$"_qs), u"<>"_qs);
        Tokenizer next(text);
        QCOMPARE(tokens([&] { return next(delimiters); }), expected);
    }
}

void TokenTest::separatesFields_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("separators");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("fields");

    QTest::newRow("key and value")
        << u"x = 1"_qs << QStringList{u"="_qs, u";"_qs} << 2 << QStringList{u"x"_qs, u"1"_qs};
    QTest::newRow("ends without a separator")
        << u"x"_qs << QStringList{u"="_qs, u";"_qs} << 2 << QStringList{u"x"_qs};
    QTest::newRow("rest is left") << u"a;b;c"_qs << QStringList{u";"_qs, u";"_qs} << 2
                                  << QStringList{u"a"_qs, u"b"_qs};
    QTest::newRow("long separator")
        << u"a => b"_qs << QStringList{u"=>"_qs, u"=>"_qs} << 2 << QStringList{u"a"_qs, u"b"_qs};
    QTest::newRow("blanks go, tabs stay")
        << u" \ta\t ;"_qs << QStringList{u";"_qs} << 1 << QStringList{u"\ta\t"_qs};
    QTest::newRow("case counts") << u"axbXc"_qs << QStringList{u"X"_qs, u"x"_qs} << 2
                                 << QStringList{u"axb"_qs, u"c"_qs};
    QTest::newRow("count 0") << u"a;b"_qs << QStringList{u";"_qs} << 0 << QStringList{u"a"_qs};
    QTest::newRow("empty text") << QString() << QStringList{u";"_qs} << 1 << QStringList{QString()};
}

void TokenTest::separatesFields()
{
    QFETCH(QString, text);
    QFETCH(QStringList, separators);
    QFETCH(int, count);
    QFETCH(QStringList, fields);
    QStringList parts = separators;
    const int written = separateString(text, parts.data(), static_cast<unsigned char>(count));
    QCOMPARE(parts.mid(0, written), fields);
    QCOMPARE(parts.mid(written), separators.mid(written));
}

void TokenTest::strips_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("stripped");

    QTest::newRow("start") << u"__a__"_qs << 0 << u"a__"_qs;
    QTest::newRow("end") << u"__a__"_qs << 1 << u"__a"_qs;
    QTest::newRow("both") << u"__a_b__"_qs << 2 << u"a_b"_qs;
    QTest::newRow("other type") << u"__a__"_qs << 3 << u"__a__"_qs;
    for (int type : {0, 1, 2}) {
        QTest::addRow("nothing else, %d", type) << u"___"_qs << type << QString();
        QTest::addRow("empty, %d", type) << QString() << type << QString();
        QTest::addRow("nothing to strip, %d", type) << u"a_b"_qs << type << u"a_b"_qs;
    }
}

void TokenTest::strips()
{
    QFETCH(QString, text);
    QFETCH(int, type);
    QFETCH(QString, stripped);
    const QString& result = strip(text, static_cast<stripType_>(type), L'_');
    QCOMPARE(&result, &text);
    QCOMPARE(text, stripped);
}

void TokenTest::knowsAscii()
{
    QVERIFY(isAsciiString(u"abc\u007f"_qs));
    QVERIFY(!isAsciiString(QString()));
    QVERIFY(!isAsciiString(u"abc\u0080"_qs));
    QVERIFY(!isAsciiString(u"é"_qs));
}

void TokenTest::replaces_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("what");
    QTest::addColumn<QByteArray>("with");
    QTest::addColumn<QByteArray>("result");

    const auto row = [](const char* name, const char* text, const char* what, const char* with,
                        const char* result) {
        QTest::newRow(name) << QByteArray(text) << QByteArray(what) << QByteArray(with)
                            << QByteArray(result);
    };
    row("grows", "aaa", "a", "aa", "aaaaaa");
    row("shrinks", "axxbxx", "xx", "", "ab");
    row("overlapping", "aaa", "aa", "b", "ba");
    row("not there", "abc", "x", "y", nullptr);
    row("nothing to look for", "abc", "", "y", nullptr);
}

void TokenTest::replaces()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, what);
    QFETCH(QByteArray, with);
    QFETCH(QByteArray, result);
    std::string changed = text.toStdString();
    QCOMPARE(replaceWith(changed, what.toStdString(), with.toStdString()), !result.isNull());
    QCOMPARE(changed, (result.isNull() ? text : result).toStdString());
    std::string itself = "abc";
    QVERIFY(replaceWith(itself, itself, itself));
    QCOMPARE(itself, std::string("abc"));
}

void TokenTest::readsNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("ok");

    const auto row = [](const char* text, double value, bool ok = true) {
        QTest::newRow(text) << QString::fromUtf8(text) << value << ok;
    };
    row("1,5", 1.5);
    row("1.5", 1.5);
    row("1.5,3", 1.5);
    row("1,5.3", 1.5);
    row(",5", 0.5);
    row("5,", 5.0);
    row("-1,5e-3 Hz", -0.0015);
    row(" \t\n+7", 7.0);
    row("\u00a07", 0.0);
    row("1 234", 1.0);
    row("0.1", 0.1);
    row("1e", 1.0);
    row("1e+x", 1.0);
    row("1.7976931348623157e308", std::numeric_limits<double>::max());
    row("1e400", infinity);
    row("-1e400", -infinity);
    row("-1e-400", -0.0);
    row("1e99999999999999999999", infinity);
    row("1e-99999999999999999999", 0.0);
    row("0.00e99999", 0.0);
    row("4.9e-324", std::numeric_limits<double>::denorm_min());
    row("0x1,8p1", 3.0);
    row("0x.8", 0.5);
    row("0xg", 0.0);
    row("0x1p99999", infinity);
    row("0x0.001p-99999", 0.0);
    row("0x1p-1074", std::numeric_limits<double>::denorm_min());
    row("inf", infinity);
    row("-Infinity", -infinity);
    row("NaN", std::numeric_limits<double>::quiet_NaN());
    row("\u0661", 0.0);
    row("--1", 0.0);
    row("+-1", 0.0);
    row("- 1", -0.0);
    row("", 0.0);
    row("MHz", 0.0);
    row("2_1/4", 2.25);
    row("2_1/4 MHz", 2.25);
    row("-1_1/2", -0.5);
    row(" 3 _ 1 /4 x", 3.25);
    row("3_1/ 4", 0.0, false);
    row("2_1/0", 0.0, false);
    row("2_1/x", 0.0, false);
    row("2_x/4", 2.0);
    row("2_1", 2.0);
    row("1/2", 1.0);
}

void TokenTest::readsNumbers()
{
    QFETCH(QString, text);
    QFETCH(double, value);
    bool ok = false;
    const double read = toDoubleEx(text, &ok);
    QTEST(ok, "ok");
    if (std::isnan(value)) {
        QVERIFY(std::isnan(read));
        return;
    }
    // Exact, the sign of 0 aside: QCOMPARE would let the last digits go.
    QVERIFY2(read == value, qPrintable(QString::number(read, 'g', 17)));
    QVERIFY(toDoubleEx(text, nullptr) == value);
}

void TokenTest::localesPlayNoPart()
{
    const QByteArray before = std::setlocale(LC_ALL, nullptr);
    const QLocale userBefore;
    for (const char* name :
         {"C", "C.UTF-8", "de_DE.UTF-8", "German_Germany.1252", "", "fr_FR.utf8"}) {
        if (!std::setlocale(LC_ALL, name))
            continue;
        for (const QLocale::Language language : {QLocale::German, QLocale::Arabic, QLocale::C}) {
            QLocale::setDefault(QLocale(language));
            QCOMPARE(toDoubleEx(u"1234,5"_qs), 1234.5);
            QCOMPARE(toDoubleEx(u"1234.5"_qs), 1234.5);
            QCOMPARE(toDoubleEx(u"1_1.5/2"_qs), 1.75);
        }
    }
    std::setlocale(LC_ALL, before.constData());
    QLocale::setDefault(userBefore);
}

QTEST_GUILESS_MAIN(TokenTest)
#include "tst_token.moc"
