#include "near.h"

#include <VLBase/coord/utm.h>

#include <QTest>

#include <limits>

namespace {

constexpr int wgs84 = 23;

struct Utm
{
    double northing = 12;
    double easting = 34;
    QString zone = QStringLiteral("something longer");
};

Utm utmOf(int ellipsoid, double latitude, double longitude)
{
    Utm utm;
    LLtoUTM(ellipsoid, latitude, longitude, utm.northing, utm.easting, utm.zone);
    return utm;
}

} // namespace

class TestUtm : public QObject
{
    Q_OBJECT

private slots:
    // PROJ 9.1.1, +proj=utm +ellps=WGS84.
    void agreesWithProj()
    {
        // Latitude, longitude, zone, easting, northing.
        const std::tuple<double, double, const char*, double, double> published[] = {
            {52.51627, 13.3777, "33U", 389917.7576, 5819698.5824},
            {60.3913, 5.3221, "32V", 297353.9327, 6700648.3452},
            {-33.8568, 151.2153, "56H", 334900.5697, 10000000 - 3747711.2471},
            {-80, -180, "1C", 441867.7849, 10000000 - 8883084.9559},
            {72, 8.9, "31X", 703202.5089, 7998893.2567},
        };
        for (const auto& [latitude, longitude, zone, easting, northing] : published) {
            const Utm utm = utmOf(wgs84, latitude, longitude);
            QCOMPARE(utm.zone, QLatin1String(zone));
            // The degree factor is short of pi/180 by 1.143e-9 of it, up to a centimetre of the
            // arc. That of the way back is its inverse.
            const double origin = latitude < 0 ? 10000000 : 0;
            QVERIFY(isNear(utm.easting, easting, 0.001));
            QVERIFY(isNear(utm.northing - origin, (northing - origin) * (1 - 1.143e-9), 0.001));
            double readLatitude = 0, readLongitude = 0;
            UTMtoLL(wgs84, utm.northing, utm.easting, utm.zone, readLatitude, readLongitude);
            // Six degrees from the meridian, in Svalbard, the series ends too early by 3 cm.
            QVERIFY(isNear(readLatitude, latitude, 2e-8));
            QVERIFY(isNear(readLongitude, longitude, longitude == 8.9 ? 1e-6 : 5e-8));
        }
    }

    // PROJ 9.1.1 on its own ellipsoids, +proj=utm +zone=55 +south. Theirs have fractions of metres.
    void everyEllipsoid()
    {
        const double northings[] = {
            6091938.86, 6091651.13, 6092053.16, 6092000.03, 6091863.11, 6091949.88,
            6092008.73, 6091643.82, 6091653.62, 6091651.33, 6091664.70, 6091622.98,
            6091674.96, 6091602.66, 6091595.41, 6092075.64, 6091991.75, 6091650.56,
            6091651.13, 6091644.43, 6091660.32, 6091665.72, 6091664.70,
        };
        int row = 0;
        for (const double northing : northings) {
            const Utm utm = utmOf(++row, -35.3, 149.1);
            QVERIFY(isNear(utm.northing, northing, 0.3));
            double latitude = 0, longitude = 0;
            UTMtoLL(row, utm.northing, utm.easting, utm.zone, latitude, longitude);
            QVERIFY(isNear(latitude, -35.3, 2e-9) && isNear(longitude, 149.1, 2e-9));
        }
    }

    // Svalbard's rule ends below 84. Longitudes below -180 are not brought back.
    void zones()
    {
        const std::tuple<double, double, const char*> places[] = {
            {84.0, 45.0, "38X"},   {84.0, 10.0, "32X"},
            {83.999, 10.0, "33X"}, {84.5, 0.0, "31Z"},
            {-80.0, 0.0, "31C"},   {-80.5, 0.0, "31Z"},
            {-5e-324, 0.0, "31M"}, {std::nextafter(72.0, 0.0), 8.9, "32W"},
            {72.0, 21.0, "35X"},   {64.0, 5.0, "31W"},
            {56.0, 3.0, "32V"},    {56.0, 2.999, "31V"},
            {0.0, 180.0, "1N"},    {0.0, 360.0, "31N"},
            {8.0, -6.0, "30P"},    {0.0, -190.0, "0N"}, // longitudes below -180 are not brought
                                                        // back
        };
        for (const auto& [latitude, longitude, zone] : places)
            QCOMPARE(utmOf(wgs84, latitude, longitude).zone, QLatin1String(zone));
    }

    // Northing 10,000,000 is the equator in the south and beyond the pole in the north.
    void readsZoneText()
    {
        const std::tuple<const char*, bool, double> texts[] = {
            {"31M", true, 3.0},  {"1A", true, -177.0}, {"  60C zone", true, 177.0},
            {"31N", false, 3.0}, {"31", false, 3.0},   {"31m", false, 3.0},
        };
        for (const auto& [zone, isSouthern, longitude] : texts) {
            double readLatitude = 0, readLongitude = 0;
            UTMtoLL(wgs84, 10000000, 500000, QLatin1String(zone), readLatitude, readLongitude);
            QVERIFY2(isNear(readLatitude, isSouthern ? 0.0 : 90.018, 0.01), zone);
            QVERIFY2(isNear(readLongitude, longitude, 1e-12), zone);
        }
    }

    void garbageIsHarmless()
    {
        double one = 12, other = 34;
        for (const int row : {0, -1, 24, std::numeric_limits<int>::min()}) {
            const Utm utm = utmOf(row, 50, 10);
            QVERIFY(utm.northing == 12 && utm.easting == 34 && utm.zone.startsWith(u's'));
            UTMtoLL(row, 5000000, 500000, QStringLiteral("31N"), one, other);
            QVERIFY(one == 12 && other == 34);
        }
        for (const double value : {std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(), 1e300, -1e300}) {
            QVERIFY(utmOf(wgs84, value, value).zone.endsWith(u'Z'));
            UTMtoLL(wgs84, value, value, QString(10000, u'9'), one, other);
        }
    }
};

QTEST_APPLESS_MAIN(TestUtm)
#include "tst_utm.moc"
