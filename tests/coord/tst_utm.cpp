#include <VLBase/coord/utm.h>

#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int wgs84 = 23;

bool isNear(double value, double expected, double tolerance)
{
    if (std::abs(value - expected) <= tolerance)
        return true;
    qWarning("%.10f is not within %g of %.10f", value, tolerance, expected);
    return false;
}

} // namespace

class TestUtm : public QObject
{
    Q_OBJECT

private slots:
    void converts_data();
    void converts();
    void convertsWorkedExample();
    void zones_data();
    void zones();
    void readsZoneText_data();
    void readsZoneText();
    void everyEllipsoidComesBack();
    void garbageIsHarmless();
};

// PROJ 9.1.1, +proj=utm +ellps=WGS84.
void TestUtm::converts_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<double>("easting");
    QTest::addColumn<double>("northing");

    const auto row = [](double latitude, double longitude, const char* zone, double easting,
                        double northing) {
        QTest::newRow(zone) << latitude << longitude << QString::fromLatin1(zone) << easting
                            << northing;
    };
    row(52.51627, 13.3777, "33U", 389917.7576, 5819698.5824);
    row(60.3913, 5.3221, "32V", 297353.9327, 6700648.3452);
    row(78.2232, 15.6267, "33X", 514278.7151, 8683355.4695);
    row(-33.8568, 151.2153, "56H", 334900.5697, 10000000 - 3747711.2471);
    row(-80, -180, "1C", 441867.7849, 10000000 - 8883084.9559);
    row(0, 179.999999, "60N", 833978.4455, 0);
    row(71.9, 8.9, "32W", 496532.4484, 7977781.2765);
    row(72, 8.9, "31X", 703202.5089, 7998893.2567);
}

void TestUtm::converts()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(QString, zone);
    QFETCH(double, easting);
    QFETCH(double, northing);

    double north = 0;
    double east = 0;
    QString written;
    LLtoUTM(wgs84, latitude, longitude, north, east, written);
    QCOMPARE(written, zone);
    // The degree factor is short of pi/180 by 1.143e-9 of it: up to a centimetre of the arc.
    const double origin = latitude < 0 ? 10000000 : 0;
    QVERIFY(isNear(east, easting, 0.001));
    QVERIFY(isNear(north - origin, (northing - origin) * (1 - 1.143e-9), 0.001));

    double backLatitude = 0;
    double backLongitude = 0;
    UTMtoLL(wgs84, northing, easting, zone, backLatitude, backLongitude);
    // The one of the way back is too large by 0.794e-9.
    QVERIFY(isNear(backLatitude, latitude * (1 + 0.794e-9), 2e-8));
    // Six degrees from the meridian, in Svalbard, the series ends too early by 3 cm.
    QVERIFY(isNear(backLongitude, longitude, longitude == 8.9 ? 1e-6 : 5e-8));
}

// Snyder, "Map Projections: A Working Manual", page 269: Clarke 1866, 40 30' N, 73 30' W.
void TestUtm::convertsWorkedExample()
{
    double north = 0;
    double east = 0;
    QString zone;
    LLtoUTM(5, 40.5, -73.5, north, east, zone);
    QCOMPARE(zone, QStringLiteral("18T"));
    // The table's radius lacks 0.4 m of 6378206.4 m: that much of the arc, and of the distance
    // from the central meridian. Its eccentricity is that of the book.
    const double lack = 0.4 / 6378206.4;
    QVERIFY(isNear(north, 4484124.4 * (1 - lack), 0.06));
    QVERIFY(isNear(east, 500000 + 127106.5 * (1 - lack), 0.06));
}

