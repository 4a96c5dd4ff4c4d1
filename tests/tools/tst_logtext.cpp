// What becomes of the text of a line: cleaning, taking apart, counting, showing, splitting.

#include "tools/vlbase/log/gapwatch.h"
#include "tools/vlbase/log/linefilter.h"
#include "tools/vlbase/log/linerenderer.h"
#include "tools/vlbase/log/linesplitter.h"
#include "tools/vlbase/log/linetext.h"
#include "tools/vlbase/log/logline.h"
#include "tools/vlbase/log/ownnotice.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace vlbase::tool::log;

class LogTextTest : public QObject
{
    Q_OBJECT

private slots:
    void cleaning_data();
    void cleaning();
    void plainIsDecidedForEachByteInEachPlace();
    void cutting();
    void parsing_data();
    void parsing();
    void numbersInTheirRound_data();
    void numbersInTheirRound();
    void noticesComeBack();
    void gapsAreSeenOnce();
    void filtering_data();
    void filtering();
    void columns();
    void json();
    void splitting_data();
    void splitting();
};

namespace {

QByteArray toBytes(const std::string& text)
{
    return QByteArray::fromStdString(text);
}

std::string clean(const QByteArray& text, Cleaning cleaning)
{
    std::string out;
    appendClean(text.toStdString(), cleaning, out);
    return out;
}

std::string lineOf(int index, const char* rest)
{
    return std::to_string(index) + "\t2024-02-29 23:59:59\tUTC: 3600000000.000000\t" + rest;
}

} // namespace

void LogTextTest::cleaning_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("forFile");
    QTest::addColumn<QByteArray>("forTerminal");
    const QByteArray fffd = "\xEF\xBF\xBD";
    const auto same = [](const char* name, const QByteArray& text, const QByteArray& cleaned) {
        QTest::newRow(name) << text << cleaned << cleaned;
    };
    same("empty", "", "");
    same("tabs separate", "a\tb\t", "a\tb\t");
    same("line ends", "a\r\nb", "a\u240D\u240Ab");
    same("escape", "\x1b[2J and more text", "\u241B[2J and more text");
    same("delete", "seven b\x7f", "seven b\u2421");
    same("zero", QByteArray("a\0b", 3), "a\u2400b");
    same("control of 8 bits",
         "\xC2\x9B"
         "31m",
         fffd + "31m");
    same("valid beyond the first plane", "\xF0\x9F\x93\xA1 \xC3\xA4", "\xF0\x9F\x93\xA1 \xC3\xA4");
    same("replacement stays", fffd, fffd);
    // The Unicode Standard 15, tables 3-8 to 3-11.
    same("long forms", "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", fffd.repeated(8) + "A");
    same("surrogates", "\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", fffd.repeated(8) + "A");
    same("other ill-formed", "\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42",
         fffd.repeated(5) + "A" + fffd.repeated(2) + "B");
    same("cut off", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", fffd.repeated(4) + "A");
    same("cut off at the end", "ok\xF0\x9F\x93", "ok" + fffd);
    QTest::newRow("turned writing")
        << QByteArray("\u202Eabc\u2069") << QByteArray("\u202Eabc\u2069") << fffd + "abc" + fffd;
    QTest::newRow("line separator") << QByteArray("\u2028") << QByteArray("\u2028") << fffd;
}

void LogTextTest::cleaning()
{
    QFETCH(QByteArray, text);
    QTEST(toBytes(clean(text, Cleaning::ForFile)), "forFile");
    QTEST(toBytes(clean(text, Cleaning::ForTerminal)), "forTerminal");
}

void LogTextTest::plainIsDecidedForEachByteInEachPlace()
{
    for (std::size_t length = 1; length <= 17; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                // Neighbours at the edges of what is plain, where a carry would show.
                std::string text(length, place % 2 == 0 ? ' ' : '~');
                text[place] = static_cast<char>(byte);
                const bool expected = byte == '\t' || (byte >= ' ' && byte <= '~');
                if (isPlain(text) != expected)
                    QFAIL(qPrintable(QStringLiteral("byte %1 at %2").arg(byte).arg(place)));
            }
        }
    }
}

