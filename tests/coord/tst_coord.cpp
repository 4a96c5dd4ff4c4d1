#include "near.h"

#include <VLBase/coord/coord.h>
#include <VLBase/coord/coordconversion.h>

#include <QTest>

#include <algorithm>
#include <limits>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// The formats in their order, and for each the largest distance in metres between a position and
/// its text's, half the last digit on each axis: of a millionth, a hundredth of a second and a
/// second, of metres, of millimetres with some micrometres of arithmetic, of a subsquare.
constexpr double reach[] = {0.079, 0.22, 21.9, 0.72, 0.72, 0.00073, 0.22, 5200};
constexpr int formatCount = 8;

double apart(const Coord& one, const Coord& other)
{
    return metresApart(one.GetLatitude(), one.GetLongitude(), other.GetLatitude(),
                       other.GetLongitude());
}

/// \return empty, or what went wrong.
QString faultOfRoundTrip(const Coord& position, CoordFormat format)
{
    const QString text = position.GetString(format);
    if (text.startsWith(u'#'))
        return {};
    Coord read(77, 77);
    read.SetString(text, format);
    double longitude = 0, latitude = 0;
    const int status = StringToCoord(text, format, longitude, latitude);
    const double away = apart(position, read);
    const QString again = read.GetString(format);
    if (status == CoordOk && Coord(longitude, latitude) == read && read.IsValid() &&
        again == text && away <= reach[static_cast<int>(format)])
        return {};
    return QStringLiteral("%1 %2 gives %3, then %4, %5 m away")
        .arg(position.GetLongitude(), 0, 'f', 12)
        .arg(position.GetLatitude(), 0, 'f', 12)
        .arg(text, again)
        .arg(away);
}

} // namespace

class TestCoord : public QObject
{
    Q_OBJECT

private slots:
    void writes()
    {
        using F = CoordFormat;
        const std::tuple<double, double, F, QString> known[] = {
            {12.345678, -1.5, F::GeoDecimal, u"E012.345678 S01.500000"_qs},
            // Digits carry, and what is only just below a half does not.
            {-9.9999996, 0.0000005, F::GeoDecimal, u"W010.000000 N00.000001"_qs},
            {0.00000049999999, 90, F::GeoDecimal, u"E000.000000 N90.000000"_qs},
            {9.99999999, -59.99999999, F::GeoLong, u"E010°00'00.00 S60°00'00.00"_qs},
            {0.0166666, 0.0333333, F::GeoShort, u"E000°01'00 N00°02'00"_qs},
            {-77.036528, 38.889722, F::GeoShort, u"W077°02'12 N38°53'23"_qs},
            // PROJ 9.1.1: 389917.7576 5819698.5824; GeographicLib 2.1.2 for the letters.
            {13.3777, 52.51627, F::Utm, u"33U 0389918 5819699"_qs},
            {180, 0, F::Utm, u"01N 0166021 0000000"_qs},
            // A southern northing that rounds to the equator; Svalbard's rule ends below 84.
            {3, -1e-6, F::Utm, u"31N 0500000 0000000"_qs},
            {10, 84, F::Utm, u"32X 0511670 9328195"_qs},
            {-179.54313348978, -45.12515484763, F::Mgrs, u"01G-CL-00000-00000"_qs},
            // Known squares of amateur radio: Munich, and W1AW in Newington.
            {11.60833, 48.14666, F::QthMaidenhead, u"JN58td"_qs},
            {-72.72700, 41.71475, F::QthMaidenhead, u"FN31pr"_qs},
            {-180, -90, F::QthMaidenhead, u"AA00aa"_qs},
            {180, 90, F::QthMaidenhead, u"RR99xx"_qs},
        };
        for (const auto& [longitude, latitude, format, formatted] : known) {
            const Coord position(longitude, latitude);
            QString plain = formatted;
            for (const QChar fixed : u" .°'-"_qs)
                plain.remove(fixed);
            QCOMPARE(position.GetText(format), plain);
            QCOMPARE(position.GetString(format), formatted);
            QString written;
            QCOMPARE(CoordToString(longitude, latitude, format, written), int{CoordOk});
            QCOMPARE(written, formatted);
            Coord read(77, 77), readPlain(77, 77);
            read.SetText(written, format);
            readPlain.SetText(plain, format);
            QCOMPARE(read.GetText(format), plain);
            QCOMPARE(readPlain, read);
        }
    }