void TestUtm::zones_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("zone");

    const auto row = [](double latitude, double longitude, const char* zone) {
        QTest::addRow("%g %g", latitude, longitude)
            << latitude << longitude << QString::fromLatin1(zone);
    };
    row(84.0, 45.0, "38X");
    row(84.0, 10.0, "32X"); // Svalbard's rule ends below 84
    row(83.999, 10.0, "33X");
    row(84.5, 0.0, "31Z");
    row(-80.0, 0.0, "31C");
    row(-80.5, 0.0, "31Z");
    row(-1e-17, 0.0, "31M");
    row(std::nextafter(72.0, 0.0), 50.0, "39W");
    row(72.0, 50.0, "39X");
    row(64.0, 5.0, "31W");
    row(56.0, 3.0, "32V");
    row(56.0, 2.999, "31V");
    row(0.0, 180.0, "1N");
    row(0.0, 190.0, "2N");
    row(0.0, 360.0, "31N");
    row(0.0, -180.0, "1N");
    row(8.0, -6.0, "30P");
    // Longitudes below -180 are not brought back.
    row(0.0, -190.0, "0N");
}

void TestUtm::zones()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    double north = 0;
    double east = 0;
    QString zone = QStringLiteral("something longer");
    LLtoUTM(wgs84, latitude, longitude, north, east, zone);
    QTEST(zone, "zone");
}

void TestUtm::readsZoneText_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");

    // Northing 10,000,000 is the equator in the south and beyond the pole in the north.
    QTest::newRow("south") << QStringLiteral("31M") << 0.0 << 3.0;
    QTest::newRow("first letter that is south") << QStringLiteral("1A") << 0.0 << -177.0;
    QTest::newRow("blanks before, more behind") << QStringLiteral("  60C zone") << 0.0 << 177.0;
    QTest::newRow("north") << QStringLiteral("31N") << 90.018 << 3.0;
    QTest::newRow("no letter") << QStringLiteral("31") << 90.018 << 3.0;
    QTest::newRow("lower case is above N") << QStringLiteral("31m") << 90.018 << 3.0;
}

void TestUtm::readsZoneText()
{
    QFETCH(QString, zone);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    double readLatitude = 0;
    double readLongitude = 0;
    UTMtoLL(wgs84, 10000000, 500000, zone, readLatitude, readLongitude);
    QVERIFY(isNear(readLatitude, latitude, 0.01));
    QVERIFY(isNear(readLongitude, longitude, 1e-12));
}

void TestUtm::everyEllipsoidComesBack()
{
    for (int row = 1; row <= 23; ++row) {
        double north = 0;
        double east = 0;
        QString zone;
        LLtoUTM(row, -35.3, 149.1, north, east, zone);
        double latitude = 0;
        double longitude = 0;
        UTMtoLL(row, north, east, zone, latitude, longitude);
        QVERIFY(isNear(latitude, -35.3, 2e-8));
        QVERIFY(isNear(longitude, 149.1, 2e-8));
        // All of them lie within a kilometre of WGS 84 here, and none is the same as row 0.
        QVERIFY(isNear(north, 6091200, 1000));
    }
}

void TestUtm::garbageIsHarmless()
{
    double north = 12;
    double east = 34;
    QString zone = QStringLiteral("56");
    for (const int row : {0, -1, 24, std::numeric_limits<int>::min()}) {
        LLtoUTM(row, 50, 10, north, east, zone);
        UTMtoLL(row, 5000000, 500000, zone, north, east);
    }
    QCOMPARE(north, 12.0);
    QCOMPARE(east, 34.0);
    QCOMPARE(zone, QStringLiteral("56"));

    for (const double value :
         {notANumber, std::numeric_limits<double>::infinity(), 1e300, -1e300}) {
        LLtoUTM(wgs84, value, value, north, east, zone);
        QVERIFY(zone.endsWith(u'Z'));
        UTMtoLL(wgs84, value, value, zone, north, east);
    }
    UTMtoLL(wgs84, 0, 500000, QString(10000, u'9'), north, east);
}

QTEST_APPLESS_MAIN(TestUtm)
#include "tst_utm.moc"
