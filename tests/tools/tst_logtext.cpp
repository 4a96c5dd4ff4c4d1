// What becomes of the text of a line: cleaning, taking apart, counting, showing, splitting.

#include "tools/vlbase/log/columnrenderer.h"
#include "tools/vlbase/log/linesplitter.h"

#include <VLBase/logging/gapwatch.h>
#include <VLBase/logging/linetext.h>
#include <VLBase/logging/logline.h>
#include <VLBase/logging/ownernotice.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace vlbase::logging;
using namespace vlbase::tool::log;

class LogTextTest : public QObject
{
    Q_OBJECT

private slots:
    void cleaning();
    void plainIsDecidedForEachByteInEachPlace();
    void parsing();
    void noticesComeBack();
    void gapsAreSeenOnce();
    void columns();
    void json();
    void splitting();
};

namespace {

QByteArray toBytes(const std::string& text)
{
    return QByteArray::fromStdString(text);
}

QByteArray clean(const QByteArray& text, Cleaning cleaning)
{
    std::string out;
    appendClean(text.toStdString(), cleaning, out);
    return toBytes(out);
}

std::string lineOf(int index, const char* rest)
{
    return std::to_string(index) + "\t2024-02-29 23:59:59\tUTC: 3600000000.000000\t" + rest;
}

} // namespace

void LogTextTest::cleaning()
{
    const QByteArray fffd = "\xEF\xBF\xBD";
    struct Case
    {
        QByteArray text;
        QByteArray forFile;
        QByteArray forTerminal = forFile;
    };
    const Case cases[] = {
        {"", ""},
        {"a\tb\t", "a\tb\t"},
        {"a\r\nb", "a\u240D\u240Ab"},
        {"\x1b[2J and more text", "\u241B[2J and more text"},
        {"seven b\x7f", "seven b\u2421"},
        {QByteArray("a\0b", 3), "a\u2400b"},
        {"\xC2\x9B!", fffd + "!"}, // a control character of 8 bits
        {"\xF0\x9F\x93\xA1 \xC3\xA4", "\xF0\x9F\x93\xA1 \xC3\xA4"},
        {fffd, fffd},
        // The Unicode Standard 15, tables 3-8 to 3-11.
        {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41", fffd.repeated(8) + "A"},
        {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41", fffd.repeated(8) + "A"},
        {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42", fffd.repeated(5) + "A" + fffd.repeated(2) + "B"},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", fffd.repeated(4) + "A"},
        {"ok\xF0\x9F\x93", "ok" + fffd},
        {"\u202Eabc\u2069", "\u202Eabc\u2069", fffd + "abc" + fffd}, // turns the writing
        {"\u2028", "\u2028", fffd}};
    for (const Case& each : cases) {
        QCOMPARE(clean(each.text, Cleaning::ForFile), each.forFile);
        QCOMPARE(clean(each.text, Cleaning::ForTerminal), each.forTerminal);
    }

    const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xA1";
    const std::size_t ends[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
    for (std::size_t bytes = 0; bytes < std::size(ends); ++bytes)
        QCOMPARE(cutToWholeCharacters(text, bytes).size(), ends[bytes]);
    QCOMPARE(cutToWholeCharacters("\x80\x80\x80\x80\x80\x80\x80", 6).size(), std::size_t{6});
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

void LogTextTest::parsing()
{
    struct Case
    {
        std::string start;
        std::string end;
        int index;
        qint64 seconds; // by `date -u -d ... +%s`; -1: no time
        const char* fields;
    };
    const Case cases[] = {{"100000\t2024-02-29 23:59:59", "\ta\tb\tc", 100000, 1709251199, "a|b|c"},
                          {"999998\t1970-01-01 00:00:00", "", 999998, 0, ""},
                          {"100001\t2000-03-01 12:00:00", "\ta\t\t", 100001, 951912000, "a||"},
                          {"100001\t2100-02-28 00:00:00", "\t", 100001, 4107456000, ""},
                          {"100001\t2023-02-29 00:00:00", "", 100001, -1, ""},
                          {"100001\t2024-02-29 24:00:00", "", 100001, -1, ""},
                          {"------\t2024-02-29 23:59:59", "", 0, 1709251199, ""}};
    const std::string middle = "\tUTC: 0.000000\ts\tm\tError";
    LogLine line;
    for (const Case& each : cases) {
        line.fields = {"left", "over"};
        const std::string text = each.start + middle + each.end;
        QVERIFY2(parseLogLine(text, line), text.c_str());
        QCOMPARE(line.index, each.index);
        QCOMPARE(line.seconds.value_or(-1), each.seconds);
        QByteArrayList fields;
        for (const std::string_view field : line.fields)
            fields << QByteArray(field.data(), static_cast<qsizetype>(field.size()));
        QCOMPARE(fields.join('|'), QByteArray(each.fields));
        QVERIFY(line.station == "s" && line.module == "m" && line.level == "Error");
    }
    QVERIFY(!parseLogLine("", line));
    QVERIFY(!parseLogLine("100000\t2024-02-29 23:59:59\tUTC: 0.000000\ts\tm", line));
    for (const char* index : {"10000\t", "999999\t", "000001\t", "100000 "})
        QVERIFY2(!parseLogLine(index + ("2024-02-29 23:59:59" + middle), line), index);
}

void LogTextTest::noticesComeBack()
{
    for (const int last : {100002, 100000, 999998, 500000}) {
        for (const std::uint64_t count : {1, 2, 3, 899999, 900000, 900001}) {
            const OwnerNotice lost = noticeOfLost(count, last);
            std::string text = noticeLine(lost, "station");
            QCOMPARE(text.back(), '\n');
            text.pop_back();
            LogLine line;
            QVERIFY(parseLogLine(text, line));
            QCOMPARE(line.level, std::string_view("Warning"));
            QCOMPARE(lineIndex(text), 0);
            const auto read = parseNotice(line);
            QVERIFY(read && read->kind == OwnerNotice::Kind::LinesLost);
            QCOMPARE(read->count, count);
            QCOMPARE(read->last, last);
        }
    }
    const int between[][3] = {{100000, 100001, 0},     {100005, 100007, 1}, {999998, 100000, 0},
                              {100000, 100000, 0},     {999998, 100001, 2}, {999997, 100000, 1},
                              {100007, 100006, 899998}}; // almost a round
    for (const auto& [earlier, later, count] : between)
        QCOMPARE(int(linesBetween(earlier, later)), count);
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
    OwnerNotice begins;
    begins.kind = OwnerNotice::Kind::LogBegins;
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

void LogTextTest::splitting()
{
    const std::pair<QByteArray, QByteArray> cases[] = {// a stream, and "<line+cut>" each
                                                       {"", ""},
                                                       {"a\nb", "<a+0><b+0>"},
                                                       {"\n\na\n", "<+0><+0><a+0>"},
                                                       {"a\r\n\r\nb\r\n", "<a+0><+0><b+0>"},
                                                       {"a\r\rb\r\r\nc\r", "<a\r\rb\r+0><c+0>"},
                                                       {"12345678\n", "<12345678+0>"},
                                                       {"1234567890\na\n", "<12345678+2><a+0>"},
                                                       {"123456789\r", "<12345678+1>"},
                                                       {"1234567\xC3\xA4\n", "<1234567+2>"}};
    for (const auto& [stream, lines] : cases) {
        for (const qsizetype step : {1, 3, 1000}) {
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
}

QTEST_GUILESS_MAIN(LogTextTest)

#include "tst_logtext.moc"
