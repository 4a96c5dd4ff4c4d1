#include "near.h"

#include <VLBase/coord/merccoordtrans.h>

#include <QTest>

#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int smallestInt = std::numeric_limits<int>::min();

const CMercCoordTrans transform;

/// Latitude, longitude, code of the projection or datum, meridian or zone.
struct Refused
{
    double latitude, longitude;
    int code, zone;
};

} // namespace

class TestMercCoordTrans : public QObject
{
    Q_OBJECT

private slots:
    // PROJ 9.1.1, +proj=tmerc on the projection's published parameters.
    void projects()
    {
        // Code, latitude, longitude, meridian, easting, northing.
        const std::tuple<int, double, double, int, double, double> published[] = {
            // Ordnance Survey, "A guide to coordinate systems in Great Britain", annex C.
            {1, 52 + 39 / 60.0 + 27.2531 / 3600, 1 + 43 / 60.0 + 4.5177 / 3600, 0, 651409.903,
             313177.270},
            {1, 60.72, -0.85, 0, 462737.1161, 1204578.1477},
            {2, 53.3498, -6.2603, 0, 315836.0480, 234696.1893},
            {3, 48.8582, 2.2945, 3, 448249.3420, 5412039.8158},
            {-4, 79.99, 14.9, 15, 498059.5097, 8880471.3312},
            {4, -79.5, -179.2, -177, 455253.0433, -8826623.8382},
            {5, 59.3293, 18.0686, 0, 1628638.2247, 6580847.4567},
            {6, 45.4642, 9.19, 0, 1514854.1876, 5034631.1865},
            {7, 41.9, 12.5, 0, 2312615.4016, 4641778.0632},
            {8, 60.1699, 24.9384, 0, 385559.8151, 6674944.7742},
            {10, 36.75, 3.04, 3, 503570.7935, 4066849.3242},
            {11, 19.43, -99.13, -99, 486352.8296, 2148283.9581},
            {12, 59.3293, 18.0686, 0, 1628816.8892, 6580220.5266},
            // From 13 on with the mixed axes, and the flattening as latitude of origin.
            {13, 57.7, 11.97, 0, 1539605.1426, 6375402.1101},
            {18, 67.85, 23.9, 0, 1556681.3279, 7507141.7956},
        };
        for (const auto& [code, latitude, longitude, meridian, easting, northing] : published) {
            double east = 0, north = 0;
            QVERIFY(transform.LL2TM(latitude, longitude, code, meridian, east, north));
            QVERIFY(isNear(east, easting - 0.005, 0.001));
            QVERIFY(isNear(north, northing + 0.005, 0.001));
            QCOMPARE(transform.LL2TM(true, latitude, longitude, code, meridian), east);
            QCOMPARE(transform.LL2TM(false, latitude, longitude, code, meridian), north);

            double readLatitude = -1, readLongitude = -1;
            const bool isRead =
                transform.TM2LL(easting, northing, code, meridian, readLatitude, readLongitude);
            QCOMPARE(isRead, code <= 12);
            QVERIFY(isNear(readLatitude, isRead ? latitude : -1.0, 1e-8));
            QVERIFY(isNear(readLongitude, isRead ? longitude : -1.0, 2e-8));
            QCOMPARE(transform.TM2LL(true, easting, northing, code, meridian), readLatitude);
            QCOMPARE(transform.TM2LL(false, easting, northing, code, meridian), readLongitude);
        }
    }

    void refusesProjection()
    {
        const Refused all[] = {
            {91, 0, 4, 3},    {0, -181, 4, 3},  {notANumber, 0, 4, 3}, {0, -infinity, 4, 3},
            {1e300, 0, 4, 3}, {0, 0, 0, 3},     {0, 0, -19, 3},        {0, 0, smallestInt, 3},
            {0, 0, 3, 181},   {0, 0, -4, -181},
        };
        for (const auto& [latitude, longitude, code, meridian] : all) {
            double east = 12, north = 34;
            QVERIFY(!transform.LL2TM(latitude, longitude, code, meridian, east, north));
            QVERIFY(east == 12 && north == 34);
            QCOMPARE(transform.LL2TM(true, latitude, longitude, code, meridian), -1.0);
        }
        // The true Hong Kong grid has its origin here (PROJ 9.1.1, EPSG:2326: 836694.05,
        // 819069.80). With the meridian in radians, 112 of them lie between.
        QVERIFY(std::abs(transform.LL2TM(true, 22.312133333, 114.178555556, 9, 0)) > 1e9);
        // Whole degrees are tested, and codes 10 and 11 do not mind where the meridian is.
        QVERIFY(transform.LL2TM(true, 90.7, -180.9, 1, 0) != -1.0);
        QVERIFY(transform.LL2TM(true, 0, 0, 10, 500) != -1.0);
    }

