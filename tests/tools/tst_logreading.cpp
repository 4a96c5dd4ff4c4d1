// What reads logs: the filter language, the index and the files that are followed.

#include "tests/support/toolrun.h"
#include "tools/logreading/lineexport.h"
#include "tools/logreading/logseries.h"
#include "tools/logreading/merge.h"
#include "tools/logreading/statistics.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vlbase::logreading;

class LogReadingTest : public QObject
{
    Q_OBJECT

private slots:
    void filters_data();
    void filters();
    void faultsHaveAPlace_data();
    void faultsHaveAPlace();
    void quotedIsFound();
    void runsFindWhatEachLineSays();
    void aCancelledRunEnds();
    void seriesIsReadThroughRotations();
    void whatWasLeftIsNotNew();
    void cutAndWrittenAnew();
    void damagedIsShownAsItIs();
    void startsAtTheEnd();
    void mergesCountsAndExports();
    void verbsTellByTheirStatus();
};

namespace {

std::string lineOf(int number, const char* time, const char* rest)
{
    return std::to_string(number) + "\t2026-11-22 " + time + "\tUTC: 0.000000\t" + rest + "\n";
}

void write(const QString& name, const std::string& text,
           QIODevice::OpenMode mode = QIODevice::Append)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly | mode));
    QCOMPARE(file.write(text.data(), static_cast<qint64>(text.size())),
             static_cast<qint64>(text.size()));
}

LogSeries::Update readAll(LogSeries& series)
{
    auto last = LogSeries::Update::Unchanged;
    for (;;) {
        const auto update = series.update();
        if (update == LogSeries::Update::Unchanged || update == LogSeries::Update::Failed)
            return last;
        last = update == LogSeries::Update::Reset ? update : std::max(last, update);
    }
}

QByteArrayList textsOf(const LogView& view)
{
    QByteArrayList texts;
    LineReader reader;
    for (std::int64_t row = 0; row < view.rows(); ++row) {
        const auto found = view.line(row);
        const auto text = reader.text(found.part->file, found.line);
        texts << QByteArray(text.data(), static_cast<qsizetype>(text.size()));
    }
    return texts;
}

Filter parsed(const QString& text)
{
    FilterFault fault;
    const auto now = QDateTime(QDate(2026, 11, 22), QTime(12, 0), Qt::UTC);
    const auto filter = Filter::parse(text, fault, now);
    return filter ? *filter : (qWarning("%s", qPrintable(fault.expected)), Filter());
}

const std::string manyLines[] = {
    lineOf(100000, "10:00:00", "north\tReceiver 1\tError\tno carrier\t21:50\t"),
    lineOf(100001, "11:00:00", "north\tScannerA\tWarning\tM\u00C4ST \u00B0C\ta/b\tq\"\\"),
    lineOf(100002, "11:50:00", "south\tscanner\tEvent\tok\t\tx\tmore tabs"),
    "------\t2026-11-22 11:51:00\tUTC: 0.000000\tnorth\tvlbase log own\tWarning\t3 lines "
    "lost\t100003-100005\t\n",
    "plain text of an error\n",
};

} // namespace

void LogReadingTest::filters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("holds"); // for which of the lines above
    const auto row = [](const char* text, const char* holds) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromLatin1(holds);
    };
    row("", "01234");
    row(" \t ", "01234");
    row("error", "04");
    row("CARRIER", "0");
    row("utc", "");
    row("10000", "3");
    row("\"receiver 1\"", "0");
    row("no carrier", "0");
    row("no and carrier or ok", "02");
    row("error or ok and plain", "04");
    row("(error or ok) and not plain", "02");
    row("NOT error", "123");
    row("not not error", "04");
    row("not(level:warning)", "024");
    row("level:error,WARNING", "013");
    row("level: error , warning north", "013");
    row("level:err", "");
    row("level:/^Err/", "0");
    row("module:Scanner*", "12");
    row("module:scanner", "2");
    row("module:scanner?", "1");
    row("module:\"scanner?\"", "");
    row("module:*own or station:s*h", "23");
    row("field1:ok", "2");
    row("field2:21:50", "0");
    row("field3:/tabs$/", "2");
    row("text:*m\u00E4st*", "1");
    row("m\u00E4st", "1");
    row("/m\u00C4st/i", "1");
    row("/m\u00C4st/", "");
    row("/a\\/b/", "1");
    row("\"q\\\"\\\\\"", "1");
    row("/^no \\w+r$/", "0");
    row("/carrier|plain/", "04");
    row("/ca(x)?r{2}i+/", "0");
    row("number:100000-100001", "01");
    row("number:100001,100002", "12");
    row("number:10000?", "012");
    row("not number:1*", "34");
    row("after:2026-11-22T11:00", "123");
    row("before:2026-11-22T11:00:00Z", "0");
    row("before:2026-11-22T11:00:00+01:00", "");
    row("after:-15m", "23");
    row("after:-2h before:2026-11-22T11:30:00", "01");
    row("field1:\"\"", "4");
    row("text:\"\"", "0234");
    row("station:\"\"", "4");
    row("\"and\"", "");
}

