// vlbase coord: what it recognises, and the program on texts, files and standard input.

#include "../support/toolrun.h"
#include "tools/vlbase/coord/recognizer.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <clocale>
#include <cmath>

using namespace vlbase::tool::coord;

namespace {

std::optional<Reading> recognize(const QString& text,
                                 std::optional<CoordFormat> format = std::nullopt)
{
    return Recognizer(format).read(text.toStdString());
}

Outcome runCoord(const char* options, const QStringList& texts, const QByteArray& input = {},
                 const QString& outputFile = {})
{
    const QStringList words = QString::fromLatin1(options).split(u' ', Qt::SkipEmptyParts);
    return runTool(QStringList(u"coord"_qs) + words + texts, input, outputFile);
}

} // namespace

class CoordVerbTest : public QObject
{
    Q_OBJECT

private slots:
    void recognizes()
    {
        using F = CoordFormat;
        const double north = 59 + 19 / 60.0 + 46.5 / 3600;
        const double west = -(18 + 3 / 60.0 + 30 / 3600.0);
        const std::tuple<const char*, double, double, F, bool> texts[] = {
            {"48.8582, 2.2945", 48.8582, 2.2945, F::GeoDecimal, true},
            {"-33.8568;151.2153", -33.8568, 151.2153, F::GeoDecimal, false},
            {"151.2153 -33.8568", -33.8568, 151.2153, F::GeoDecimal, false},
            {"−12.5 +7", -12.5, 7, F::GeoDecimal, true},
            {"E2.2945 N48.8582", 48.8582, 2.2945, F::GeoDecimal, false},
            {".5S .25w", -0.5, -0.25, F::GeoDecimal, false},
            {"45 45", 45, 45, F::GeoDecimal, false},
            {"59°19'46.5\"N 18°3'30\"W", north, west, F::GeoLong, false},
            {"N 59º 19′ 46.5″, W 18° 3’ 30''", north, west, F::GeoLong, false},
            {"59 19 46.5 N 18 3 30 W", north, west, F::GeoLong, false},
            {"59 19.5 -18 3", 59.325, -18.05, F::GeoShort, true},
            {"-0 30 0 0 30 0", -0.5, 0.5, F::GeoShort, true},
            {"33 u 0389918.0 5819699", 52.51627380, 13.37770343, F::Utm, false},
            {"33n 389918 5819699", 52.51627380, 13.37770343, F::Utm, true},
            {"56S 334410 6251867", -33.86052510, 151.20991993, F::Utm, true},
            {"31N 448252 500000", 4.523412, 2.533516, F::Utm, false},
            {"33U-UU-8991-1969", 52.51619, 13.37758, F::Mgrs, false},
            {"x6580917y1628244", 59.329555, 18.058274, F::Rt90, false},
            {"jn58TD", 48.14583, 11.625, F::QthMaidenhead, false},
        };
        for (const auto& [text, latitude, longitude, format, isDoubtful] : texts) {
            const auto reading = recognize(QString::fromUtf8(text));
            QVERIFY2(reading, text);
            // About a metre: the table has as many digits.
            QVERIFY2(std::abs(reading->position.GetLatitude() - latitude) < 1e-5 &&
                         std::abs(reading->position.GetLongitude() - longitude) < 1e-5,
                     text);
            QVERIFY2(reading->format == format && isDoubtful == (reading->doubt != nullptr), text);
        }
    }

