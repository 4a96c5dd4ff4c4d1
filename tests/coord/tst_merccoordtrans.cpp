#include <VLBase/coord/merccoordtrans.h>

#include <QTest>

#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int smallestInt = std::numeric_limits<int>::min();

const CMercCoordTrans transform;

bool isNear(double value, double expected, double tolerance)
{
    if (std::abs(value - expected) <= tolerance)
        return true;
    qWarning("%.10f is not within %g of %.10f", value, tolerance, expected);
    return false;
}

/// Latitude, longitude, code of the projection or datum, meridian or zone.
struct Refused
{
    double latitude;
    double longitude;
    int code;
    int zone;
};

} // namespace

class TestMercCoordTrans : public QObject
{
    Q_OBJECT

private slots:
    void projects_data();
    void projects();
    void projectsWorkedExample();
    void keepsKnownOddities();
    void refusesProjection();
    void inverseEndsForEveryInput();
    void shifts_data();
    void shifts();
    void shiftsCrossTheHalfCircle();
    void refusesShift();
    void zones_data();
    void zones();
    void convertsToRt90Zones_data();
    void convertsToRt90Zones();
    void refusesRt90Zones();
};

// Eastings and northings: PROJ 9.1.1, +proj=tmerc on the projection's published parameters.
void TestMercCoordTrans::projects_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<int>("meridian");
    QTest::addColumn<double>("easting");
    QTest::addColumn<double>("northing");

    QTest::newRow("Land's End") << 1 << 50.06632 << -5.71475 << 0 << 134199.2579 << 25149.9018;
    QTest::newRow("Greenwich") << 1 << 51.4779 << -0.0015 << 0 << 538768.8362 << 177385.7111;
    QTest::newRow("Unst") << 1 << 60.72 << -0.85 << 0 << 462737.1161 << 1204578.1477;
    QTest::newRow("Dublin") << 2 << 53.3498 << -6.2603 << 0 << 315836.0480 << 234696.1893;
    QTest::newRow("Malin Head") << 2 << 55.38 << -7.37 << 0 << 239930.1831 << 459430.6105;
    QTest::newRow("UTM ED50") << 3 << 48.8582 << 2.2945 << 3 << 448249.3420 << 5412039.8158;
    QTest::newRow("UTM intl south") << 3 << -33.86 << 151.21 << 153 << 334409.1487 << -3748132.7282;
    QTest::newRow("Berlin") << 4 << 52.51627 << 13.3777 << 15 << 389917.7576 << 5819698.5824;
    QTest::newRow("UTM origin") << 4 << 0.0 << 3.0 << 3 << 500000.0 << 0.0;
    QTest::newRow("negative code") << -4 << 79.99 << 14.9 << 15 << 498059.5097 << 8880471.3312;
    QTest::newRow("far south") << 4 << -79.5 << -179.2 << -177 << 455253.0433 << -8826623.8382;
    QTest::newRow("Bergen") << 4 << 60.3913 << 5.3221 << 9 << 297353.9327 << 6700648.3452;
    QTest::newRow("Stockholm") << 5 << 59.3293 << 18.0686 << 0 << 1628638.2247 << 6580847.4567;
    QTest::newRow("Falsterbo") << 5 << 55.6 << 12.9 << 0 << 1316725.7817 << 6167227.8861;
    QTest::newRow("Milan") << 6 << 45.4642 << 9.19 << 0 << 1514854.1876 << 5034631.1865;
    QTest::newRow("Rome") << 7 << 41.9 << 12.5 << 0 << 2312615.4016 << 4641778.0632;
    QTest::newRow("Helsinki") << 8 << 60.1699 << 24.9384 << 0 << 385559.8151 << 6674944.7742;
    QTest::newRow("Algiers") << 10 << 36.75 << 3.04 << 3 << 503570.7935 << 4066849.3242;
    QTest::newRow("Mexico City") << 11 << 19.43 << -99.13 << -99 << 486352.8296 << 2148283.9581;
}

void TestMercCoordTrans::projects()
{
    QFETCH(int, code);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(int, meridian);
    QFETCH(double, easting);
    QFETCH(double, northing);

    double east = 0;
    double north = 0;
    QVERIFY(transform.LL2TM(latitude, longitude, code, meridian, east, north));
    QVERIFY(isNear(east, easting - 0.005, 0.001));
    QVERIFY(isNear(north, northing + 0.005, 0.001));
    QCOMPARE(transform.LL2TM(true, latitude, longitude, code, meridian), east);
    QCOMPARE(transform.LL2TM(false, latitude, longitude, code, meridian), north);

    double back = 0;
    double backLongitude = 0;
    QVERIFY(transform.TM2LL(easting, northing, code, meridian, back, backLongitude));
    QVERIFY(isNear(back, latitude, 1e-8));
    QVERIFY(isNear(backLongitude, longitude, 2e-8));
    QCOMPARE(transform.TM2LL(true, easting, northing, code, meridian), back);
    QCOMPARE(transform.TM2LL(false, easting, northing, code, meridian), backLongitude);
}

