#include <VLBase/coord/coord.h>
#include <VLBase/coord/coordconversion.h>
#include <VLBase/coord/utm.h>

#include <QTest>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

Q_DECLARE_METATYPE(CoordFormat)

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

constexpr std::array allFormats = {CoordFormat::GeoDecimal, CoordFormat::GeoLong,
                                   CoordFormat::GeoShort,   CoordFormat::Utm,
                                   CoordFormat::Mgrs,       CoordFormat::Rt90,
                                   CoordFormat::Sweref99,   CoordFormat::QthMaidenhead};

double metresApart(const Coord& one, const Coord& other)
{
    const double north = (one.GetLatitude() - other.GetLatitude()) * 111700;
    const double east = std::remainder(one.GetLongitude() - other.GetLongitude(), 360) * 111400 *
                        std::cos(one.GetLatitude() * 3.141592653589793 / 180);
    return std::hypot(north, east);
}

/// The largest distance in metres between a position and its text's, half the last digit on each
/// axis: of a millionth, a hundredth of a second and a second, of metres, of millimetres with
/// some micrometres of arithmetic, of a subsquare.
double halfOfLastDigit(CoordFormat format)
{
    switch (format) {
    case CoordFormat::GeoDecimal:
        return 0.079;
    case CoordFormat::GeoLong:
    case CoordFormat::Sweref99:
        return 0.22;
    case CoordFormat::GeoShort:
        return 21.9;
    case CoordFormat::Utm:
    case CoordFormat::Mgrs:
        return 0.72;
    case CoordFormat::Rt90:
        return 0.00073;
    case CoordFormat::QthMaidenhead:
        return 5200;
    }
    return 0;
}

/// \return empty, or what went wrong.
QString faultOfRoundTrip(const Coord& position, CoordFormat format)
{
    const QString text = position.GetString(format);
    if (text.startsWith(u'#'))
        return {};
    const auto where = QStringLiteral("%1 %2 gives %3, ")
                           .arg(position.GetLongitude(), 0, 'f', 12)
                           .arg(position.GetLatitude(), 0, 'f', 12)
                           .arg(text);
    Coord read(77, 77);
    read.SetString(text, format);
    if (read == Coord(77, 77))
        return where + QStringLiteral("which is refused");
    if (!read.IsValid())
        return where + QStringLiteral("read outside the globe");
    if (read.GetString(format) != text)
        return where + QStringLiteral("then ") + read.GetString(format);
    if (!(metresApart(position, read) <= halfOfLastDigit(format)))
        return where + QStringLiteral("%1 m away").arg(metresApart(position, read));
    double longitude = 0;
    double latitude = 0;
    if (StringToCoord(text, format, longitude, latitude) != CoordOk ||
        Coord(longitude, latitude) != read)
        return where + QStringLiteral("which StringToCoord reads otherwise");
    return {};
}

} // namespace

class TestCoord : public QObject
{
    Q_OBJECT

private slots:
    void writes_data();
    void writes();
    void validity();
    void refusals_data();
    void refusals();
    void roundTripsEverywhere();
    void roundTripsOnBorders();
    void readsExactAngles();
    void keepsNegativeZero();
    void readsAnyCase();
    void refusesText_data();
    void refusesText();
    void damagedTextsNeverLie();
    void convertsUtm_data();
    void convertsUtm();
    void refusesUtm();
};

