// `vlbase band` and `vlbase time`: what is typed, what comes out, and with which status.

#include "tools/vlbase/band/frequencytext.h"
#include "tools/vlbase/band/plan.h"
#include "tools/vlbase/time/stamptext.h"

#include <QDomDocument>
#include <QDomElement>
#include <QDomNodeList>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using namespace vlbase::tool;

namespace {

constexpr double none = -1.0;

struct Outcome
{
    int status;
    QByteArray output;
    QByteArray errors;
};

Outcome runTool(const QStringList& arguments)
{
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vlbase"), arguments);
    if (!process.waitForFinished())
        return {-1, {}, process.errorString().toUtf8()};
    return {process.exitCode(), process.readAllStandardOutput().replace("\r\n", "\n"),
            process.readAllStandardError()};
}

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(u' ');
}

} // namespace

class BandVerbsTest : public QObject
{
    Q_OBJECT

private slots:
    void frequencies_data();
    void frequencies();
    void names();
    void answers_data();
    void answers();
    void machineForms();
    void pictureHoldsEveryChannel();
    void stampsReadBack();
    void noStamps_data();
    void noStamps();
};

void BandVerbsTest::frequencies_data()
{
    QTest::addColumn<double>("hertz");
    const auto row = [](const char* text, double hertz) { QTest::newRow(text) << hertz; };
    row("935.2 MHz", 935'200'000.0);
    row(" 935.2mhz ", 935'200'000.0);
    row("1.8052G", 1'805'200'000.0);
    row("9.352e8", 935'200'000.0);
    row("93.52e1 m", 935'200'000.0);
    row(".5 kHz", 500.0);
    row("450600000", 450'600'000.0);
    row("0", 0.0);
    row("", none);
    row("MHz", none);
    row("-1 MHz", none);
    row("1,5 MHz", none);
    row("1 2 MHz", none);
    row("1 MHzz", none);
    row("1e999", none);
    row("nan", none);
    row(".", none);
}

void BandVerbsTest::frequencies()
{
    QTEST(band::parseFrequency(QLatin1String(QTest::currentDataTag())).value_or(none), "hertz");
}

void BandVerbsTest::names()
{
    QCOMPARE(band::findBand(QStringLiteral("gsm 1800DOWN")), 3U);
    QCOMPARE(band::findBand(QStringLiteral("11")), 11U);
    for (const char* name : {"", "12", "-1", "GSM1800", "GSM1800 Downs"})
        QVERIFY2(!band::findBand(QLatin1String(name)), name);
}

void BandVerbsTest::answers_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("part"); // of the output, or of the errors where it failed
    const auto row = [](const char* line, int status, const char* part) {
        QTest::newRow(line) << status << QByteArray(part);
    };
    row("band list", 0, "GSM850 Down   128 to 251    869.2 MHz      893.8 MHz\n");
    row("band list more", 2, "'more' is not an option");
    row("band show gsm900 down", 0, "955 to 1023 at 921.2 MHz to 934.8 MHz\n");
    row("band show gsm900 dwon", 2, "Did you mean 'gsm900 down'?");
    row("band show", 2, "which band?");
    row("band channel GSM1800 Up 885", 0, "GSM1800 Down  channel 885  1879.8 MHz\n");
    row("band channel GSM1800 Up 886", 1, "has the channels 512 to 885, not 886");
    row("band channel GSM900 Up 500", 1, "has the channels 0 to 124 and 955 to 1023, not 500");
    row("band channel GSM900 Up x", 2, "'x' is no channel");
    row("band channel 5", 2, "takes a band and a channel");
    row("band find 935.2 MHz", 0, "GSM900 Down   channel 1     on the channel\n");
    row("band find 914.79 MHz", 0, "channel 123   190 kHz above it at 914.6 MHz\n");
    row("band find 100 MHz", 1, "no band of the plan is at 100.0 MHz");
    row("band find much", 2, "'much' is no frequency");
    row("band plot plan.svg", 2, "-o names the file");
    row("band plot -o /no/such/folder/plan.svg", 1, "cannot write");
    row("time 1700000000123456", 0, "iso       2023-11-14T22:13:20.123456Z\n");
    row("time yesterday", 2, "'yesterday' is neither");
    row("time --help", 0, "Usage: vlbase time [OPTION...] [STAMP | TEXT]\n");
    row("help band plot", 0, "-o FILE");
    row("tiem", 2, "Did you mean 'time'?");
}