// Ordnance Survey, "A guide to coordinate systems in Great Britain", annex C.
void TestMercCoordTrans::projectsWorkedExample()
{
    const double latitude = 52 + 39 / 60.0 + 27.2531 / 3600;
    const double longitude = 1 + 43 / 60.0 + 4.5177 / 3600;
    QVERIFY(isNear(transform.LL2TM(true, latitude, longitude, 1, 0) + 0.005, 651409.903, 0.001));
    QVERIFY(isNear(transform.LL2TM(false, latitude, longitude, 1, 0) - 0.005, 313177.270, 0.001));
    QVERIFY(isNear(transform.TM2LL(true, 651409.903, 313177.270, 1, 0), latitude, 1e-8));
    QVERIFY(isNear(transform.TM2LL(false, 651409.903, 313177.270, 1, 0), longitude, 1e-8));
}

void TestMercCoordTrans::keepsKnownOddities()
{
    // The half centimetres, which have opposite signs.
    QCOMPARE(transform.LL2TM(true, 0, 3, 4, 3), 499999.995);
    QCOMPARE(transform.LL2TM(false, 0, 3, 4, 3), 0.005);

    // The true Hong Kong grid has its origin here (PROJ 9.1.1, EPSG:2326: 836694.05, 819069.80).
    // With the meridian in radians, 112 of them lie between, and the series is far from home.
    QVERIFY(std::abs(transform.LL2TM(true, 22.312133333, 114.178555556, 9, 0)) > 1e9);

    // Mixed axes: a tenth of a per mille of the arc from the wrong origin, 21 km, is missing to the
    // true RT90 northing of Stockholm, 6580.8 km.
    const double north = transform.LL2TM(false, 59.3293, 18.0686, 15, 0);
    QVERIFY(isNear(north, 6580847 - 21370, 2000));

    // A code without whole degrees is tested by its whole degrees.
    QVERIFY(transform.LL2TM(true, 90.7, -180.9, 1, 0) != -1.0);
}

void TestMercCoordTrans::refusesProjection()
{
    const Refused all[] = {
        {91, 0, 4, 3},    {0, -181, 4, 3},  {notANumber, 0, 4, 3}, {0, -infinity, 4, 3},
        {1e300, 0, 4, 3}, {0, 0, 0, 3},     {0, 0, -19, 3},        {0, 0, smallestInt, 3},
        {0, 0, 3, 181},   {0, 0, -4, -181},
    };
    for (const auto& [latitude, longitude, code, meridian] : all) {
        double east = 12;
        double north = 34;
        QVERIFY(!transform.LL2TM(latitude, longitude, code, meridian, east, north));
        QVERIFY(east == 12 && north == 34);
        QCOMPARE(transform.LL2TM(true, latitude, longitude, code, meridian), -1.0);
    }
}

void TestMercCoordTrans::inverseEndsForEveryInput()
{
    for (const double northing : {notANumber, infinity, -infinity}) {
        QCOMPARE(transform.TM2LL(true, 500000, northing, 4, 3), -1.0);
        QCOMPARE(transform.TM2LL(false, 500000, northing, 1, 3), -1.0);
    }
    for (const int code : {0, 13, 18, smallestInt})
        QCOMPARE(transform.TM2LL(true, 500000, 5000000, code, 3), -1.0);
    // Far beyond the pole, and past what meets the limit of the last step only just.
    for (double northing = 1; northing < 1e12; northing *= 1.7)
        transform.TM2LL(true, 500000, northing, 4, 3);
    // Codes 10 and 11 do not mind where the meridian is.
    QVERIFY(transform.LL2TM(true, 0, 0, 10, 500) != -1.0);
}

