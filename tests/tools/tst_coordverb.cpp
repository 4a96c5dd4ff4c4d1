// vlbase coord: what it recognises, and the program on texts, files and standard input.

#include "tools/vlbase/coord/recognizer.h"

#include <VLBase/coord/coordconversion.h>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace vlbase::tool::coord;

Q_DECLARE_METATYPE(CoordFormat)

namespace {

std::optional<Reading> recognize(const QString& text,
                                 std::optional<CoordFormat> format = std::nullopt)
{
    return Recognizer(format).read(text.toStdString());
}

struct Outcome
{
    int status = -1;
    QString output;
    QString errors;
};

Outcome runCoord(const QStringList& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/vlbase"),
                  QStringList(QStringLiteral("coord")) + arguments);
    process.write(input);
    process.closeWriteChannel();
    Outcome outcome;
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit)
        return outcome;
    outcome.status = process.exitCode();
    outcome.output = QString::fromUtf8(process.readAllStandardOutput());
    outcome.errors = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

} // namespace

class CoordVerbTest : public QObject
{
    Q_OBJECT

private slots:
    void recognizes_data();
    void recognizes();
    void refuses_data();
    void refuses();
    void recognizesWhatTheLibraryWrites();
    void holdsToTheFormatAskedFor();
    void convertsTexts();
    void convertsLines();
    void writesJsonForEveryLine();
    void readsLongAndDamagedFiles();
    void tellsWrongUse_data();
    void tellsWrongUse();
};

void CoordVerbTest::recognizes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<bool>("isDoubtful");

    const auto row = [](const char* text, double latitude, double longitude, CoordFormat format,
                        bool isDoubtful = false) {
        QTest::newRow(text) << QString::fromUtf8(text) << latitude << longitude << format
                            << isDoubtful;
    };
    const double north = 59 + 19 / 60.0 + 46.5 / 3600;
    const double west = -(18 + 3 / 60.0 + 30 / 3600.0);
    row("48.8582, 2.2945", 48.8582, 2.2945, CoordFormat::GeoDecimal, true);
    row("-33.8568;151.2153", -33.8568, 151.2153, CoordFormat::GeoDecimal);
    row("151.2153 -33.8568", -33.8568, 151.2153, CoordFormat::GeoDecimal);
    row("\xE2\x88\x92"
        "12.5 +7",
        -12.5, 7, CoordFormat::GeoDecimal, true);
    row("E2.2945 N48.8582", 48.8582, 2.2945, CoordFormat::GeoDecimal);
    row("48.8582n 2.2945w", 48.8582, -2.2945, CoordFormat::GeoDecimal);
    row(".5S .25E", -0.5, 0.25, CoordFormat::GeoDecimal);
    row("45 45", 45, 45, CoordFormat::GeoDecimal);
    row("59\xC2\xB0"
        "19'46.5\"N 18\xC2\xB0"
        "3'30\"W",
        north, west, CoordFormat::GeoLong);
    row("N 59\xC2\xBA 19\xE2\x80\xB2 46.5\xE2\x80\xB3, W 18\xC2\xB0 3\xE2\x80\x99 30''", north,
        west, CoordFormat::GeoLong);
    row("59 19 46.5 N 18 3 30 W", north, west, CoordFormat::GeoLong);
    row("59 19.5 -18 3", 59.325, -18.05, CoordFormat::GeoShort, true);
    row("-0 30 0 0 30 0", -0.5, 0.5, CoordFormat::GeoShort, true);
    row("33U 389918 5819699", 52.51627380, 13.37770343, CoordFormat::Utm);
    row("33 u 0389918.0 5819699.0", 52.51627380, 13.37770343, CoordFormat::Utm);
    row("33n 389918 5819699", 52.51627380, 13.37770343, CoordFormat::Utm, true);
    row("56S 334410 6251867", -33.86052510, 151.20991993, CoordFormat::Utm, true);
    row("31N 448252 500000", 4.523412, 2.533516, CoordFormat::Utm);
    row("33uuu 89918 19699", 52.51627, 13.37770, CoordFormat::Mgrs);
    row("33U-UU-8991-1969", 52.51619, 13.37758, CoordFormat::Mgrs);
    row("X6580916.939 Y1628244.083", 59.329554, 18.058275, CoordFormat::Rt90);
    row("x6580917y1628244", 59.329555, 18.058274, CoordFormat::Rt90);
    row("jn58TD", 48.14583, 11.625, CoordFormat::QthMaidenhead);
    row("E0180330N591946", 59.3294444, 18.0583333, CoordFormat::GeoShort);
}