    void inverseEndsForEveryInput()
    {
        for (const double northing : {notANumber, infinity, -infinity})
            QCOMPARE(transform.TM2LL(true, 500000, northing, 4, 3), -1.0);
        for (const int code : {0, smallestInt})
            QCOMPARE(transform.TM2LL(true, 500000, 5000000, code, 3), -1.0);
        // Far beyond the pole, and past what meets the limit of the last step only just.
        for (double northing = 1; northing < 1e12; northing *= 1.7)
            transform.TM2LL(true, 500000, northing, 4, 3);
    }

    // PROJ 9.1.1: +proj=cart, +proj=helmert +convention=position_vector, and +inv +proj=cart with
    // the parameters of each datum; out: from WGS 84, in: to WGS 84.
    void shifts()
    {
        // Datum, latitude and longitude, those of the local datum, those of WGS 84.
        const std::tuple<int, double, double, double, double, double, double> computed[] = {
            {1, 51.5, -0.1, 51.4995422106, -0.0984107875, 51.5004577211, -0.1015890674},
            {2, 53.35, -6.26, 53.3497641617, -6.2590072976, 53.3502357969, -6.2609925654},
            {4, -33.9, 151.2, -33.9000000004, 151.2, -33.8999999996, 151.2},
            {5, 59.3293, 18.0686, 59.3297889699, 18.0720485377, 59.3288109792, 18.0651520300},
            {6, 41.9, 12.5, 41.8993518351, 12.5001778686, 41.9006481753, 12.4998221220},
            {-7, 41.9, 12.5, 41.8993518351, 12.5001778686, 41.9006481753, 12.4998221220},
            {8, 60.2, 24.9, 60.1998298625, 24.9031634738, 60.2001700806, 24.8968363018},
            {9, 10, 20, 10.0002816473, 20, 9.9997183713, 20},
            {10, -36, -120, -36.0029933708, -120, -35.9970067264, -120},
            {11, 45, 100, 89.6252578243, 100, 0.5257601743, 100},
            {12, 59.3293, 18.0686, 59.3303136149, 18.0720485377, 59.3282864572, 18.0651521201},
            {101, 15, 120, 14.9996315761, 120.0005811326, 15.0003683774, 119.9994188956},
            {102, 40, -100, 39.9999905157, -99.9995823935, 40.0000094828, -100.0004176222},
            {201, -10, -35, -9.9983724692, -34.9985398959, -10.0016273347, -35.0014601045},
            {301, 24, 121, 24.0020226218, 120.9984898421, 23.9979774622, 121.0015101309},
            {302, 24, 121, 24.0021895407, 120.9984797191, 23.9978105442, 121.0015202546},
            {99, 58, 3, 58.0006063607, 3.0015481639, 57.9993936086, 2.9984518453}, // in from 73 m
        };
        // A tenth of a millimetre; the axes and the eccentricity of WGS 84 differ by that much.
        constexpr double limit = 1e-9;
        for (const auto& [datum, latitude, longitude, northOut, eastOut, northIn, eastIn] :
             computed) {
            const auto& t = transform;
            QVERIFY(isNear(t.FromWGS84(true, latitude, longitude, datum, 0), northOut, limit));
            QVERIFY(isNear(t.FromWGS84(false, latitude, longitude, datum, 0), eastOut, limit));
            QVERIFY(isNear(t.ToWGS84(true, latitude, longitude, datum, 0), northIn, limit));
            QVERIFY(isNear(t.ToWGS84(false, latitude, longitude, datum, 0), eastIn, limit));
        }
        // Longitudes come back on their own half of the circle.
        for (const double longitude : {-179.9, -90.5, -45.0, -1e-7, 0.0, 89.9, 90.1, 179.9}) {
            const double there = transform.FromWGS84(false, -30, longitude, 9, 0);
            QVERIFY(isNear(there, longitude, 1e-12));
        }
    }