void TestCoord::writes_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("formatted");

    const auto row = [](const char* name, double longitude, double latitude, CoordFormat format,
                        const char16_t* text, const char16_t* formatted) {
        QTest::newRow(name) << longitude << latitude << format << QString::fromUtf16(text)
                            << QString::fromUtf16(formatted);
    };
    row("decimal", 12.345678, -1.5, CoordFormat::GeoDecimal, u"E012345678S01500000",
        u"E012.345678 S01.500000");
    row("millionth carries", -9.9999996, 0.9999995, CoordFormat::GeoDecimal, u"W010000000N01000000",
        u"W010.000000 N01.000000");
    row("below a half", 0.00000049999999, 0, CoordFormat::GeoDecimal, u"E000000000N00000000",
        u"E000.000000 N00.000000");
    row("corner of the globe", 180, 90, CoordFormat::GeoDecimal, u"E180000000N90000000",
        u"E180.000000 N90.000000");
    row("hundredth carries", 9.99999999, -59.99999999, CoordFormat::GeoLong, u"E010000000S60000000",
        u"E010\u00B000'00.00 S60\u00B000'00.00");
    row("seconds carry into minutes", 0.0166666, 0.0333333, CoordFormat::GeoShort,
        u"E0000100N000200", u"E000\u00B001'00 N00\u00B002'00");
    row("seconds", -77.036528, 38.889722, CoordFormat::GeoShort, u"W0770212N385323",
        u"W077\u00B002'12 N38\u00B053'23");
    // PROJ 9.1.1: 389917.7576 5819698.5824; GeographicLib 2.1.2 for the letters.
    row("UTM", 13.3777, 52.51627, CoordFormat::Utm, u"33U03899185819699", u"33U 0389918 5819699");
    row("UTM at the date line", 180, 0, CoordFormat::Utm, u"01N01660210000000",
        u"01N 0166021 0000000");
    row("southern northing that rounds to the equator", 3, -1e-6, CoordFormat::Utm,
        u"31N05000000000000", u"31N 0500000 0000000");
    row("UTM, the line of 84 degrees", 10, 84, CoordFormat::Utm, u"32X05116709328195",
        u"32X 0511670 9328195");
    row("MGRS", 13.37770343178 - 0.00001, 52.51627380145 - 0.000001, CoordFormat::Mgrs,
        u"33UUU8991819699", u"33U-UU-89918-19699");
    row("MGRS, two digits of zone", -179.54312348978 - 0.00001, -45.12515384763 - 0.000001,
        CoordFormat::Mgrs, u"01GCL0000000000", u"01G-CL-00000-00000");
    // Known squares of amateur radio: Munich, and W1AW in Newington.
    row("Maidenhead", 11.60833, 48.14666, CoordFormat::QthMaidenhead, u"JN58td", u"JN58td");
    row("Maidenhead west", -72.72700, 41.71475, CoordFormat::QthMaidenhead, u"FN31pr", u"FN31pr");
    row("Maidenhead, first", -180, -90, CoordFormat::QthMaidenhead, u"AA00aa", u"AA00aa");
    row("Maidenhead, last", 180, 90, CoordFormat::QthMaidenhead, u"RR99xx", u"RR99xx");
}

void TestCoord::writes()
{
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(CoordFormat, format);
    QFETCH(QString, text);
    QFETCH(QString, formatted);

    const Coord position(longitude, latitude);
    QCOMPARE(position.GetText(format), text);
    QCOMPARE(position.GetString(format), formatted);
    QString written;
    QCOMPARE(CoordToString(longitude, latitude, format, written), static_cast<int>(CoordOk));
    QCOMPARE(written, formatted);

    Coord plain(77, 77);
    plain.SetText(text, format);
    Coord shown(77, 77);
    shown.SetText(formatted, format);
    QCOMPARE(plain.GetText(format), text);
    QCOMPARE(shown, plain);
}

void TestCoord::validity()
{
    QVERIFY(Coord().IsValid());
    QVERIFY(Coord(180, -90).IsValid());
    QVERIFY(!Coord(180.000001, 0).IsValid());
    QVERIFY(!Coord(0, -90.000001).IsValid());
    QVERIFY(!Coord(notANumber, 0).IsValid());
    QVERIFY(!Coord(0, -infinity).IsValid());
    QVERIFY(Coord(1, 2) != Coord(1, std::nextafter(2, 3)));
}

void TestCoord::refusals_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("status");

    const auto row = [](const char* name, double longitude, double latitude, CoordFormat format,
                        const char* text, CoordStatus status) {
        QTest::newRow(name) << longitude << latitude << format << QString::fromLatin1(text)
                            << static_cast<int>(status);
    };
    row("latitude first", 181, 91, CoordFormat::GeoDecimal, "#INVALID LATITUDE",
        CoordInvalidLatitude);
    row("NaN", 0, notANumber, CoordFormat::QthMaidenhead, "#INVALID LATITUDE",
        CoordInvalidLatitude);
    row("just too large", 180.0000001, 0, CoordFormat::GeoShort, "#INVALID LONGITUDE",
        CoordInvalidLongitude);
    row("longitude before area", infinity, 85, CoordFormat::Utm, "#INVALID LONGITUDE",
        CoordInvalidLongitude);
    row("UTM north", 0, 84.0000001, CoordFormat::Utm, "#LATITUDE OUTSIDE UTM AREA",
        CoordOutsideArea);
    row("UTM south", 0, -80.0000001, CoordFormat::Utm, "#LATITUDE OUTSIDE UTM AREA",
        CoordOutsideArea);
    row("MGRS", 0, 84, CoordFormat::Mgrs, "#LATITUDE OUTSIDE MGRS AREA", CoordOutsideArea);
    row("MGRS at the date line", 180, 0, CoordFormat::Mgrs, "#INVALID LONGITUDE",
        CoordInvalidLongitude);
    row("RT90 south", 15, 53.9999, CoordFormat::Rt90, "#OUTSIDE RT90 AREA", CoordOutsideArea);
    row("RT90 east", 25.0001, 60, CoordFormat::Rt90, "#OUTSIDE RT90 AREA", CoordOutsideArea);
}