void LogTextTest::cutting()
{
    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xA1";
    const std::size_t ends[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
    for (std::size_t bytes = 0; bytes < std::size(ends); ++bytes)
        QCOMPARE(cutToWholeCharacters(text, bytes).size(), ends[bytes]);
    QCOMPARE(cutToWholeCharacters("\x80\x80\x80\x80\x80\x80\x80", 6).size(), std::size_t{6});
}

void LogTextTest::parsing_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("hasHeader");
    QTest::addColumn<int>("index");
    QTest::addColumn<qint64>("seconds");    // -1: no time
    QTest::addColumn<QByteArray>("fields"); // joined by '|'
    const QByteArray rest = "\tUTC: 0.000000\ts\tm\tError";
    const auto row = [&](const char* name, const QByteArray& text, int index, qint64 seconds,
                         const QByteArray& fields) {
        QTest::newRow(name) << text << true << index << seconds << fields;
    };
    const auto none = [](const char* name, const QByteArray& text) {
        QTest::newRow(name) << text << false << 0 << qint64{-1} << QByteArray();
    };
    // Seconds by `date -u -d ... +%s`.
    row("three fields", "100000\t2024-02-29 23:59:59" + rest + "\ta\tb\tc", 100000, 1709251199,
        "a|b|c");
    row("no field", "999998\t1970-01-01 00:00:00" + rest, 999998, 0, "");
    row("empty fields count", "100001\t2000-03-01 12:00:00" + rest + "\ta\t\t", 100001, 951912000,
        "a||");
    row("one empty field", "100001\t2100-02-28 00:00:00" + rest + "\t", 100001, 4107456000, "");
    row("no such day", "100001\t2023-02-29 00:00:00" + rest, 100001, -1, "");
    row("no such hour", "100001\t2024-02-29 24:00:00" + rest, 100001, -1, "");
    row("the owner's own", "------\t2024-02-29 23:59:59" + rest, 0, 1709251199, "");
    none("empty", "");
    none("too few fields", "100000\t2024-02-29 23:59:59\tUTC: 0.000000\ts\tm");
    none("five digits", "10000\t2024-02-29 23:59:59" + rest);
    none("number that is never given out", "999999\t2024-02-29 23:59:59" + rest);
    none("leading zero", "000001\t2024-02-29 23:59:59" + rest);
    none("blank for a tab", "100000 2024-02-29 23:59:59" + rest);
}

void LogTextTest::parsing()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, hasHeader);
    QFETCH(qint64, seconds);
    LogLine line;
    line.fields = {"left", "over"};
    const std::string held = text.toStdString();
    QCOMPARE(parseLogLine(held, line), hasHeader);
    QTEST(line.index, "index");
    QCOMPARE(line.seconds.value_or(-1), seconds);
    QByteArrayList fields;
    for (const std::string_view field : line.fields)
        fields << QByteArray(field.data(), static_cast<qsizetype>(field.size()));
    QTEST(fields.join('|'), "fields");
    if (hasHeader) {
        QCOMPARE(line.station, std::string_view("s"));
        QCOMPARE(line.module, std::string_view("m"));
        QCOMPARE(line.level, std::string_view("Error"));
    }
}

void LogTextTest::numbersInTheirRound_data()
{
    QTest::addColumn<int>("earlier");
    QTest::addColumn<int>("later");
    QTest::addColumn<qint64>("between");
    QTest::newRow("neighbours") << 100000 << 100001 << qint64{0};
    QTest::newRow("one missing") << 100005 << 100007 << qint64{1};
    QTest::newRow("into the turn") << 999998 << 100000 << qint64{0};
    QTest::newRow("in the turn") << 100000 << 100000 << qint64{0};
    QTest::newRow("over the turn, both missing") << 999998 << 100001 << qint64{2};
    QTest::newRow("before the turn") << 999997 << 100000 << qint64{1};
    QTest::newRow("backwards is almost a round") << 100007 << 100006 << qint64{899998};
}

void LogTextTest::numbersInTheirRound()
{
    QFETCH(int, earlier);
    QFETCH(int, later);
    QTEST(qint64{linesBetween(earlier, later)}, "between");
}

void LogTextTest::noticesComeBack()
{
    for (const int last : {100002, 100000, 999998, 500000}) {
        for (const std::uint64_t count : {1, 2, 3, 899999, 900000, 900001}) {
            const OwnNotice lost = noticeOfLost(count, last);
            std::string text = noticeLine(lost, "station");
            QCOMPARE(text.back(), '\n');
            text.pop_back();
            LogLine line;
            QVERIFY(parseLogLine(text, line));
            QCOMPARE(line.level, std::string_view("Warning"));
            QCOMPARE(lineIndex(text), 0);
            const auto read = parseNotice(line);
            QVERIFY(read && read->kind == OwnNotice::Kind::LinesLost);
            QCOMPARE(read->count, count);
            QCOMPARE(read->last, last);
        }
    }
    QCOMPARE(noticeOfLost(2, 100001).first, 100000);
    QCOMPARE(noticeOfLost(3, 100001).first, 100000);
    QCOMPARE(noticeOfLost(4, 100001).first, 999998);
    LogLine forged;
    const std::string text =
        lineOf(100007, "s\tvlbase log own\tWarning\t3 lines lost\t100001-100003\t");
    QVERIFY(parseLogLine(text, forged));
    QVERIFY2(!parseNotice(forged), "a line with a number is nobody's notice");
}