    void refuses()
    {
        for (const char* text : {" ",
                                 "48.8582",
                                 "48,8582 2,2945",
                                 "1 2 3",
                                 "91 181",
                                 "95 95",
                                 "N12 N13",
                                 "12 S, 77",
                                 "N12 E13 N14",
                                 "12 60 0 N 13 0 0 E",
                                 "12.5 30 N 13 0 E",
                                 "-12 S 13 E",
                                 "12 -30 -13",
                                 "1e2 3",
                                 "nan nan",
                                 "0x10 0x10",
                                 "12'30 N 13 E",
                                 "33U 389918",
                                 "33U 100 5819699",
                                 "33Z 389918 5819699",
                                 "99U 389918 5819699",
                                 "33UUU8991819",
                                 "X1 Y2",
                                 "6580917 1628244",
                                 "JO99a",
                                 "SO99ah",
                                 "١٢ ٣٤",
                                 "12 13 \xFF"})
            QVERIFY2(!Recognizer().read(text), text);
        QVERIFY(!recognize(QString(5000, u'1')));
        QVERIFY(!recognize(u"48.8582N 2.2945E"_qs, CoordFormat::Utm));
        QVERIFY(!recognize(u"JN58td"_qs, CoordFormat::Mgrs));
    }

    void recognizesWhatTheLibraryWrites()
    {
        const Coord position(18.058275, 59.329554);
        for (int value = 0; value < 8; ++value) {
            const auto format = static_cast<CoordFormat>(value);
            for (const QString& text : {position.GetString(format), position.GetText(format)}) {
                const auto reading = recognize(text);
                const auto asked = recognize(text, format);
                QVERIFY2(reading && asked, qPrintable(text));
                // Plain texts of decimal degrees and of the long form look alike.
                const bool isPlainLong = text == u"E018032979N59194639"_qs;
                QVERIFY2(isPlainLong == (reading->doubt != nullptr), qPrintable(text));
                QCOMPARE((isPlainLong ? asked : reading)->position.GetString(format),
                         position.GetString(format));
            }
        }
    }

    // RT90 without its letters has to be asked for; how the user's language writes fractions plays
    // no part.
    void readsRt90InEveryLocale()
    {
        const QByteArray before = std::setlocale(LC_ALL, nullptr);
        for (const char* name : {"C", "de_DE.UTF-8", "German_Germany.1252"}) {
            std::setlocale(LC_ALL, name);
            const auto reading = recognize(u"6580917.25 1628244"_qs, CoordFormat::Rt90);
            std::setlocale(LC_ALL, before.constData());
            QVERIFY(reading);
            QCOMPARE(reading->position.GetString(CoordFormat::Rt90),
                     u"X6580917.250 Y1628244.000"_qs);
        }
    }

    void convertsTexts()
    {
        const char toGrid[] = "--to utm,Maidenhead";
        // Two arguments that are one position.
        Outcome outcome = runCoord(toGrid, {u"-33.86052510"_qs, u"151.20991993"_qs});
        QCOMPARE(outcome.output, u"UTM             56H 0334410 6251867\n"
                                 "QTH Maidenhead  QF56od\n"_qs);
        QVERIFY(outcome.status == 0 && outcome.errors.isEmpty());

        // Two that are two, and one that is none between them.
        outcome = runCoord(toGrid, {u"JN58td"_qs, u"nonsense"_qs, u"AA00aa"_qs});
        QCOMPARE(outcome.output, u"UTM                  QTH Maidenhead\n"
                                 "32U 0695253 5335842  JN58td\n"
                                 "-                    AA00aa\n"_qs);
        QVERIFY(outcome.errors.contains(u"'nonsense' is not a position"_qs));
        QCOMPARE(outcome.status, 1);

        outcome = runCoord("--to rt90", {u"10 20"_qs});
        QCOMPARE(outcome.output, u"#OUTSIDE RT90 AREA\n"_qs);
        QVERIFY(outcome.errors.contains(u"read as latitude, longitude"_qs));
        QCOMPARE(outcome.status, 0);
    }