void CoordVerbTest::recognizes()
{
    QFETCH(QString, text);
    QFETCH(double, latitude);
    QFETCH(double, longitude);

    const auto reading = recognize(text);
    QVERIFY(reading);
    // About a metre: the table has as many digits.
    QVERIFY2(std::abs(reading->position.GetLatitude() - latitude) < 1e-5 &&
                 std::abs(reading->position.GetLongitude() - longitude) < 1e-5,
             qPrintable(reading->position.GetString(CoordFormat::GeoDecimal)));
    QTEST(reading->format, "format");
    QTEST(reading->doubt != nullptr, "isDoubtful");
}

void CoordVerbTest::refuses_data()
{
    QTest::addColumn<QString>("text");
    const auto row = [](const char* text) { QTest::newRow(text) << QString::fromUtf8(text); };
    row(" ");
    row("48.8582");
    row("48,8582 2,2945");
    row("1 2 3");
    row("91 181");
    row("95 95");
    row("N12 N13");
    row("12 S, 77");
    row("N12 E13 N14");
    row("12 60 0 N 13 0 0 E");
    row("12.5 30 N 13 0 E");
    row("-12 S 13 E");
    row("12 -30 -13");
    row("1e2 3");
    row("nan nan");
    row("0x10 0x10");
    row("12'30 N 13 E");
    row("33U 389918");
    row("33U 100 5819699");
    row("33Z 389918 5819699");
    row("99U 389918 5819699");
    row("33UUU8991819");
    row("X1 Y2");
    row("6580917 1628244");
    row("JO99a");
    row("SO99ah");
    row("\xD9\xA1\xD9\xA2 \xD9\xA3\xD9\xA4");
    row("12 13 \xFF");
    QTest::newRow("long") << QString(5000, u'1');
}

void CoordVerbTest::refuses()
{
    QFETCH(QString, text);
    QVERIFY(!recognize(text));
}

void CoordVerbTest::recognizesWhatTheLibraryWrites()
{
    const Coord position(18.058275, 59.329554);
    for (int value = 0; value < 8; ++value) {
        const auto format = static_cast<CoordFormat>(value);
        for (const QString& text : {position.GetString(format), position.GetText(format)}) {
            const auto reading = recognize(text);
            QVERIFY2(reading, qPrintable(text));
            // Plain texts of decimal degrees and of the long form look alike.
            const bool isPlainLong = text == QStringLiteral("E018032979N59194639");
            QVERIFY2(isPlainLong == (reading->doubt != nullptr), qPrintable(text));
            const auto asked = recognize(text, format);
            QVERIFY2(asked, qPrintable(text));
            QCOMPARE((isPlainLong ? asked : reading)->position.GetString(format),
                     position.GetString(format));
        }
    }
}

void CoordVerbTest::holdsToTheFormatAskedFor()
{
    QVERIFY(!recognize(QStringLiteral("48.8582N 2.2945E"), CoordFormat::Utm));
    QVERIFY(!recognize(QStringLiteral("JN58td"), CoordFormat::Mgrs));
    // Without its letters RT90 has to be asked for.
    const auto reading = recognize(QStringLiteral("6580917 1628244"), CoordFormat::Rt90);
    QVERIFY(reading);
    QCOMPARE(reading->position.GetString(CoordFormat::Rt90),
             QStringLiteral("X6580917.000 Y1628244.000"));
}

void CoordVerbTest::convertsTexts()
{
    const QStringList toGrid = {QStringLiteral("--to"), QStringLiteral("utm,Maidenhead")};
    // Two arguments that are one position.
    Outcome outcome = runCoord(
        QStringList{QStringLiteral("-33.86052510"), QStringLiteral("151.20991993")} + toGrid);
    QCOMPARE(outcome.output, QStringLiteral("UTM             56H 0334410 6251867\n"
                                            "QTH Maidenhead  QF56od\n"));
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.status, 0);

    // Two that are two, and one that is none between them.
    outcome = runCoord(QStringList{QStringLiteral("JN58td"), QStringLiteral("nonsense"),
                                   QStringLiteral("AA00aa")} +
                       toGrid);
    QCOMPARE(outcome.output, QStringLiteral("UTM                  QTH Maidenhead\n"
                                            "32U 0695253 5335842  JN58td\n"
                                            "-                    AA00aa\n"));
    QVERIFY(outcome.errors.contains(QStringLiteral("'nonsense' is not a position")));
    QCOMPARE(outcome.status, 1);

    outcome = runCoord({QStringLiteral("10 20"), QStringLiteral("--to"), QStringLiteral("rt90")});
    QCOMPARE(outcome.output, QStringLiteral("#OUTSIDE RT90 AREA\n"));
    QVERIFY(outcome.errors.contains(QStringLiteral("read as latitude, longitude")));
    QCOMPARE(outcome.status, 0);
}