void LogTextTest::gapsAreSeenOnce()
{
    GapWatch watch;
    const auto lostBefore = [&](const std::string& text) {
        LogLine line;
        parseLogLine(text, line);
        const auto lost = watch.lookAt(line);
        return lost ? QStringLiteral("%1-%2").arg(lost->first).arg(lost->last) : QString();
    };
    const auto numbered = [](int index) { return lineOf(index, "s\tm\tEvent\ta"); };
    QCOMPARE(lostBefore(numbered(100500)), QString());
    QCOMPARE(lostBefore(numbered(100501)), QString());
    QCOMPARE(lostBefore(numbered(100504)), QStringLiteral("100502-100503"));
    QCOMPARE(lostBefore(noticeLine(noticeOfLost(3, 100507), "s")), QString());
    QCOMPARE(lostBefore(numbered(100508)), QString());
    QCOMPARE(lostBefore(numbered(100508)), QString());
    QCOMPARE(lostBefore("as it is"), QString());
    OwnNotice begins;
    begins.kind = OwnNotice::Kind::LogBegins;
    begins.first = 100000;
    QCOMPARE(lostBefore(noticeLine(begins, "s")), QString());
    QCOMPARE(lostBefore(numbered(100003)), QString());
    // One that was put in as it is says nothing; two in a row are a log that has begun anew.
    QCOMPARE(lostBefore(numbered(100001)), QString());
    QCOMPARE(lostBefore(numbered(100004)), QString());
    QCOMPARE(lostBefore(numbered(700000)), QString());
    QCOMPARE(lostBefore(numbered(700001)), QString());
    QCOMPARE(lostBefore(numbered(700003)), QStringLiteral("700002-700002"));
}

void LogTextTest::filtering_data()
{
    QTest::addColumn<QStringList>("modules");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("onlyErrors");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("passes");
    const QByteArray error =
        QByteArray::fromStdString(lineOf(100001, "North\tReceiver 1\tError\tAntenne \u00C4"));
    const QByteArray trace =
        QByteArray::fromStdString(lineOf(100001, "North\tReceiver 1\tTrace\ta"));
    QTest::newRow("no condition") << QStringList() << QString() << false << error << true;
    QTest::newRow("no header, no condition")
        << QStringList() << QString() << false << QByteArray("x") << true;
    QTest::newRow("no header, asked for one")
        << QStringList() << QString() << true << QByteArray("x") << false;
    QTest::newRow("level") << QStringList() << QString() << true << error << true;
    QTest::newRow("other level") << QStringList() << QString() << true << trace << false;
    QTest::newRow("module in other case")
        << QStringList{QStringLiteral("x"), QStringLiteral("receiver 1")} << QString() << false
        << error << true;
    QTest::newRow("part of a module")
        << QStringList{QStringLiteral("Receiver")} << QString() << false << error << false;
    QTest::newRow("text in other case")
        << QStringList() << QStringLiteral("antenne \u00E4") << false << error << true;
    QTest::newRow("other text") << QStringList() << QStringLiteral("mast") << false << error
                                << false;
}

void LogTextTest::filtering()
{
    QFETCH(QStringList, modules);
    QFETCH(QString, text);
    QFETCH(bool, onlyErrors);
    QFETCH(QByteArray, line);
    LineFilter filter;
    filter.setModules(modules);
    filter.setText(text);
    if (onlyErrors)
        filter.setLevels({Level::Error});
    LogLine parsed;
    const std::string held = line.toStdString();
    const bool hasHeader = parseLogLine(held, parsed);
    QTEST(filter.passes(held, hasHeader ? &parsed : nullptr), "passes");
}

