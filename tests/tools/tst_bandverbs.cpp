// `vlbase band` and `vlbase time`: what is typed, what comes out, and with which status.

#include "../support/toolrun.h"
#include "tools/vlbase/band/frequencytext.h"
#include "tools/vlbase/band/plan.h"
#include "tools/vlbase/time/stamptext.h"

#include <QDomDocument>
#include <QDomElement>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using namespace vlbase::tool;

class BandVerbsTest : public QObject
{
    Q_OBJECT

private slots:
    void frequencies()
    {
        const std::pair<const char*, double> texts[] = {
            {"935.2 MHz", 935.2e6}, {" 935.2mhz ", 935.2e6}, {"1.8052G", 1.8052e9},
            {"93.52e1 m", 935.2e6}, {".5 kHz", 500.0},       {"450600000", 450.6e6},
        };
        for (const auto& [text, hertz] : texts)
            QCOMPARE(band::parseFrequency(QLatin1String(text)), hertz);
        for (const char* text : {"", "MHz", "-1 MHz", "1,5 MHz", "1 2 MHz", "1 MHzz", "1e999", "."})
            QVERIFY2(!band::parseFrequency(QLatin1String(text)), text);
    }

    void answers()
    {
        // Status, and a part of the output, or of the errors where it failed.
        const std::tuple<const char*, int, const char*> lines[] = {
            {"band list", 0, "GSM850 Down   128 to 251    869.2 MHz      893.8 MHz\n"},
            {"band list more", 2, "'more' is not an option"},
            {"band show gsm900DOWN", 0, "955 to 1023 at 921.2 MHz to 934.8 MHz\n"},
            {"band show gsm900 dwon", 2, "Did you mean 'gsm900 down'?"},
            {"band show", 2, "which band?"},
            {"band show 12", 2, "there is no band '12'"},
            {"band channel GSM1800 Up 885", 0, "GSM1800 Down  channel 885  1879.8 MHz\n"},
            {"band channel GSM900 Up 500", 1, "has the channels 0 to 124 and 955 to 1023, not 500"},
            {"band channel GSM900 Up x", 2, "'x' is no channel"},
            {"band channel 5", 2, "takes a band and a channel"},
            {"band find 914.79 MHz", 0, "channel 123   190 kHz above it at 914.6 MHz\n"},
            {"band find 100 MHz", 1, "no band of the plan is at 100.0 MHz"},
            {"band find much", 2, "'much' is no frequency"},
            {"band plot plan.svg", 2, "-o names the file"},
            {"band plot -o /no/such/folder/plan.svg", 1, "cannot write"},
            {"time 1700000000123456", 0, "iso       2023-11-14T22:13:20.123456Z\n"},
            {"time yesterday", 2, "'yesterday' is neither"},
            {"tiem", 2, "Did you mean 'time'?"},
        };
        for (const auto& [line, status, part] : lines) {
            const Outcome outcome = runTool(line);
            QCOMPARE(outcome.status, status);
            QVERIFY2((status == 0 ? outcome.output : outcome.errors).contains(QLatin1String(part)),
                     line);
            QCOMPARE((status == 0 ? outcome.errors : outcome.output), QString());
        }
    }

    void machineForms()
    {
        const auto json = [](const char* line) {
            return QJsonDocument::fromJson(runTool(line).output.toUtf8());
        };
        const QJsonArray bands = json("band list --json").array();
        QCOMPARE(bands.size(), 12);
        QCOMPARE(bands[1].toObject(), json("band show 1 --json").object());
        const QJsonObject channel = json("band channel 2 512 --json").object();
        QVERIFY(channel[u"hertz"] == 1710.2e6 && channel[u"pairHertz"] == 1805.2e6);
        const QJsonArray found = json("band find 889.95M --json").array();
        QCOMPARE(found.first().toObject()[u"distanceHz"].toDouble(), -50e3);
        QCOMPARE(json("time 18446744073709551615 --json").object()[u"stamp"].toString(),
                 QStringLiteral("18446744073709551615"));

        QDomDocument document;
        QVERIFY(document.setContent(runTool("band show gsm850 up --xml").output));
        QDomElement root = document.documentElement();
        Band read;
        read.Read(document, root);
        QVERIFY(read.GetFrequency(251) == 848.8e6 && read.GetStopChannel() == 251);
    }

    void pictureHoldsEveryChannel()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("plan.svg")));
        QCOMPARE(runTool({u"band"_qs, u"plot"_qs, u"-o"_qs, file.fileName()}).status, 0);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString picture = QString::fromUtf8(file.readAll());
        QVERIFY(QDomDocument().setContent(picture));
        QCOMPARE(picture.count(u", channel "_qs), 2 * (125 + 69 + 374 + 299 + 35 + 35 + 124));
        QVERIFY(picture.contains(u"<title>GSM900 Up, channel 17: 893.4 MHz</title>"_qs));
    }

    void stampsReadBack()
    {
        constexpr quint64 last = std::numeric_limits<quint64>::max();
        for (const quint64 stamp : {quint64{0}, quint64{999'999}, quint64{1'700'000'000'123'456},
                                    quint64{1'720'000'000'000'050}, quint64{4'294'967'296'000'000},
                                    quint64{253'402'300'800'000'000}, last}) {
            for (const auto& [name, text] : time::stampTexts(stamp))
                QVERIFY2(time::parseStamp(text) == stamp, qPrintable(name + u' ' + text));
        }
        const std::pair<const char*, quint64> others[] = {
            {"2023-11-14T23:13:20.5+01:00", 1'700'000'000'500'000},
            {"2023-11-14T22:13:20,5Z", 1'700'000'000'500'000},
            {"2023-11-14 22:13:20.1234567 utc", 1'700'000'000'123'456},
        };
        for (const auto& [text, stamp] : others)
            QCOMPARE(time::parseStamp(QLatin1String(text)), stamp);
        for (const char* text :
             {"", "-1", "18446744073709551616", "1969-12-31T23:59:59Z", "now", "2023-02-29",
              "2023-11-14T22:13:20.x", "2023-11-14T22:13:20.1.2.3", "02023-11-14T22:13:20Z",
              "586524-01-19T08:01:49.551616Z", "999999-01-01"})
            QVERIFY2(!time::parseStamp(QLatin1String(text)), text);
    }
};

QTEST_GUILESS_MAIN(BandVerbsTest)
#include "tst_bandverbs.moc"
