#include "../support/privatetemp.h"

#include <VLBase/basetypes/token.h>
#include <VLBase/errorhandling/errorhandler.h>
#include <VLBase/errorhandling/messagelist.h>

#include <QtTest>

#include <clocale>
#include <cmath>
#include <functional>
#include <limits>

using namespace Vela;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

/// All tokens up to the null string, which stays, one behind the other; an empty one as "<>".
QString tokens(const std::function<QString()>& next)
{
    QStringList all;
    for (QString token = next(); !token.isNull(); token = next())
        all.append(token.isEmpty() ? u"<>"_qs : token);
    return next().isNull() ? all.join(u' ') : u"goes on behind the end"_qs;
}

} // namespace

class TokenTest : public QObject
{
    Q_OBJECT

private:
    PrivateTemp m_temp;

private Q_SLOTS:
    void cutsAtDelimiters()
    {
        const std::tuple<QString, QString, QString> cases[] = {
            {u",,a"_qs, u","_qs, u"<> a"_qs},     {u"a,;b"_qs, u";,"_qs, u"a <> b"_qs},
            {u"a,b"_qs, QString(), u"a,b"_qs},    {QString(), u","_qs, QString()},
            {u"aäb→c"_qs, u"→ä"_qs, u"a b c"_qs},
        };
        for (const auto& [text, set, expected] : cases) {
            const std::wstring wide = set.toStdWString();
            Tokenizer a(text), b(text), c(text), d(text);
            QCOMPARE(tokens([&, s = set] { return a(s); }), expected);
            QCOMPARE(tokens([&] { return b(wide.c_str()); }), expected);
            QCOMPARE(tokens([&] { return c(wide.data(), wide.size()); }), expected);
            QCOMPARE(tokens([&, s = set] { return d(s, quint64(s.size())); }), expected);
        }
        const std::string bytes = ",,a;b";
        CTokenizer narrow(bytes);
        QVERIFY(narrow(",") == "" && narrow(",;") == "a" && narrow(";") == "b");
    }

    void formsOfTheDelimiters()
    {
        const QString text = QStringLiteral("a\tb\nc d") + QChar(u'\0') + u"e,f"_qs;
        Tokenizer usual(text), terminated(text), counted(text), wide(text), more(text);
        QCOMPARE(tokens([&] { return usual(); }), u"a b c d e,f"_qs);
        // The zero ends a terminated set and counts in a counted one.
        const QString withZero = QStringLiteral("\n") + QChar(u'\0') + u","_qs;
        QCOMPARE(tokens([&] { return terminated(withZero); }).count(u' '), 2);
        QCOMPARE(tokens([&] { return counted(withZero, 2); }).count(u' '), 3);
        QCOMPARE(tokens([&] { return wide(L"\n\0,", 3); }).count(u' '), 4);
        QCOMPARE(tokens([&] { return more(withZero, 1000); }).count(u' '), 4);
        const std::string bytes("a\0b,c", 5);
        QCOMPARE(CTokenizer(bytes)(","), std::string("a\0b", 3));

        // The set may change between calls, and a copy goes on alone.
        Tokenizer first(text);
        QCOMPARE(first(L"\n"), u"a\tb"_qs);
        Tokenizer second(first);
        QVERIFY(second(L" \n") == u"c" && first() == u"c");
        second = first;
        QCOMPARE(second(), u"d"_qs);
    }

    void textMayMove()
    {
        static_assert(std::is_constructible_v<Tokenizer, const QString&>);
        static_assert(!std::is_constructible_v<Tokenizer, QString>);
        static_assert(!std::is_constructible_v<CTokenizer, const char*>);
        QString text = u"a b c"_qs;
        std::string bytes = "a b c";
        Tokenizer next(text);
        CTokenizer narrow(bytes);
        QVERIFY(next() == u"a" && narrow(" ") == "a");
        text.detach();
        bytes.reserve(1000);
        QVERIFY(next() == u"b" && narrow(" ") == "b");
        text.truncate(1);
        bytes.resize(1);
        QVERIFY(next().isNull() && narrow(" ").empty());
    }

    void nullDelimitersAreReported()
    {
        ErrorHandler& handler = ErrorHandler::Instance();
        const QString text = u"a,b"_qs;
        const wchar_t* none = nullptr;
        // The list keeps the newest in front; the time behind the last "@" is left off.
        const auto recorded = [&](const QString& record) {
            bool atEnd = false;
            handler.InitGetNextMessage(atEnd, 0);
            const QString newest = handler.GetNextMessage(atEnd);
            return newest.left(newest.lastIndexOf(u'@')) == record;
        };
        QVERIFY(Tokenizer(text)(none) == text && recorded(QString()));
        handler.SetMessageMask(2, true);
        QVERIFY(Tokenizer(text)(none) == text);
        QVERIFY(recorded(u"!@ASSERTION FAILED ws!=0@basetypes/token@75@@"_qs));
        QVERIFY(Tokenizer(text)(none, 3) == text);
        QVERIFY(recorded(u"!@ASSERTION FAILED ws!=0@basetypes/token@111@@"_qs));
        handler.SetMessageMask(2, false);
    }