void LogReadingTest::filters()
{
    QFETCH(QString, text);
    const Filter filter = parsed(text);
    // By the fields alone, and by index and search.
    QTemporaryDir folder;
    QString byFields;
    vlbase::logging::LogLine scratch;
    for (std::size_t i = 0; i < std::size(manyLines); ++i) {
        if (filter.holds(fieldsOf(manyLines[i], scratch)))
            byFields += QString::number(i);
        write(folder.filePath(QStringLiteral("log")), manyLines[i]);
    }
    QTEST(byFields, "holds");
    LogSeries series(folder.filePath(QStringLiteral("log")).toStdString(),
                     LogSeries::Extent::Rotated);
    QString reason;
    QVERIFY2(series.open(reason), qPrintable(reason));
    readAll(series);
    FilterRun run(series.view(), filter);
    FilterHits hits;
    QString byRun;
    while (run.wait(hits)) {
        for (const std::uint32_t row : hits.rows)
            byRun += QString::number(hits.firstRow + row);
    }
    QTEST(byRun, "holds");
}

void LogReadingTest::faultsHaveAPlace_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* text, int column, const char* expected) {
        QTest::newRow(text) << column << QString::fromLatin1(expected);
    };
    row("(a or b", 8, "')'");
    row("a )", 3, "'and', 'or'");
    row("()", 2, "a word");
    row("a and", 6, "a word");
    row("or a", 1, "a word");
    row("a or or b", 6, "a word");
    row("not", 4, "a word");
    row("\"abc", 5, "'\"'");
    row("/abc", 5, "'/'");
    row("a /b(/ c", 6, "a regular expression");
    row("modul:x", 1, "one of the fields number, level");
    row("a level:", 9, "a value");
    row("level:error,", 13, "a value");
    row("level:or", 7, "a value");
    row("a : b : c", 1, "one of the fields");
    row("number:x", 8, "a number");
    row("number:2-1", 8, "a number");
    row("after:yesterday", 7, "a time");
    row("after:2026-02-30", 7, "a time");
    row("after:/x/", 7, "a value");
    row(",", 1, "a word");
}

void LogReadingTest::faultsHaveAPlace()
{
    QFETCH(int, column);
    QFETCH(QString, expected);
    FilterFault fault;
    QVERIFY(!Filter::parse(QString::fromUtf8(QTest::currentDataTag()), fault));
    QVERIFY2(fault.expected.startsWith(expected), qPrintable(fault.expected));
    QCOMPARE(fault.column, column);
    const QString deep = QStringLiteral("(").repeated(100000);
    QVERIFY(!Filter::parse(deep, fault));
}

void LogReadingTest::quotedIsFound()
{
    vlbase::logging::LogLine scratch;
    for (const char* text :
         {"plain", "or", "a b", "a\"b", "a\\\"", "/x/", "x:y", "(", "a,b", "*"}) {
        const LineFields line = fieldsOf(text, scratch);
        const QString quoted = filterQuoted(QString::fromUtf8(text));
        QVERIFY2(parsed(quoted).holds(line), qPrintable(quoted));
        QVERIFY2(parsed(QStringLiteral("field3:") + quoted).holds(line), qPrintable(quoted));
    }
}

void LogReadingTest::runsFindWhatEachLineSays()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    std::string text;
    constexpr int count = 150000; // more than two blocks of the index
    for (int i = 0; i < count; ++i)
        text += lineOf(100000 + i, "10:00:00", i % 3 == 0 ? "s\tm\tError\t" : "s\tm\tEvent\t") +
                "x" + std::to_string(i) + "\n";
    write(name, text);
    LogSeries series(name.toStdString(), LogSeries::Extent::Single);
    QString reason;
    QVERIFY(series.open(reason));
    readAll(series);
    QCOMPARE(series.view().rows(), count * 2);
    for (const char* wanted : {"x149999", "level:error", "x1*", "/x14999[0-9]/", "text:x70000"}) {
        vlbase::logging::LogLine scratch;
        const Filter filter = parsed(QString::fromLatin1(wanted));
        QList<std::int64_t> found;
        QList<std::int64_t> expected;
        FilterRun run(series.view(), filter, {}, 1001, 3);
        FilterHits hits;
        while (run.wait(hits)) {
            for (const std::uint32_t row : hits.rows)
                found << hits.firstRow + row;
        }
        std::int64_t row = 0;
        for (std::string_view rest = text; !rest.empty(); ++row) {
            const std::size_t end = rest.find('\n') + 1;
            if (row >= 1001 && filter.holds(fieldsOf(rest.substr(0, end), scratch)))
                expected << row;
            rest.remove_prefix(end);
        }
        QCOMPARE(found, expected);
    }
}