void TestCoord::refusals()
{
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(CoordFormat, format);
    const Coord position(longitude, latitude);
    QTEST(position.GetText(format), "text");
    QTEST(position.GetString(format), "text");
    QString text = QStringLiteral("untouched");
    QTEST(CoordToString(longitude, latitude, format, text), "status");
    QCOMPARE(CoordToString(0, 0, static_cast<CoordFormat>(8), text),
             static_cast<int>(CoordUnknownFormat));
    QCOMPARE(text, QStringLiteral("untouched"));
}

void TestCoord::roundTripsEverywhere()
{
    std::mt19937_64 random(20240301);
    std::uniform_real_distribution<double> anyLongitude(-180, 180);
    std::uniform_real_distribution<double> anyLatitude(-90, 90);
    std::uniform_real_distribution<double> swedishLongitude(10, 25);
    std::uniform_real_distribution<double> swedishLatitude(54, 70);
    for (int i = 0; i < 4000; ++i) {
        for (const CoordFormat format : allFormats) {
            const Coord position = format == CoordFormat::Rt90
                                       ? Coord(swedishLongitude(random), swedishLatitude(random))
                                       : Coord(anyLongitude(random), anyLatitude(random));
            const QString fault = faultOfRoundTrip(position, format);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }
}

// Around every multiple of the three and four degrees, by less than a metre and not at all: the
// borders of zones and bands, of areas and of the globe.
void TestCoord::roundTripsOnBorders()
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> offset(-1e-5, 1e-5);
    std::uniform_int_distribution<int> thirds(-60, 60);
    std::uniform_int_distribution<int> quarters(-22, 22);
    std::uniform_int_distribution<int> coin(0, 1);
    const auto value = [&](int border, double limit) {
        return std::clamp(border + coin(random) * offset(random), -limit, limit);
    };
    for (int i = 0; i < 20000; ++i) {
        const Coord position(value(3 * thirds(random), 180), value(4 * quarters(random), 90));
        for (const CoordFormat format : {CoordFormat::Utm, CoordFormat::Mgrs}) {
            const QString fault = faultOfRoundTrip(position, format);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }
    for (const double longitude : {-180.0, -90.0, -0.0, 0.0, 10.0, 25.0, 180.0}) {
        for (const double latitude : {-90.0, -80.0, -0.0, 0.0, 54.0, 70.0, 84.0, 90.0}) {
            for (const CoordFormat format : allFormats) {
                const QString fault = faultOfRoundTrip({longitude, latitude}, format);
                QVERIFY2(fault.isEmpty(), qPrintable(fault));
            }
        }
    }
}

void TestCoord::readsExactAngles()
{
    // The nearest doubles, as the compiler reads them.
    Coord position;
    position.SetString(QStringLiteral("W077.036528 N38.889722"), CoordFormat::GeoDecimal);
    QCOMPARE(position.GetLongitude(), -77.036528);
    QCOMPARE(position.GetLatitude(), 38.889722);
    position.SetText(QStringLiteral("E0483000S331530"), CoordFormat::GeoShort);
    QVERIFY(position == Coord(48.5, -33.258333333333333));
    position.SetText(QStringLiteral("JN58td"), CoordFormat::QthMaidenhead);
    QVERIFY(metresApart(position, Coord(11.625, 48.14583333333333)) < 1e-6);
}

void TestCoord::keepsNegativeZero()
{
    Coord position;
    position.SetString(QStringLiteral("W000.000000 S00.000000"), CoordFormat::GeoDecimal);
    QVERIFY(std::signbit(position.GetLongitude()) && std::signbit(position.GetLatitude()));
    QCOMPARE(position.GetText(CoordFormat::GeoShort), QStringLiteral("W0000000S000000"));
    QCOMPARE(position.GetText(CoordFormat::QthMaidenhead), QStringLiteral("JJ00aa"));
}

void TestCoord::readsAnyCase()
{
    const Coord position(18.058275, 59.329554);
    for (const CoordFormat format : allFormats) {
        Coord lower(77, 77);
        lower.SetString(position.GetString(format).toLower(), format);
        Coord upper(77, 77);
        upper.SetText(position.GetText(format).toUpper(), format);
        QCOMPARE(lower.GetText(format), position.GetText(format));
        QCOMPARE(upper, lower);
    }
}

void TestCoord::refusesText_data()
{
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<QString>("text");

    const auto row = [](const char* name, CoordFormat format, const char16_t* text) {
        QTest::newRow(name) << format << QString::fromUtf16(text);
    };
    row("empty", CoordFormat::GeoDecimal, u"");
    row("too short", CoordFormat::GeoDecimal, u"E012.345678 N12.34567");
    row("too long", CoordFormat::GeoDecimal, u"E012.345678 N12.3456789");
    row("placeholders", CoordFormat::GeoDecimal, u"E012.3_____ N12.345678");
    row("blank for a digit", CoordFormat::GeoDecimal, u"E 12.345678 N12.345678");
    row("comma", CoordFormat::GeoDecimal, u"E012,345678 N12.345678");
    row("latitude first", CoordFormat::GeoDecimal, u"N12.345678 E012.345678");
    row("181 degrees", CoordFormat::GeoDecimal, u"E180.000001 N12.345678");
    row("91 degrees", CoordFormat::GeoDecimal, u"E012.345678 N90.000001");
    row("Arabic digits", CoordFormat::GeoDecimal, u"E\u0660\u0661\u0662.345678 N12.345678");
    row("Cyrillic letter", CoordFormat::GeoDecimal, u"\u0415012.345678 N12.345678");
    row("60 minutes", CoordFormat::GeoLong, u"E012\u00B060'00.00 N12\u00B000'00.00");
    row("60 seconds", CoordFormat::GeoShort, u"E012\u00B000'60 N12\u00B000'00");
    row("other degree sign", CoordFormat::GeoShort, u"E012\u00BA00'00 N12\u00B000'00");
    row("zone 0", CoordFormat::Utm, u"00N 0500000 0000000");
    row("zone 61", CoordFormat::Utm, u"61N 0500000 0000000");
    row("band O", CoordFormat::Utm, u"31O 0500000 0000000");
    row("band Y", CoordFormat::Utm, u"31Y 0500000 9000000");
    row("easting of the neighbour", CoordFormat::Utm, u"31N 0100000 0500000");
    row("northing of another band", CoordFormat::Utm, u"31N 0500000 5000000");
    row("northing 10,000,000", CoordFormat::Utm, u"31M 0500000 10000000");
    row("zone that Svalbard lacks", CoordFormat::Utm, u"32X 0500000 8500000");
    row("garbage of the series", CoordFormat::Utm, u"31N 9999999 9999999");
    row("fewer digits", CoordFormat::Mgrs, u"33U-UU-8991-1969");
    row("zone without its zero", CoordFormat::Mgrs, u"1G-CL-00000-00000");
    row("X for Y", CoordFormat::Mgrs, u"33X-WM-00000-99999");
    row("column of another zone", CoordFormat::Mgrs, u"33U-AU-89918-19699");
    row("south of RT90", CoordFormat::Rt90, u"X5000000.000 Y1500000.000");
    row("RT90 letters swapped", CoordFormat::Rt90, u"Y6580868.911 X1628047.914");
    row("garbage of RT90", CoordFormat::Rt90, u"X9999999.999 Y9999999.999");
    row("field S", CoordFormat::QthMaidenhead, u"SA00aa");
    row("subsquare y", CoordFormat::QthMaidenhead, u"AA00ya");
    row("four characters", CoordFormat::QthMaidenhead, u"JN58");
    QTest::newRow("10,000 characters") << CoordFormat::GeoLong << QString(10000, u'E');
}

void TestCoord::refusesText()
{
    QFETCH(CoordFormat, format);
    QFETCH(QString, text);
    double longitude = 12;
    double latitude = 34;
    QCOMPARE(StringToCoord(text, format, longitude, latitude),
             static_cast<int>(CoordMalformedText));
    QCOMPARE(StringToCoord(text, static_cast<CoordFormat>(-1), longitude, latitude),
             static_cast<int>(CoordUnknownFormat));
    QCOMPARE(longitude, 12.0);
    QCOMPARE(latitude, 34.0);
    Coord position(12, 34);
    position.SetText(text, format);
    QVERIFY(position == Coord(12, 34));
}

// One character of a good text made another: refused, or a text that this is the position of.
void TestCoord::damagedTextsNeverLie()
{
    const QString characters = QStringLiteral(u"059 -.'EWNSXYAI_\u00B0\u0665\u0415");
    const Coord position(18.058275, 59.329554);
    for (const CoordFormat format : allFormats) {
        const QString good = position.GetString(format);
        for (qsizetype place = 0; place < good.size(); ++place) {
            for (const QChar character : characters) {
                QString text = good;
                text[place] = character;
                double longitude = 0;
                double latitude = 0;
                if (StringToCoord(text, format, longitude, latitude) == CoordOk)
                    QCOMPARE(Coord(longitude, latitude).GetString(format).toLower(),
                             text.toLower());
            }
        }
    }
}

void TestCoord::convertsUtm_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<double>("easting");
    QTest::addColumn<double>("northing");

    // PROJ 9.1.1, +proj=utm +ellps=WGS84.
    QTest::newRow("Berlin") << 13.3777 << 52.51627 << QStringLiteral("33U") << 389917.7576
                            << 5819698.5824;
    QTest::newRow("first zone, far south")
        << -180.0 << -80.0 << QStringLiteral("01C") << 441867.7849 << 10000000 - 8883084.9559;
    QTest::newRow("line of 84 degrees")
        << 20.0 << 84.0 << QStringLiteral("34X") << 488330.4792 << 9328195.1111;
    QTest::newRow("date line") << 180.0 << 10.0 << QStringLiteral("01P") << 171071.2639
                               << 1106908.8542;
}