// PROJ 9.1.1: +proj=cart, +proj=helmert +convention=position_vector, and +inv +proj=cart with
// the parameters of each datum; out: from WGS 84, in: to WGS 84.
void TestMercCoordTrans::shifts_data()
{
    QTest::addColumn<int>("datum");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitudeOut");
    QTest::addColumn<double>("longitudeOut");
    QTest::addColumn<double>("latitudeIn");
    QTest::addColumn<double>("longitudeIn");

    const auto row = [](int code, double latitude, double longitude, double latitudeOut,
                        double longitudeOut, double latitudeIn, double longitudeIn) {
        QTest::addRow("datum %d", code) << code << latitude << longitude << latitudeOut
                                        << longitudeOut << latitudeIn << longitudeIn;
    };
    row(1, 51.5, -0.1, 51.4995422106, -0.0984107875, 51.5004577211, -0.1015890674);
    row(2, 53.35, -6.26, 53.3497641617, -6.2590072976, 53.3502357969, -6.2609925654);
    row(4, -33.9, 151.2, -33.9000000004, 151.2, -33.8999999996, 151.2);
    row(5, 59.3293, 18.0686, 59.3297889699, 18.0720485377, 59.3288109792, 18.0651520300);
    row(6, 41.9, 12.5, 41.8993518351, 12.5001778686, 41.9006481753, 12.4998221220);
    row(-7, 41.9, 12.5, 41.8993518351, 12.5001778686, 41.9006481753, 12.4998221220);
    row(8, 60.2, 24.9, 60.1998298625, 24.9031634738, 60.2001700806, 24.8968363018);
    row(9, 10, 20, 10.0002816473, 20, 9.9997183713, 20);
    row(10, -36, -120, -36.0029933708, -120, -35.9970067264, -120);
    row(11, 45, 100, 89.6252578243, 100, 0.5257601743, 100);
    row(12, 59.3293, 18.0686, 59.3303136149, 18.0720485377, 59.3282864572, 18.0651521201);
    row(101, 15, 120, 14.9996315761, 120.0005811326, 15.0003683774, 119.9994188956);
    row(102, 40, -100, 39.9999905157, -99.9995823935, 40.0000094828, -100.0004176222);
    row(201, -10, -35, -9.9983724692, -34.9985398959, -10.0016273347, -35.0014601045);
    row(301, 24, 121, 24.0020226218, 120.9984898421, 23.9979774622, 121.0015101309);
    row(302, 24, 121, 24.0021895407, 120.9984797191, 23.9978105442, 121.0015202546);
    // In with a height of 73 m.
    row(99, 58, 3, 58.0006063607, 3.0015481639, 57.9993936086, 2.9984518453);
}

void TestMercCoordTrans::shifts()
{
    QFETCH(int, datum);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, latitudeOut);
    QFETCH(double, longitudeOut);
    QFETCH(double, latitudeIn);
    QFETCH(double, longitudeIn);
    // A tenth of a millimetre; the axes and the eccentricity of WGS 84 differ by that much.
    constexpr double tolerance = 1e-9;

    QVERIFY(
        isNear(transform.FromWGS84(true, latitude, longitude, datum, 0), latitudeOut, tolerance));
    QVERIFY(
        isNear(transform.FromWGS84(false, latitude, longitude, datum, 0), longitudeOut, tolerance));
    QVERIFY(isNear(transform.ToWGS84(true, latitude, longitude, datum, 0), latitudeIn, tolerance));
    QVERIFY(
        isNear(transform.ToWGS84(false, latitude, longitude, datum, 0), longitudeIn, tolerance));
}

void TestMercCoordTrans::shiftsCrossTheHalfCircle()
{
    for (const double longitude : {-179.9, -135.0, -90.5, -45.0, -1e-7, 0.0, 89.9, 90.1, 179.9}) {
        for (const double latitude : {-89.0, -30.0, 0.0, 60.0}) {
            QVERIFY(
                isNear(transform.FromWGS84(false, latitude, longitude, 9, 0), longitude, 1e-12));
            QVERIFY(isNear(transform.ToWGS84(false, latitude, longitude, 4, 0), longitude, 1e-12));
        }
    }
}

void TestMercCoordTrans::refusesShift()
{
    const Refused all[] = {
        {10, 20, 3, 0},           {10, 20, -3, 0},   {10, 20, 0, 0},         {10, 20, 100, 0},
        {10, 20, smallestInt, 0}, {10, 20, -4, 181}, {10, notANumber, 1, 0}, {-91, 0, 1, 0},
    };
    for (const auto& [latitude, longitude, datum, zone] : all) {
        double north = 12;
        double east = 34;
        QVERIFY(!transform.FromWGS84(latitude, longitude, datum, zone, north, east));
        QVERIFY(!transform.ToWGS84(latitude, longitude, datum, zone, north, east));
        QVERIFY(north == 12 && east == 34);
        QCOMPARE(transform.FromWGS84(true, latitude, longitude, datum, zone), -1.0);
        QCOMPARE(transform.ToWGS84(false, latitude, longitude, datum, zone), -1.0);
    }
}