void LogReadingTest::aCancelledRunEnds()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    write(name, std::string(3'000'000, '\n'));
    LogSeries series(name.toStdString(), LogSeries::Extent::Single);
    QString reason;
    QVERIFY(series.open(reason));
    readAll(series);
    FilterRun run(series.view(), parsed(QStringLiteral("/(a+)+b/")));
    run.cancel();
    QTRY_VERIFY(run.isFinished());
    QVERIFY(run.progress() < 1.0);
    FilterHits hits;
    while (run.wait(hits))
        QVERIFY(hits.rows.empty());
}

void LogReadingTest::seriesIsReadThroughRotations()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    const auto numbered = [&](int i) { return name + QLatin1Char('.') + QString::number(i); };
    write(numbered(2), "a\nb\n");
    write(name, "c\n"); // the first name is free: a rotation was cut off
    LogSeries series(name.toStdString(), LogSeries::Extent::Rotated);
    QString reason;
    QVERIFY(series.open(reason));
    readAll(series);
    QCOMPARE(textsOf(series.view()), (QByteArrayList{"a", "b", "c"}));
    const LinePlace place = series.view().placeOf(2);

    write(name, "d\n");
    QVERIFY(QFile::rename(numbered(2), numbered(3)));
    QVERIFY(QFile::rename(name, numbered(2)));
    write(numbered(1), "e\n");
    write(name, "f\nhalf");
    readAll(series);
    QCOMPARE(textsOf(series.view()), (QByteArrayList{"a", "b", "c", "d", "e", "f"}));
    write(name, " line\n");
    readAll(series);
    QCOMPARE(textsOf(series.view()).constLast(), QByteArray("half line"));
    QCOMPARE(series.view().rowOf(place), 2);
    QVERIFY(vlbase::tool::platform::removeFile(numbered(3).toStdString()));
    QVERIFY(series.dropRemoved());
    QCOMPARE(textsOf(series.view()).constFirst(), QByteArray("c"));
    QCOMPARE(series.view().rowOf(place), 0);
    QVERIFY(vlbase::tool::platform::removeFile(name.toStdString()));
    readAll(series);
    QCOMPARE(series.view().rows(), 5);
}

void LogReadingTest::whatWasLeftIsNotNew()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    write(name + QStringLiteral(".1"), "old\n");
    write(name + QStringLiteral(".7"), "of a higher keep\n");
    write(name, "a\n");
    LogSeries series(name.toStdString(), LogSeries::Extent::Single);
    QString reason;
    QVERIFY(series.open(reason));
    readAll(series);
    // Moved away by hand, and made anew by its owner.
    QVERIFY(QFile::rename(name, folder.filePath(QStringLiteral("elsewhere"))));
    readAll(series);
    write(name, "b\n");
    readAll(series);
    QCOMPARE(textsOf(series.view()), (QByteArrayList{"a", "b"}));
}

void LogReadingTest::cutAndWrittenAnew()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    write(name, "one\ntwo\n");
    LogSeries series(name.toStdString(), LogSeries::Extent::Single);
    QString reason;
    QVERIFY(series.open(reason));
    readAll(series);
    write(name, "cut\n", QIODevice::Truncate);
    QCOMPARE(readAll(series), LogSeries::Update::Reset);
    QCOMPARE(textsOf(series.view()), QByteArrayList{"cut"});
    write(name, "longer than it was\n", QIODevice::Truncate);
    QCOMPARE(readAll(series), LogSeries::Update::Reset);
    QCOMPARE(textsOf(series.view()), QByteArrayList{"longer than it was"});
}

void LogReadingTest::damagedIsShownAsItIs()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    const std::string huge = std::string(10'000'000, 'x') + "needle";
    write(name, "\xff\xfe\n" + std::string("\0\t\t\n", 4) + huge + "\n\n\xc3");
    LogSeries series(name.toStdString(), LogSeries::Extent::Rotated);
    QString reason;
    QVERIFY(series.open(reason));
    readAll(series);
    series.takeHalfLines();
    const QByteArrayList texts = textsOf(series.view());
    QCOMPARE(texts.size(), 5);
    QCOMPARE(texts[0], QByteArray("\xff\xfe"));
    QCOMPARE(texts[1], QByteArray("\0\t\t", 3));
    QVERIFY(texts[2] == QByteArray::fromStdString(huge));
    QCOMPARE(texts[4], QByteArray("\xc3"));
    FilterRun run(series.view(), parsed(QStringLiteral("needle")));
    FilterHits hits;
    QVERIFY(run.wait(hits));
    QVERIFY(hits.rows == std::vector<std::uint32_t>{2});

    QVERIFY(!LogSeries(folder.path().toStdString(), LogSeries::Extent::Single).open(reason));
    QVERIFY(!reason.isEmpty());
    QVERIFY(!LogSeries(name.toStdString() + "x", LogSeries::Extent::Single).open(reason));
}