    void refuses()
    {
        using F = CoordFormat;
        const std::tuple<double, double, F, const char*, CoordStatus> positions[] = {
            {181, 91, F::GeoDecimal, "#INVALID LATITUDE", CoordInvalidLatitude},
            {0, notANumber, F::QthMaidenhead, "#INVALID LATITUDE", CoordInvalidLatitude},
            {180.0000001, 0, F::GeoShort, "#INVALID LONGITUDE", CoordInvalidLongitude},
            {infinity, 85, F::Utm, "#INVALID LONGITUDE", CoordInvalidLongitude},
            {0, 84.0000001, F::Utm, "#LATITUDE OUTSIDE UTM AREA", CoordOutsideArea},
            {0, -80.0000001, F::Utm, "#LATITUDE OUTSIDE UTM AREA", CoordOutsideArea},
            {0, 84, F::Mgrs, "#LATITUDE OUTSIDE MGRS AREA", CoordOutsideArea},
            {180, 0, F::Mgrs, "#INVALID LONGITUDE", CoordInvalidLongitude},
            {15, 53.9999, F::Rt90, "#OUTSIDE RT90 AREA", CoordOutsideArea},
            {25.0001, 60, F::Rt90, "#OUTSIDE RT90 AREA", CoordOutsideArea},
        };
        QString text = QStringLiteral("untouched");
        for (const auto& [longitude, latitude, format, refusal, status] : positions) {
            const Coord position(longitude, latitude);
            QCOMPARE(position.GetText(format), QLatin1String(refusal));
            QCOMPARE(position.GetString(format), QLatin1String(refusal));
            QCOMPARE(CoordToString(longitude, latitude, format, text), int{status});
            const bool isOnGlobe = std::abs(longitude) <= 180 && std::abs(latitude) <= 90;
            QCOMPARE(position.IsValid(), isOnGlobe);
        }
        QCOMPARE(CoordToString(0, 0, static_cast<F>(8), text), int{CoordUnknownFormat});
        QCOMPARE(text, QStringLiteral("untouched"));
        QVERIFY(Coord(180, -90).IsValid() && !Coord(0, -90.000001).IsValid());
        QVERIFY(Coord(1, 2) != Coord(1, std::nextafter(2, 3)));
    }

    // Anywhere; and around every multiple of three and four degrees, by less than a metre and not
    // at all: the borders of zones and bands, of areas and of the globe.
    void roundTrips()
    {
        std::mt19937_64 random(20240301);
        std::uniform_real_distribution<double> longitudes(-180, 180), latitudes(-90, 90);
        std::uniform_real_distribution<double> swedish(0, 1), offset(-1e-5, 1e-5);
        std::uniform_int_distribution<int> thirds(-60, 60), quarters(-22, 22), coin(0, 1);
        const auto beside = [&](int border, double limit) {
            return std::clamp(border + coin(random) * offset(random), -limit, limit);
        };
        const auto check = [](const Coord& position, int format) {
            const QString fault = faultOfRoundTrip(position, static_cast<CoordFormat>(format));
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        };
        for (int i = 0; i < 8000; ++i) {
            for (int format = 0; format < formatCount; ++format) {
                check({longitudes(random), latitudes(random)}, format);
                check({beside(3 * thirds(random), 180), beside(4 * quarters(random), 90)}, format);
            }
            check({10 + 15 * swedish(random), 54 + 16 * swedish(random)}, 5);
            check({10 + 15 * swedish(random), coin(random) ? 54.0 : 70.0}, 5);
            check({coin(random) ? 10.0 : 25.0, 54 + 16 * swedish(random)}, 5);
        }
        for (const double longitude : {-180.0, -90.0, -0.0, 0.0, 10.0, 25.0, 180.0}) {
            for (const double latitude : {-90.0, -80.0, -0.0, 0.0, 54.0, 70.0, 84.0, 90.0}) {
                for (int format = 0; format < formatCount; ++format)
                    check({longitude, latitude}, format);
            }
        }
    }

