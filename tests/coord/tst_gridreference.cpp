#include "near.h"

#include <VLBase/coord/merccoordtrans.h>

#include <QTest>

#include <array>
#include <limits>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int smallestInt = std::numeric_limits<int>::min();

const CMercCoordTrans transform;

/// What reading must do for every reference that writing makes.
/// \return empty, or what went wrong.
QString faultOfRoundTrip(double latitude, double longitude, int projection)
{
    const QString reference = transform.LL2GR(latitude, longitude, projection);
    if (reference.startsWith(u'#'))
        return {};
    double readLatitude = 0, readLongitude = 0;
    const bool isRead = transform.GR2LL(reference, projection, readLatitude, readLongitude);
    const QString again = transform.LL2GR(readLatitude, readLongitude, projection);
    const double away = metresApart(latitude, longitude, readLatitude, readLongitude);
    if (isRead && again == reference && away < 1.2)
        return {};
    return QStringLiteral("%1 %2 gives %3, then %4, %5 m away")
        .arg(latitude, 0, 'f', 12)
        .arg(longitude, 0, 'f', 12)
        .arg(reference, again)
        .arg(away);
}

} // namespace

class TestGridReference : public QObject
{
    Q_OBJECT

private slots:
    // GeographicLib 2.1.2 (GeoConvert -m): the metre squares of whole UTM values. The positions are
    // those values less the nudge.
    void writes()
    {
        const std::tuple<double, double, const char*> published[] = {
            {52.51627380145, 13.37770343178, "33UUU8991819699"},
            {48.85819392134, 2.29450287747, "31UDQ4825211932"},
            {60.39129694033, 5.32210156730, "32VKN9735400648"},
            {76.58372611260, 15.00474891720, "33XWF0012300321"},
            {-45.12515384763, -179.54312348978, "1GCL0000000000"},
            {-0.00000904619, 44.10136233979, "38MME0000099999"},
            {72.99478221125, 38.38730928394, "37XDB8000000000"},
        };
        for (const auto& [latitude, longitude, reference] : published)
            QCOMPARE(transform.LL2GR(latitude - 0.000001, longitude - 0.00001, 4),
                     QLatin1String(reference));
    }

    // The alternative lettering is ten rows further. The national squares are those of the Ordnance
    // Survey's map of the grid.
    void letters()
    {
        const std::tuple<double, double, int, const char*> places[] = {
            {48.8582, 2.2945, -4, "31UDE"}, {48.8582, 2.2945, 3, "31UDQ"},
            {36.75, 3.04, 10, "31SEA"},     {82.0, 15.0, 4, "33YWM"},
            {83.9999999, 15.0, 4, "33YWP"}, {-80.0, 15.0, -11, "33CWB"},
            {49.92, -6.3, 1, "SV"},         {51.5, -0.12, 1, "TQ"},
            {55.95, -3.19, 1, "NT"},        {60.5, -1.2, 1, "HU"},
            {53.35, -6.26, 2, "O"},         {51.9, -8.47, 2, "W"},
        };
        for (const auto& [latitude, longitude, projection, prefix] : places) {
            const QString reference = transform.LL2GR(latitude, longitude, projection);
            QCOMPARE(reference.chopped(10), QLatin1String(prefix));
        }
    }

    void refusesPosition()
    {
        // Positions that the nudge carries past a zone among them.
        const std::tuple<double, double, int, const char*> places[] = {
            {91, 181, 4, "#INVALID LATITUDE"},
            {notANumber, 0, 4, "#INVALID LATITUDE"},
            {0, 181, 1, "#INVALID LONGITUDE"},
            {0, 179.999995, 4, "#INVALID LONGITUDE"},
            {0, -180.5, 4, "#INVALID LONGITUDE"},
            {84, 180, 4, "#LATITUDE OUTSIDE MGRS AREA"},
            {-80.5, 0, -4, "#LATITUDE OUTSIDE MGRS AREA"},
            {48.8, 2.3, 1, "#OUTSIDE BRITISH GRID AREA"},
            {60, 9, 1, "#OUTSIDE BRITISH GRID AREA"},
            {52, -12, 2, "#OUTSIDE IRISH GRID AREA"},
            {56.5, -5, 2, "#OUTSIDE IRISH GRID AREA"},
            {50, 10, 5, "Invalid"},
            {50, 10, smallestInt, "Invalid"},
        };
        for (const auto& [latitude, longitude, projection, answer] : places)
            QCOMPARE(transform.LL2GR(latitude, longitude, projection), QLatin1String(answer));
    }