void LogReadingTest::startsAtTheEnd()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    write(name + QStringLiteral(".1"), "a\nb\nc\n");
    write(name, "d\ne\nhalf");
    for (const int count : {0, 1, 2, 3, 5, 9}) {
        LogSeries series(name.toStdString(), LogSeries::Extent::Rotated);
        QString reason;
        QVERIFY(series.open(reason));
        series.startAtEnd(count);
        readAll(series);
        QCOMPARE(textsOf(series.view()),
                 (QByteArrayList{"a", "b", "c", "d", "e"}).last(std::min(count, 5)));
    }
}

void LogReadingTest::mergesCountsAndExports()
{
    QTemporaryDir folder;
    std::vector<LogView> views;
    const std::string texts[] = {
        manyLines[0] + manyLines[4] + lineOf(100003, "11:30:00", "north\tr\tEvent\tx,\t\"\t"),
        manyLines[1] + lineOf(100002, "11:30:00", "a\tb\tEvent") + manyLines[3]};
    for (const std::string& text : texts) {
        const QString name = folder.filePath(QString::number(views.size()));
        write(name, text);
        LogSeries series(name.toStdString(), LogSeries::Extent::Single);
        QString reason;
        QVERIFY(series.open(reason));
        readAll(series);
        views.push_back(series.view());
    }
    Merge merge(views, Filter());
    QString order;
    for (Merge::Row row; merge.next(row);)
        order += QStringLiteral("%1%2 ").arg(row.log).arg(row.row);
    QCOMPARE(order, QStringLiteral("00 01 10 02 11 12 "));

    Statistics statistics;
    for (const LogView& view : views)
        statistics.add(view, parsed(QStringLiteral("not level:warning")));
    QCOMPARE(statistics.lines, 4);
    QCOMPARE(statistics.lost, 2U + 3U); // by the numbers, and by the owner's notice
    QCOMPARE(statistics.byStation["north"], 2);
    QCOMPARE(statistics.byMinute.size(), std::size_t{2});
    QCOMPARE(*statistics.last - *statistics.first, 5400);

    LineExport csv(ExportFormat::Csv);
    std::string out;
    csv.begin(out);
    csv.append("100003\t2026-11-22 11:30:00\tUTC: 0.000000\ts\tm\tEvent\tx,\t\"\ta\tb\r\n", out);
    csv.append("plain", out);
    QCOMPARE(out, std::string("number,time,zone,station,module,level,field1,field2,field3\r\n"
                              "100003,2026-11-22 11:30:00,UTC: 0.000000,s,m,Event,\"x,\",\"\"\"\""
                              ",a\tb\r\n,,,,,,,,plain\r\n"));
}

void LogReadingTest::verbsTellByTheirStatus()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("log"));
    write(name + QStringLiteral(".1"), manyLines[0]);
    write(name, manyLines[1] + "no end");
    const auto run = [&](const char* words) {
        return runTool(QString::fromLatin1(words).split(u' ') << name);
    };
    const QString all = QString::fromStdString(manyLines[0] + manyLines[1] + "no end\n");
    QCOMPARE(run("log show").output, all);
    QCOMPARE(run("log show --single --filter receiver").status, 1);
    QVERIFY(run("log show --json --filter level:error").output.startsWith(u"{\"index\":100000,"));
    QCOMPARE(run("log show --filter (").status, 2);
    QCOMPARE(run("log show --csv --json").status, 2);
    QCOMPARE(run("log show nix").status, 2);
    const QString copy = folder.filePath(QStringLiteral("copy"));
    QCOMPARE(
        runTool({QStringLiteral("log"), QStringLiteral("show"), QStringLiteral("-o"), copy, name})
            .status,
        0);
    QFile file(copy);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()), all);
    QVERIFY(run("log stats").output.startsWith(u"3 lines, 0 lost\n"));
    QVERIFY(run("log stats --json").output.contains(u"\"lines\":3"));
    QCOMPARE(run("log stats --filter number:1").status, 1);
}

QTEST_MAIN(LogReadingTest)
#include "tst_logreading.moc"