    void separatesFields()
    {
        const std::tuple<QString, QStringList, int, QStringList> cases[] = {
            {u"x = 1"_qs, {u"="_qs, u";"_qs}, 2, {u"x"_qs, u"1"_qs}},
            {u"a => b"_qs, {u"=>"_qs, u"=>"_qs}, 2, {u"a"_qs, u"b"_qs}},
            {u" \ta\t ;"_qs, {u";"_qs}, 1, {u"\ta\t"_qs}},
            {u"axbXc"_qs, {u"X"_qs, u"x"_qs}, 2, {u"axb"_qs, u"c"_qs}},
            {QString(), {u";"_qs}, 1, {QString()}},
        };
        for (const auto& [text, separators, count, fields] : cases) {
            QStringList parts = separators;
            const int written =
                separateString(text, parts.data(), static_cast<unsigned char>(count));
            QCOMPARE(parts, fields + separators.mid(written));
        }
    }

    void changesTexts()
    {
        const std::tuple<const char*, int, const char*> strips[] = {
            {"__a__", 0, "a__"}, {"__a__", 1, "__a"}, {"__a_b__", 2, "a_b"}, {"__a__", 3, "__a__"},
            {"___", 0, ""},      {"___", 1, ""},      {"", 2, ""},
        };
        for (const auto& [before, type, after] : strips) {
            QString text = QLatin1String(before);
            QCOMPARE(&strip(text, static_cast<stripType_>(type), L'_'), &text);
            QCOMPARE(text, QLatin1String(after));
        }
        const std::tuple<const char*, const char*, const char*, const char*> replacements[] = {
            {"aaa", "a", "aa", "aaaaaa"}, {"axxbxx", "xx", "", "ab"}, {"aaa", "aa", "b", "ba"},
            {"abc", "x", "y", "abc"},     {"abc", "", "y", "abc"},
        };
        for (const auto& [before, what, with, after] : replacements) {
            std::string text = before;
            const bool changed = replaceWith(text, what, with);
            QCOMPARE(text, std::string(after));
            QCOMPARE(changed, text != before);
            QVERIFY(replaceWith(text, text, text));
        }
        QVERIFY(isAsciiString(u"abc\u007f"_qs));
        QVERIFY(!isAsciiString(QString()) && !isAsciiString(u"abc\u0080"_qs));
    }

    void readsNumbers()
    {
        using Limits = std::numeric_limits<double>;
        const std::pair<double, std::vector<const char*>> cases[] = {
            {0.0,
             {"", "MHz", "\u00a07", "\u0661", "--1", "- 1", "0xg", "-1e-400", "0.00e99999",
              "1e-99999999999999999999", "0x0.001p-99999"}},
            {0.5, {",5", "0x.8"}},
            {1.0, {"1 234", "1e", "1e+x", "1/2"}},
            {1.5, {"1,5", "1.5,3", "1,5.3"}},
            {2.0, {"2_x/4", "2_1"}},
            {0.1, {"0.1"}},
            {5.0, {"5,"}},
            {7.0, {" \t\n+7"}},
            {-0.0015, {"-1,5e-3 Hz"}},
            {3.0, {"0x1,8p1"}},
            {2.25, {"2_1/4 MHz"}},
            {-0.5, {"-1_1/2"}},
            {3.25, {" 3 _ 1 /4 x"}},
            {infinity, {"1e400", "1e99999999999999999999", "0x1p99999", "inf"}},
            {-infinity, {"-1e400", "-Infinity"}},
            {Limits::max(), {"1.7976931348623157e308"}},
            {Limits::denorm_min(), {"4.9e-324", "0x1p-1074"}},
        };
        bool ok = false;
        for (const auto& [value, texts] : cases) {
            for (const char* text : texts) {
                // Exact: QCOMPARE would let the last digits go.
                QVERIFY2(toDoubleEx(QString::fromUtf8(text), &ok) == value && ok, text);
                QVERIFY(toDoubleEx(QString::fromUtf8(text), nullptr) == value);
            }
        }
        QVERIFY(std::isnan(toDoubleEx(u"NaN"_qs)));
        // Each hexadecimal digit weighs four of the exponent's.
        QCOMPARE(toDoubleEx(u"0x1%1p-400"_qs.arg(QString(399, u'0'))), infinity);
        for (const char* text : {"3_1/ 4", "2_1/0", "2_1/x"})
            QVERIFY2(toDoubleEx(QLatin1String(text), &ok) == 0.0 && !ok, text);
    }

    void localesPlayNoPart()
    {
        const QByteArray before = std::setlocale(LC_ALL, nullptr);
        const QLocale userBefore;
        for (const char* name : {"C.UTF-8", "de_DE.UTF-8", "German_Germany.1252", ""}) {
            std::setlocale(LC_ALL, name);
            for (const auto language : {QLocale::German, QLocale::Arabic, QLocale::C}) {
                QLocale::setDefault(QLocale(language));
                for (const char* text : {"1234,5", "1234.5", "1233_3/2"})
                    QCOMPARE(toDoubleEx(QLatin1String(text)), 1234.5);
            }
        }
        std::setlocale(LC_ALL, before.constData());
        QLocale::setDefault(userBefore);
    }
};

QTEST_GUILESS_MAIN(TokenTest)
#include "tst_token.moc"