void TestCoord::convertsUtm()
{
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(double, easting);
    QFETCH(double, northing);

    QString zone;
    double east = 0;
    double north = 0;
    QCOMPARE(GEO_to_UTM(longitude, latitude, zone, east, north), static_cast<int>(CoordOk));
    QTEST(zone, "zone");
    QVERIFY2(std::abs(east - easting) < 0.1 && std::abs(north - northing) < 0.1,
             qPrintable(QStringLiteral("%1 %2").arg(east, 0, 'f', 3).arg(north, 0, 'f', 3)));

    double readLongitude = 0;
    double readLatitude = 0;
    QCOMPARE(UTM_to_GEO(zone.toLower(), east, north, readLongitude, readLatitude),
             static_cast<int>(CoordOk));
    QVERIFY(Coord(readLongitude, readLatitude).IsValid());
    QVERIFY(metresApart(Coord(longitude, latitude), Coord(readLongitude, readLatitude)) < 0.05);
}

void TestCoord::refusesUtm()
{
    QString zone = QStringLiteral("untouched");
    double one = 12;
    double two = 34;
    QCOMPARE(GEO_to_UTM(0, notANumber, zone, one, two), static_cast<int>(CoordInvalidLatitude));
    QCOMPARE(GEO_to_UTM(180.1, 85, zone, one, two), static_cast<int>(CoordInvalidLongitude));
    QCOMPARE(GEO_to_UTM(0, 85, zone, one, two), static_cast<int>(CoordOutsideArea));
    for (const char16_t* text : {u"", u"N", u"031N", u"61N", u"0N", u"31", u"31I", u"31Y", u"3 N",
                                 u"31\u041D", u"\u0663N", u"N31"}) {
        QCOMPARE(UTM_to_GEO(QString::fromUtf16(text), 500000, 100000, one, two),
                 static_cast<int>(CoordMalformedText));
    }
    const auto refuses = [&](const char16_t* text, double easting, double northing) {
        return UTM_to_GEO(QString::fromUtf16(text), easting, northing, one, two) ==
               CoordOutsideArea;
    };
    QVERIFY(refuses(u"31N", 500000, 5000000));
    QVERIFY(refuses(u"31N", 100000, 100000));
    QVERIFY(refuses(u"32X", 500000, 8500000));
    QVERIFY(refuses(u"31N", notANumber, 100000));
    QVERIFY(refuses(u"31N", 500000, infinity));
    QVERIFY(refuses(u"31N", 1e300, 1e300));
    QCOMPARE(UTM_to_GEO(QStringLiteral("4Q"), 618000, 2357000, one, two),
             static_cast<int>(CoordOk));
    QVERIFY(metresApart(Coord(one, two), Coord(-157.8639, 21.3109)) < 300); // Honolulu
}

QTEST_APPLESS_MAIN(TestCoord)
#include "tst_coord.moc"