    void refusesShift()
    {
        const Refused all[] = {
            {10, 20, 3, 0},           {10, 20, -3, 0},   {10, 20, 0, 0},         {10, 20, 100, 0},
            {10, 20, smallestInt, 0}, {10, 20, -4, 181}, {10, notANumber, 1, 0}, {-91, 0, 1, 0},
        };
        for (const auto& [latitude, longitude, datum, zone] : all) {
            double north = 12, east = 34;
            QVERIFY(!transform.FromWGS84(latitude, longitude, datum, zone, north, east));
            QVERIFY(!transform.ToWGS84(latitude, longitude, datum, zone, north, east));
            QVERIFY(north == 12 && east == 34);
            QCOMPARE(transform.FromWGS84(true, latitude, longitude, datum, zone), -1.0);
            QCOMPARE(transform.ToWGS84(false, latitude, longitude, datum, zone), -1.0);
        }
    }

    // Negative multiples of 6 belong to the west; zones 0 and 61 do not exist.
    void zones()
    {
        const std::tuple<double, double, long, long> places[] = {
            {51, -0.1, -3, 30},      {51, 0, 3, 31},       {50, 6, 9, 32},
            {50, -6, -9, 29},        {50, -7, -9, 29},     {60, 3, 9, 32},
            {60, 2.9999, 3, 31},     {60, 11.9999, 9, 32}, {55.9999, 5, 3, 31},
            {64, 5, 3, 31},          {72, 8.9999, 3, 31},  {75, 20.9999, 15, 33},
            {75, 21, 27, 35},        {90, 41.9, 39, 37},   {75, 42, 45, 38},
            {0, 179.9, 177, 60},     {0, 180, 183, 61},    {0, -180, -183, 0},
            {90.9, 3, 3, 31},        {91, 3, -1, -1},      {0, 181, -1, -1},
            {notANumber, 3, -1, -1},
        };
        for (const auto& [latitude, longitude, meridian, zone] : places) {
            QCOMPARE(transform.UTMCM(latitude, longitude), meridian);
            QCOMPARE(transform.UTMLongZone(latitude, longitude), zone);
        }
    }

    // PROJ 9.1.1: +proj=tmerc +ellps=GRS80 with the zone's published parameters, true pi.
    void convertsToRt90Zones()
    {
        const std::tuple<double, double, double, double> published[] = {
            {57.7, 11.97, 1539602.153, 6397435.050},  {59.4, 13.5583, 1500160.204, 6586599.596},
            {59.33, 15.81, 1500275.844, 6578799.625}, {59.3293, 18.0686, 1500783.709, 6578719.187},
            {63.83, 20.4, 1504714.706, 7080272.678},  {67.85, 23.9, 1556676.193, 7529131.019},
        };
        double x = 12, y = 34;
        for (const double longitude : {10.99, 24.1, notANumber, infinity, -15.0})
            QVERIFY(!transform.convertRt90gon(longitude, 59, x, y) && x == 12 && y == 34);
        for (const double longitude : {11.0, 24.0999})
            QVERIFY(transform.convertRt90gon(longitude, 59, x, y));
        for (const auto& [latitude, longitude, easting, northing] : published) {
            QVERIFY(transform.convertRt90gon(longitude, latitude, x, y));
            // Pi taken as 3.14159 shortens every angle by 8.4e-7, 5.4 to 6.4 m of the northing
            // here. The 6 e^6 of the series, where the paper has e^6, gives half a metre back.
            // That far in the south the meridians are further apart.
            const double lack = 1 - 3.14159 / 3.141592653589793;
            const double sine = std::sin(latitude * 3.141592653589793 / 180);
            const double cosine = std::sqrt(1 - sine * sine);
            const double surplus =
                6378137 * 5 * std::pow(0.00669438, 3) / 6 * std::pow(sine, 3) * cosine;
            const double south = northing * lack - surplus;
            const double stretch = south / 6378137 * sine / cosine - lack;
            QVERIFY(isNear(x, northing - south, 0.05));
            QVERIFY(isNear(y, easting + (easting - 1500000) * stretch, 0.01));
        }
    }
};

QTEST_APPLESS_MAIN(TestMercCoordTrans)
#include "tst_merccoordtrans.moc"