void BandVerbsTest::answers()
{
    QFETCH(int, status);
    QFETCH(QByteArray, part);
    const Outcome outcome = runTool(words(QTest::currentDataTag()));
    QCOMPARE(outcome.status, status);
    const QByteArray& told = status == 0 ? outcome.output : outcome.errors;
    QVERIFY2(told.contains(part), told.constData());
    QCOMPARE((status == 0 ? outcome.errors : outcome.output), QByteArray());
}

void BandVerbsTest::machineForms()
{
    const auto json = [](const char* line) {
        return QJsonDocument::fromJson(runTool(words(line)).output);
    };
    const QJsonArray bands = json("band list --json").array();
    QCOMPARE(bands.size(), 12);
    QCOMPARE(bands[1].toObject(), json("band show 1 --json").object());
    const QJsonObject channel = json("band channel 2 512 --json").object();
    QCOMPARE(channel[u"hertz"].toDouble(), 1710.2e6);
    QCOMPARE(channel[u"pairHertz"].toDouble(), 1805.2e6);
    QCOMPARE(json("band find 889.95M --json").array().first().toObject()[u"distanceHz"].toDouble(),
             -50e3);
    QCOMPARE(json("time 18446744073709551615 --json").object()[u"stamp"].toString(),
             QStringLiteral("18446744073709551615"));

    QDomDocument document;
    QVERIFY(document.setContent(runTool(words("band show gsm850 up --xml")).output));
    QDomElement root = document.documentElement();
    Band read;
    read.Read(document, root);
    QCOMPARE(read.GetFrequency(251), 848.8e6);
    QCOMPARE(read.GetStopChannel(), 251UL);
}

void BandVerbsTest::pictureHoldsEveryChannel()
{
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("plan.svg"));
    QCOMPARE(runTool(words("band plot -o") << name).status, 0);
    QFile file(name);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QDomDocument picture;
    QVERIFY(picture.setContent(file.readAll()));
    QSet<QString> tips;
    const QDomNodeList titles = picture.elementsByTagName(QStringLiteral("title"));
    for (int i = 0; i < titles.size(); ++i)
        tips.insert(titles.at(i).toElement().text());
    QCOMPARE(tips.size(), 12 + 2 * (125 + 69 + 374 + 299 + 35 + 35 + 124));
    QVERIFY(tips.contains(QStringLiteral("GSM900 Up, channel 17: 893.4 MHz")));
}

void BandVerbsTest::stampsReadBack()
{
    for (const quint64 stamp : {quint64{0}, quint64{999'999}, quint64{1'700'000'000'123'456},
                                quint64{1'720'000'000'000'050}, quint64{4'294'967'296'000'000}}) {
        for (const auto& [name, text] : time::stampTexts(stamp))
            QVERIFY2(time::parseStamp(text) == stamp, qPrintable(name + u' ' + text));
    }
    QCOMPARE(time::parseStamp(QStringLiteral("2023-11-14T23:13:20.5+01:00")),
             1'700'000'000'500'000);
    QCOMPARE(time::parseStamp(QStringLiteral("2023-11-14 22:13:20.1234567 utc")),
             1'700'000'000'123'456);
    QCOMPARE(time::parseStamp(QStringLiteral("18446744073709551615")),
             std::numeric_limits<quint64>::max());
}

void BandVerbsTest::noStamps_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"", "-1", "18446744073709551616", "1969-12-31T23:59:59Z", "now",
                             "2023-02-29", "2023-11-14T22:13:20.x", "2023-11-14T22:13:20.1.2.3"})
        QTest::newRow(*text ? text : "empty") << QString::fromLatin1(text);
}

void BandVerbsTest::noStamps()
{
    QFETCH(QString, text);
    QVERIFY(!time::parseStamp(text));
}

QTEST_GUILESS_MAIN(BandVerbsTest)
#include "tst_bandverbs.moc"