    void readsExactAngles()
    {
        // The nearest doubles, as the compiler reads them.
        Coord position;
        position.SetString(QStringLiteral("W077.036528 N38.889722"), CoordFormat::GeoDecimal);
        QVERIFY(position == Coord(-77.036528, 38.889722));
        position.SetText(QStringLiteral("E0483000S331530"), CoordFormat::GeoShort);
        QVERIFY(position == Coord(48.5, -33.258333333333333));
        position.SetText(QStringLiteral("JN58td"), CoordFormat::QthMaidenhead);
        QVERIFY(apart(position, Coord(11.625, 48.14583333333333)) < 1e-6);
        // West and south of zero stay there.
        position.SetString(QStringLiteral("W000.000000 S00.000000"), CoordFormat::GeoDecimal);
        QCOMPARE(position.GetText(CoordFormat::GeoShort), QStringLiteral("W0000000S000000"));
        QCOMPARE(position.GetText(CoordFormat::QthMaidenhead), QStringLiteral("JJ00aa"));
    }

    void refusesText()
    {
        // Among them the easting of a neighbouring zone, the northing of another band, and a zone
        // that Svalbard lacks.
        const std::pair<CoordFormat, QStringList> texts[] = {
            {CoordFormat::GeoDecimal,
             {QString(), u"E012.345678 N12.34567"_qs, u"E012.345678 N12.3456789"_qs,
              u"E012.3_____ N12.345678"_qs, u"E 12.345678 N12.345678"_qs,
              u"E012,345678 N12.345678"_qs, u"N12.345678 E012.345678"_qs,
              u"E180.000001 N12.345678"_qs, u"E012.345678 N90.000001"_qs,
              u"E\u0660\u0661\u0662.345678 N12.345678"_qs, u"\u0415012.345678 N12.345678"_qs}},
            {CoordFormat::GeoLong, {u"E012°60'00.00 N12°00'00.00"_qs}},
            {CoordFormat::GeoShort, {u"E012°00'60 N12°00'00"_qs, u"E012º00'00 N12º00'00"_qs}},
            {CoordFormat::Utm,
             {u"00N 0500000 0000000"_qs, u"61N 0500000 0000000"_qs, u"31O 0500000 0000000"_qs,
              u"31Y 0500000 9000000"_qs, u"31N 0100000 0500000"_qs, u"31N 0500000 5000000"_qs,
              u"31M 0500000 10000000"_qs, u"32X 0500000 8500000"_qs, u"31N 9999999 9999999"_qs}},
            {CoordFormat::Mgrs,
             {u"33U-UU-8991-1969"_qs, u"1G-CL-00000-00000"_qs, u"33X-WM-00000-99999"_qs,
              u"33U-AU-89918-19699"_qs}},
            {CoordFormat::Rt90,
             {u"X5000000.000 Y1500000.000"_qs, u"Y6580868.911 X1628047.914"_qs,
              u"X9999999.999 Y9999999.999"_qs}},
            {CoordFormat::QthMaidenhead, {u"SA00aa"_qs, u"AA00ya"_qs, u"JN58"_qs}},
        };
        double longitude = 12, latitude = 34;
        for (const auto& [format, list] : texts) {
            for (const QString& text : list + QStringList(QString(10000, u'E'))) {
                QVERIFY2(StringToCoord(text, format, longitude, latitude) == CoordMalformedText,
                         qPrintable(text));
                QVERIFY(longitude == 12 && latitude == 34);
                Coord position(12, 34);
                position.SetText(text, format);
                QVERIFY(position == Coord(12, 34));
            }
        }
        const auto none = static_cast<CoordFormat>(-1);
        QCOMPARE(StringToCoord(QString(), none, longitude, latitude), int{CoordUnknownFormat});
    }