void LogTextTest::columns()
{
    const auto shown = [](Colour colour, const std::vector<std::string>& lines) {
        const auto renderer = makeColumnRenderer(TimeShown::Utc, colour);
        std::string out;
        for (const std::string& text : lines) {
            LogLine line;
            if (parseLogLine(text, line))
                renderer->appendLine(line, out);
            else
                renderer->appendText(text, out);
        }
        renderer->appendLost(noticeOfLost(1, 100002), out);
        return QString::fromStdString(out);
    };
    QCOMPARE(
        shown(Colour::Never,
              {lineOf(100000, "s\tm\tEvent\ta\t\t"),
               lineOf(100001,
                      "\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\tm\tWarning\ta\t\tc"),
               lineOf(100002, "s\tA module with a name that is too long\tTrace\t\x1b[31m"),
               "as\tit is"}),
        QStringLiteral(
            u"2024-02-29 23:59:59  Event    s         m             a\n"
            "2024-02-29 23:59:59  Warning  \u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4\u00E4  "
            "m             a |  | c\n"
            "2024-02-29 23:59:59  Trace    s          A module with a name that i\u2026  "
            "\u241B[31m\n"
            "as it is\n"
            "--- 1 line lost (100002) ---\n"));
    const QString coloured = shown(Colour::PerLevel, {lineOf(100000, "s\tm\tError\ta")});
    QVERIFY(coloured.contains(QStringLiteral("\x1b[1;31mError\x1b[0m  ")));
    QCOMPARE(coloured.count(QStringLiteral("\x1b[0m")), 4);
}

void LogTextTest::json()
{
    const auto renderer = makeJsonRenderer();
    const auto object = [&](const std::string& text) {
        LogLine line;
        std::string out;
        if (parseLogLine(text, line))
            renderer->appendLine(line, out);
        else
            renderer->appendText(text, out);
        return QJsonDocument::fromJson(toBytes(out)).object();
    };
    const QJsonObject line = object(lineOf(100000, "s \"1\"\tm\\\tData\ta\x01\t\xFF"));
    QCOMPARE(line[u"index"].toInt(), 100000);
    QCOMPARE(line[u"time"].toString(), QStringLiteral("2024-02-29T23:59:59Z"));
    QCOMPARE(line[u"zoneOffsetUs"].toInteger(), qint64{3600000000});
    QCOMPARE(line[u"station"].toString(), QStringLiteral("s \"1\""));
    QCOMPARE(line[u"module"].toString(), QStringLiteral("m\\"));
    QCOMPARE(line[u"fields"].toArray(),
             QJsonArray({QStringLiteral(u"a\u2401"), QStringLiteral(u"\uFFFD")}));
    QCOMPARE(object("as\tit is")[u"text"].toString(), QStringLiteral("as\tit is"));
    std::string lost;
    renderer->appendLost(noticeOfLost(3, 100008), lost);
    QCOMPARE(QJsonDocument::fromJson(toBytes(lost)).object()[u"first"].toInt(), 100006);
}

void LogTextTest::splitting_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QByteArray>("lines"); // "<line+cut>" each
    QTest::newRow("nothing") << QByteArray() << QByteArray();
    QTest::newRow("two lines") << QByteArray("a\nb\n") << QByteArray("<a+0><b+0>");
    QTest::newRow("last without end") << QByteArray("a\nb") << QByteArray("<a+0><b+0>");
    QTest::newRow("empty lines") << QByteArray("\n\na\n") << QByteArray("<+0><+0><a+0>");
    QTest::newRow("DOS line ends") << QByteArray("a\r\n\r\nb\r\n") << QByteArray("<a+0><+0><b+0>");
    QTest::newRow("carriage returns inside")
        << QByteArray("a\r\rb\r\r\nc\r") << QByteArray("<a\r\rb\r+0><c+0>");
    QTest::newRow("as long as allowed") << QByteArray("12345678\n") << QByteArray("<12345678+0>");
    QTest::newRow("too long") << QByteArray("1234567890\na\n") << QByteArray("<12345678+2><a+0>");
    QTest::newRow("too long at the end") << QByteArray("123456789\r") << QByteArray("<12345678+1>");
    QTest::newRow("not cut in a character")
        << QByteArray("1234567\xC3\xA4\n") << QByteArray("<1234567+2>");
}

void LogTextTest::splitting()
{
    QFETCH(QByteArray, stream);
    QFETCH(QByteArray, lines);
    for (const qsizetype step : {qsizetype{1}, qsizetype{3}, qsizetype{1000}}) {
        QByteArray got;
        LineSplitter splitter(8, [&](std::string_view line, std::size_t cut) {
            got += '<' + QByteArray(line.data(), static_cast<qsizetype>(line.size())) + '+' +
                   QByteArray::number(static_cast<qulonglong>(cut)) + '>';
        });
        for (qsizetype at = 0; at < stream.size(); at += step)
            splitter.feed(stream.mid(at, step).toStdString());
        splitter.finish();
        QCOMPARE(got, lines);
    }
}

QTEST_GUILESS_MAIN(LogTextTest)

#include "tst_logtext.moc"