    void convertsLines()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath(u"sites.txt"_qs));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray lines("\xEF\xBB\xBFJN58td\r\n\nfoo\n1 2\n3 4\n45N 179.5W");
        file.write(lines);
        file.close();

        const char options[] = "--to short,mgrs --csv";
        for (const Outcome& outcome : {runCoord(options, {u"--file"_qs, file.fileName()}),
                                       runCoord(options, {u"-"_qs}, lines)}) {
            QCOMPARE(outcome.output, u"line,short,mgrs\n"
                                     "1,E011°37'30 N48°08'45,32U-PU-95254-35842\n"
                                     "4,E002°00'00 N01°00'00,31N-CB-88737-10547\n"
                                     "5,E004°00'00 N03°00'00,31N-FD-11130-31644\n"
                                     "6,W179°30'00 N45°00'00,01T-CK-02962-85991\n"_qs);
            QVERIFY(outcome.errors.contains(u"line 3: 'foo' is not a position"_qs));
            QVERIFY(outcome.errors.contains(u"2 lines from line 4 on: read as"_qs));
            QCOMPARE(outcome.status, 1);
        }
    }

    void writesJsonForEveryLine()
    {
        const Outcome outcome =
            runCoord("- --json --to utm,decimal", {}, "52 30 36\"N 13 22 12\"E\r\n\n85\t0\n");
        const QStringList lines = outcome.output.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        const QJsonObject first = QJsonDocument::fromJson(lines[0].toUtf8()).object();
        QCOMPARE(first[u"input"].toString(), u"52 30 36\"N 13 22 12\"E"_qs);
        QCOMPARE(first[u"format"].toString(), u"short"_qs);
        QCOMPARE(first[u"latitude"].toDouble(), 52.51);
        QCOMPARE(first[u"texts"][u"decimal"].toString(), u"E013.370000 N52.510000"_qs);
        const QJsonObject second = QJsonDocument::fromJson(lines[1].toUtf8()).object();
        QVERIFY(second[u"line"] == 3 && second[u"input"] == u"85\t0"_qs);
        QVERIFY(second[u"texts"][u"utm"].isNull() && second.contains(u"doubt"));
        QCOMPARE(outcome.status, 0);
    }

    // More than the program reads at once, lines longer than it keeps, bytes of any kind.
    void readsLongAndDamagedFiles()
    {
        constexpr int count = 40000;
        QByteArray input;
        for (int i = 0; i < count; ++i)
            input += i == 20000 ? QByteArray(700'000, '1') + '\n' : QByteArray("N01.5 E002.25\n");
        input += QByteArray("\0\x1b[2J\xFF\n", 7);
        const Outcome outcome = runCoord("- --to maidenhead", {}, input);
        QCOMPARE(outcome.output.count(u"JJ11dm"_qs), count - 1);
        QCOMPARE(outcome.errors.count(u'\n'), 2);
        QVERIFY(outcome.errors.contains(u"line 20001: '1111"_qs));
        QVERIFY(outcome.errors.contains(u"line 40001: "_qs) && !outcome.errors.contains(u'\x1b'));
        QCOMPARE(outcome.status, 1);
    }

    void tellsFailures()
    {
        const std::tuple<const char*, const char*, int> lines[] = {
            {"", "which position?", 2},
            {"1 2 --to utn", "Did you mean 'utm'?", 2},
            {"1 2 --from xyz", "unknown format 'xyz'", 2},
            {"1 2 --csv --json", "exclude each other", 2},
            {"1 2 --file x", "not both", 2},
            {"-x 2", "unknown option '-x'", 2},
            {"200 200", "'200 200' is not a position", 1},
            {"--file there-is-no-such-file", "cannot read there-is-no-such-file", 1},
        };
        for (const auto& [arguments, told, status] : lines) {
            const Outcome outcome = runCoord(arguments, {});
            QVERIFY2(outcome.errors.contains(QLatin1String(told)), qPrintable(outcome.errors));
            QVERIFY(outcome.status == status && outcome.output.isEmpty());
        }
        const QString full = u"/dev/full"_qs;
        if (QFile::exists(full)) {
            const Outcome outcome = runCoord("- --to utm", {}, "JN58td\nfoo\nfoo\n", full);
            QCOMPARE(outcome.errors.count(u'\n'), 1);
            QVERIFY(outcome.status == 1 && outcome.errors.contains(u"cannot write"_qs));
        }
    }
};

QTEST_GUILESS_MAIN(CoordVerbTest)
#include "tst_coordverb.moc"