    // One character of a good text made another: refused, or a text that this is the position of.
    // Letters in any case are the same.
    void damagedTextsNeverLie()
    {
        const QString characters = QStringLiteral(u"059 -.'EWNSXYAI_°\u0665\u0415");
        const Coord position(18.058275, 59.329554);
        for (int value = 0; value < formatCount; ++value) {
            const auto format = static_cast<CoordFormat>(value);
            const QString good = position.GetString(format);
            Coord lower(77, 77);
            lower.SetString(good.toLower(), format);
            Coord upper(78, 78);
            upper.SetText(position.GetText(format).toUpper(), format);
            QVERIFY(lower == upper && lower.GetString(format) == good);
            for (qsizetype place = 0; place < good.size(); ++place) {
                for (const QChar character : characters) {
                    QString text = good;
                    text[place] = character;
                    double longitude = 0, latitude = 0;
                    if (StringToCoord(text, format, longitude, latitude) == CoordOk)
                        QCOMPARE(Coord(longitude, latitude).GetString(format).toLower(),
                                 text.toLower());
                }
            }
        }
    }

    // PROJ 9.1.1, +proj=utm +ellps=WGS84.
    void convertsUtm()
    {
        const std::tuple<double, double, const char*, double, double> published[] = {
            {13.3777, 52.51627, "33U", 389917.7576, 5819698.5824},
            {-180, -80, "01C", 441867.7849, 10000000 - 8883084.9559},
            {20, 84, "34X", 488330.4792, 9328195.1111},
            {180, 10, "01P", 171071.2639, 1106908.8542},
        };
        for (const auto& [longitude, latitude, band, easting, northing] : published) {
            QString zone;
            double east = 0, north = 0, readLongitude = 0, readLatitude = 0;
            QCOMPARE(GEO_to_UTM(longitude, latitude, zone, east, north), int{CoordOk});
            QCOMPARE(zone, QLatin1String(band));
            QVERIFY(isNear(east, easting, 0.1) && isNear(north, northing, 0.1));
            if (zone.startsWith(u'0'))
                zone.remove(0, 1);
            QCOMPARE(UTM_to_GEO(zone.toLower(), east, north, readLongitude, readLatitude),
                     int{CoordOk});
            const Coord read(readLongitude, readLatitude);
            QVERIFY(read.IsValid() && apart(Coord(longitude, latitude), read) < 0.05);
        }
    }

    void refusesUtm()
    {
        QString zone = QStringLiteral("untouched");
        double one = 12, two = 34;
        QCOMPARE(GEO_to_UTM(0, notANumber, zone, one, two), int{CoordInvalidLatitude});
        QCOMPARE(GEO_to_UTM(180.1, 85, zone, one, two), int{CoordInvalidLongitude});
        QCOMPARE(GEO_to_UTM(0, 85, zone, one, two), int{CoordOutsideArea});
        const std::tuple<const char16_t*, double, double> outside[] = {
            {u"31N", 500000, 5000000},    {u"31N", 100000, 100000},   {u"32X", 500000, 8500000},
            {u"31N", notANumber, 100000}, {u"31N", 500000, infinity}, {u"31N", 1e300, 1e300},
        };
        for (const auto& [text, easting, northing] : outside)
            QCOMPARE(UTM_to_GEO(QString::fromUtf16(text), easting, northing, one, two),
                     int{CoordOutsideArea});
        for (const char16_t* text : {u"", u"N", u"031N", u"61N", u"0N", u"31", u"31I", u"31Y",
                                     u"3 N", u"31\u041D", u"\u0663N", u"N31"}) {
            QCOMPARE(UTM_to_GEO(QString::fromUtf16(text), 500000, 100000, one, two),
                     int{CoordMalformedText});
        }
        QVERIFY(one == 12 && two == 34 && zone == QLatin1String("untouched"));
    }
};

QTEST_APPLESS_MAIN(TestCoord)
#include "tst_coord.moc"