    void readsTypedText()
    {
        const std::tuple<const char*, int, const char*> texts[] = {
            {"31U-DQ-48252-11932", 4, "31UDQ4825211932"},
            {" 31u dq\t48252 11932 ", 4, "31UDQ4825211932"},
            {"31UDQ41", 4, "31UDQ4000010000"},
            {"31U DQ 482 119", 4, "31UDQ4820011900"},
            {"01GCL0000000000", 4, "1GCL0000000000"},
            {"31UDE4825211932", -4, "31UDE4825211932"},
            {"33XWM0012300321", 4, "33YWM0012300321"}, // "X" goes on to 84 degrees
            {"tq 30 80", 1, "TQ3000080000"},
            {"O-1590434671", 2, "O1590434671"},
        };
        for (const auto& [text, projection, reference] : texts) {
            double latitude = 0, longitude = 0;
            QVERIFY2(transform.GR2LL(QLatin1String(text), projection, latitude, longitude), text);
            QCOMPARE(transform.LL2GR(latitude, longitude, projection), QLatin1String(reference));
            QCOMPARE(transform.GR2LL(true, QLatin1String(text), projection), latitude);
            QCOMPARE(transform.GR2LL(false, QLatin1String(text), projection), longitude);
        }
    }

    void refusesText()
    {
        const std::pair<int, QStringList> texts[] = {
            {4,
             {QString(), u"31UDQ"_qs, u"31UDQ482521193"_qs, u"31UDQ 4825 211932"_qs,
              u"31UDQ482520119320"_qs, u"31UDQ 48 11 932"_qs, u"31UDQ4825211932-"_qs,
              u"0NDQ4825211932"_qs, u"61NDQ4825211932"_qs, u"031UDQ4825211932"_qs,
              u"3 1UDQ4825211932"_qs, u"31BDQ4825211932"_qs, u"31UDW4825211932"_qs,
              u"31UDQ\u0664\u0668\u0662\u0665"_qs, u"31U\u0391Q4825211932"_qs,
              u"31UDQ"_qs + QString(10000, u'4'), QString(10000, u' ')}},
            // A column of another zone, rows of other bands, what lies west of the zone, and a zone
            // that Svalbard lacks.
            {4,
             {u"31UJQ4825211932"_qs, u"31UDJ4825211932"_qs, u"33YWF0012300321"_qs,
              u"31UAQ4825211932"_qs, u"32XMF0012300321"_qs}},
            {1, {u"AB1234"_qs, u"SI1234"_qs, u"S1234"_qs}},
            {2, {u"OO1234"_qs}},
            {5, {u"31UDQ4825211932"_qs}},
            {smallestInt, {u"31UDQ4825211932"_qs}},
        };
        for (const auto& [projection, list] : texts) {
            for (const QString& text : list) {
                double latitude = 12, longitude = 34;
                QVERIFY2(!transform.GR2LL(text, projection, latitude, longitude), qPrintable(text));
                QVERIFY(latitude == 12 && longitude == 34);
                QCOMPARE(transform.GR2LL(true, text, projection), -1.0);
            }
        }
    }

    // Anywhere, and within two metres of the borders of all zones and bands: there the middle of a
    // square often lies in the neighbour.
    void roundTrips()
    {
        std::mt19937_64 random(20240229);
        std::uniform_real_distribution<double> latitudes(-80, 84), longitudes(-180, 180);
        std::uniform_real_distribution<double> offset(-2e-5, 2e-5);
        std::uniform_int_distribution<int> thirds(-60, 60), quarters(-20, 21);
        constexpr std::array projections = {4, -4, 3, 10, -11};
        for (std::size_t i = 0; i < 40000; ++i) {
            const bool onLongitude = i % 4 >= 2;
            const bool onLatitude = i % 4 % 2 == 1;
            const QString fault = faultOfRoundTrip(
                onLatitude ? 4 * quarters(random) + offset(random) : latitudes(random),
                onLongitude ? 3 * thirds(random) + offset(random) : longitudes(random),
                projections[i % projections.size()]);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }

    // A third near the edges of the squares, those of the grid itself included.
    void roundTripsOnNationalGrids()
    {
        std::mt19937_64 random(11);
        std::uniform_real_distribution<double> metres(-2, 2), anywhere(0, 100000);
        std::uniform_int_distribution<int> square(0, 15);
        for (int i = 0; i < 12000; ++i) {
            const int projection = 1 + i % 2;
            const double inside = i % 3 == 0 ? metres(random) : anywhere(random);
            double latitude = 0, longitude = 0;
            QVERIFY(transform.TM2LL(square(random) * 1e5 + inside,
                                    square(random) * 1e5 + anywhere(random), projection, 0,
                                    latitude, longitude));
            const QString fault = faultOfRoundTrip(latitude, longitude, projection);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }
};

QTEST_APPLESS_MAIN(TestGridReference)
#include "tst_gridreference.moc"