void TestMercCoordTrans::zones_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<int>("meridian");
    QTest::addColumn<int>("zone");

    QTest::newRow("Greenwich") << 51.0 << 0.0 << 3 << 31;
    QTest::newRow("west of it") << 51.0 << -0.1 << -3 << 30;
    QTest::newRow("negative multiple of 6") << 50.0 << -6.0 << -9 << 29;
    QTest::newRow("west of that") << 50.0 << -7.0 << -9 << 29;
    QTest::newRow("positive multiple of 6") << 50.0 << 6.0 << 9 << 32;
    QTest::newRow("Norway") << 60.0 << 5.0 << 9 << 32;
    QTest::newRow("west of Norway") << 60.0 << 2.9999 << 3 << 31;
    QTest::newRow("south of Norway") << 55.9999 << 5.0 << 3 << 31;
    QTest::newRow("north of Norway") << 64.0 << 5.0 << 3 << 31;
    QTest::newRow("Svalbard 31") << 72.0 << 8.9999 << 3 << 31;
    QTest::newRow("Svalbard 33") << 75.0 << 10.0 << 15 << 33;
    QTest::newRow("Svalbard 35") << 75.0 << 21.0 << 27 << 35;
    QTest::newRow("Svalbard 37") << 90.0 << 41.9 << 39 << 37;
    QTest::newRow("east of Svalbard") << 75.0 << 45.0 << 45 << 38;
    QTest::newRow("date line, east") << 0.0 << 179.9 << 177 << 60;
    QTest::newRow("date line itself") << 0.0 << 180.0 << 183 << 61;
    QTest::newRow("date line, west") << 0.0 << -179.9 << -177 << 1;
    QTest::newRow("date line itself, west") << 0.0 << -180.0 << -183 << 0;
    QTest::newRow("whole degrees count") << 90.9 << 3.0 << 3 << 31;
    QTest::newRow("refused latitude") << 91.0 << 3.0 << -1 << -1;
    QTest::newRow("refused longitude") << 0.0 << 181.0 << -1 << -1;
    QTest::newRow("NaN") << notANumber << 3.0 << -1 << -1;
}

void TestMercCoordTrans::zones()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(int, meridian);
    QFETCH(int, zone);

    QCOMPARE(transform.UTMCM(latitude, longitude), static_cast<long>(meridian));
    QCOMPARE(transform.UTMLongZone(latitude, longitude), static_cast<long>(zone));
}

// PROJ 9.1.1: +proj=tmerc +ellps=GRS80 with the zone's published parameters, true pi.
void TestMercCoordTrans::convertsToRt90Zones_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("easting");
    QTest::addColumn<double>("northing");

    QTest::newRow("7.5 gon V") << 57.7 << 11.97 << 1539602.153 << 6397435.050;
    QTest::newRow("5 gon V, its border") << 59.4 << 13.5583 << 1500160.204 << 6586599.596;
    QTest::newRow("2.5 gon V") << 59.33 << 15.81 << 1500275.844 << 6578799.625;
    QTest::newRow("0 gon") << 59.3293 << 18.0686 << 1500783.709 << 6578719.187;
    QTest::newRow("2.5 gon O") << 63.83 << 20.4 << 1504714.706 << 7080272.678;
    QTest::newRow("5 gon O") << 67.85 << 23.9 << 1556676.193 << 7529131.019;
}

void TestMercCoordTrans::convertsToRt90Zones()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, easting);
    QFETCH(double, northing);

    double x = 0;
    double y = 0;
    QVERIFY(transform.convertRt90gon(longitude, latitude, x, y));
    // Pi taken as 3.14159 shortens every angle by 8.4e-7, 5.4 to 6.4 m of the northing here. The
    // 6 e^6 of the series, where the paper has e^6, gives half a metre back.
    const double shortfall = northing * (1 - 3.14159 / 3.141592653589793);
    const double sine = std::sin(latitude * 3.141592653589793 / 180);
    const double surplus =
        6378137 * 5 * std::pow(0.00669438, 3) / 6 * std::pow(sine, 3) * std::sqrt(1 - sine * sine);
    QVERIFY(isNear(x, northing - shortfall + surplus, 0.1));
    QVERIFY(isNear(y, easting, 0.2));
}

void TestMercCoordTrans::refusesRt90Zones()
{
    double x = 12;
    double y = 34;
    for (const double longitude : {10.99, 24.1, notANumber, infinity, -15.0})
        QVERIFY(!transform.convertRt90gon(longitude, 59, x, y));
    QCOMPARE(x, 12.0);
    QCOMPARE(y, 34.0);
    QVERIFY(transform.convertRt90gon(11, 59, x, y));
    QVERIFY(transform.convertRt90gon(24.0999, 59, x, y));
}

QTEST_APPLESS_MAIN(TestMercCoordTrans)
#include "tst_merccoordtrans.moc"