void CoordVerbTest::convertsLines()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("sites.txt")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray lines = "\xEF\xBB\xBF"
                             "JN58td\r\n\nfoo\n1 2\n3 4\n45N 179.5W";
    file.write(lines);
    file.close();

    const QStringList options = {QStringLiteral("--to"), QStringLiteral("short,mgrs"),
                                 QStringLiteral("--csv")};
    const auto expected = QStringLiteral(u"line,short,mgrs\n"
                                         u"1,E011\u00B037'30 N48\u00B008'45,32U-PU-95254-35842\n"
                                         u"4,E002\u00B000'00 N01\u00B000'00,31N-CB-88737-10547\n"
                                         u"5,E004\u00B000'00 N03\u00B000'00,31N-FD-11130-31644\n"
                                         u"6,W179\u00B030'00 N45\u00B000'00,01T-CK-02962-85991\n");
    const Outcome fromFile =
        runCoord(QStringList{QStringLiteral("--file"), file.fileName()} + options);
    const Outcome fromInput = runCoord(QStringList{QStringLiteral("-")} + options, lines);
    for (Outcome outcome : {fromFile, fromInput}) {
        QCOMPARE(outcome.output.remove(u'\r'), expected);
        QVERIFY(outcome.errors.contains(QStringLiteral("line 3: 'foo' is not a position")));
        QVERIFY(outcome.errors.contains(QStringLiteral("2 lines from line 4 on: read as")));
        QCOMPARE(outcome.status, 1);
    }
}

void CoordVerbTest::writesJsonForEveryLine()
{
    const Outcome outcome = runCoord({QStringLiteral("-"), QStringLiteral("--json"),
                                      QStringLiteral("--to"), QStringLiteral("utm,decimal")},
                                     "52 30 36\"N 13 22 12\"E\n\n85\t0\n");
    const QStringList lines = outcome.output.split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2);
    const QJsonObject first = QJsonDocument::fromJson(lines[0].toUtf8()).object();
    QCOMPARE(first[QStringLiteral("input")].toString(), QStringLiteral("52 30 36\"N 13 22 12\"E"));
    QCOMPARE(first[QStringLiteral("format")].toString(), QStringLiteral("short"));
    QCOMPARE(first[QStringLiteral("latitude")].toDouble(), 52.51);
    QCOMPARE(first[QStringLiteral("texts")][QStringLiteral("decimal")].toString(),
             QStringLiteral("E013.370000 N52.510000"));
    const QJsonObject second = QJsonDocument::fromJson(lines[1].toUtf8()).object();
    QCOMPARE(second[QStringLiteral("line")].toInt(), 3);
    QCOMPARE(second[QStringLiteral("input")].toString(), QStringLiteral("85\t0"));
    QVERIFY(second[QStringLiteral("texts")][QStringLiteral("utm")].isNull());
    QVERIFY(second.contains(QStringLiteral("doubt")));
    QCOMPARE(outcome.status, 0);
}

// More than the program reads at once, lines longer than it keeps, bytes of any kind.
void CoordVerbTest::readsLongAndDamagedFiles()
{
    constexpr int count = 40000;
    QByteArray input;
    for (int i = 0; i < count; ++i)
        input += i == 20000 ? QByteArray(700'000, '1') + '\n' : QByteArray("N01.5 E002.25\n");
    input += QByteArray("\0\x1b[2J\xFF\n", 7);
    const Outcome outcome = runCoord(
        {QStringLiteral("-"), QStringLiteral("--to"), QStringLiteral("maidenhead")}, input);
    QCOMPARE(outcome.output.count(QStringLiteral("JJ11dm")), count - 1);
    QCOMPARE(outcome.errors.count(u'\n'), 2);
    QVERIFY(outcome.errors.contains(QStringLiteral("line 20001: '1111")));
    QVERIFY(outcome.errors.contains(QStringLiteral("line 40001: ")));
    QVERIFY(!outcome.errors.contains(u'\x1b'));
    QCOMPARE(outcome.status, 1);
}

void CoordVerbTest::tellsWrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("told");
    QTest::addColumn<int>("status");

    const auto row = [](const char* arguments, const char* told, int status) {
        QTest::newRow(arguments) << QString::fromLatin1(arguments).split(u' ', Qt::SkipEmptyParts)
                                 << QString::fromLatin1(told) << status;
    };
    row("", "which position?", 2);
    row("1 2 --to utn", "Did you mean 'utm'?", 2);
    row("1 2 --from xyz", "unknown format 'xyz'", 2);
    row("1 2 --csv --json", "exclude each other", 2);
    row("1 2 --file x", "not both", 2);
    row("-x 2", "unknown option '-x'", 2);
    row("--file there-is-no-such-file", "cannot read there-is-no-such-file", 1);
}

void CoordVerbTest::tellsWrongUse()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, told);
    const Outcome outcome = runCoord(arguments);
    QVERIFY2(outcome.errors.contains(told), qPrintable(outcome.errors));
    QCOMPARE(outcome.output, QString());
    QTEST(outcome.status, "status");
}

QTEST_GUILESS_MAIN(CoordVerbTest)
#include "tst_coordverb.moc"
