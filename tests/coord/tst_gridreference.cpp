#include <VLBase/coord/merccoordtrans.h>

#include <QTest>

#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int smallestInt = std::numeric_limits<int>::min();

const CMercCoordTrans transform;

/// Metres between two positions that are near each other.
double distance(double latitude, double longitude, double otherLatitude, double otherLongitude)
{
    const double metresPerDegree = 111320;
    const double north = (latitude - otherLatitude) * metresPerDegree;
    const double east = (longitude - otherLongitude) * metresPerDegree *
                        std::cos(latitude * 3.141592653589793 / 180);
    return std::hypot(north, east);
}

/// What reading must do for every reference that writing makes.
/// \return empty, or what went wrong.
QString faultOfRoundTrip(double latitude, double longitude, int projection)
{
    const QString reference = transform.LL2GR(latitude, longitude, projection);
    if (reference.startsWith(u'#'))
        return {};
    double readLatitude = 0;
    double readLongitude = 0;
    const auto where = QStringLiteral("%1 %2 gives %3, ")
                           .arg(latitude, 0, 'f', 12)
                           .arg(longitude, 0, 'f', 12)
                           .arg(reference);
    if (!transform.GR2LL(reference, projection, readLatitude, readLongitude))
        return where + QStringLiteral("which is refused");
    const QString again = transform.LL2GR(readLatitude, readLongitude, projection);
    if (again != reference)
        return where + QStringLiteral("then ") + again;
    if (!(distance(latitude, longitude, readLatitude, readLongitude) < 1.2))
        return where + QStringLiteral("read elsewhere");
    return {};
}

} // namespace

class TestGridReference : public QObject
{
    Q_OBJECT

private slots:
    void writes_data();
    void writes();
    void letters_data();
    void letters();
    void refusesPosition_data();
    void refusesPosition();
    void readsTypedText_data();
    void readsTypedText();
    void refusesText_data();
    void refusesText();
    void readsXForY();
    void roundTripsEverywhere();
    void roundTripsOnBorders();
    void roundTripsOnNationalGrids();
};

// GeographicLib 2.1.2 (GeoConvert -m): the metre squares of whole UTM values. The positions are
// those values less the nudge.
void TestGridReference::writes_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<QString>("reference");

    const auto row = [](double latitude, double longitude, const char* reference) {
        QTest::newRow(reference) << latitude - 0.000001 << longitude - 0.00001
                                 << QString::fromLatin1(reference);
    };
    row(52.51627380145, 13.37770343178, "33UUU8991819699");
    row(48.85819392134, 2.29450287747, "31UDQ4825211932");
    row(60.39129694033, 5.32210156730, "32VKN9735400648");
    row(76.58372611260, 15.00474891720, "33XWF0012300321");
    row(-45.12515384763, -179.54312348978, "1GCL0000000000");
    row(-33.86052509797, 151.20991992778, "56HLH3441051867");
    row(-0.00000904619, 44.10136233979, "38MME0000099999");
    row(40.71434921246, -74.00596952684, "18TWL8396007523");
    row(72.99478221125, 38.38730928394, "37XDB8000000000");
}

void TestGridReference::writes()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(QString, reference);
    QCOMPARE(transform.LL2GR(latitude, longitude, 4), reference);
}

void TestGridReference::letters_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<int>("projection");
    QTest::addColumn<QString>("prefix");

    // The alternative lettering is ten rows further.
    QTest::newRow("alternative") << 48.8582 << 2.2945 << -4 << QStringLiteral("31UDE");
    QTest::newRow("other ellipsoid") << 48.8582 << 2.2945 << 3 << QStringLiteral("31UDQ");
    QTest::newRow("Clarke 1880") << 36.75 << 3.04 << 10 << QStringLiteral("31SEA");
    QTest::newRow("north of 80") << 82.0 << 15.0 << 4 << QStringLiteral("33YWM");
    QTest::newRow("just below 84") << 83.9999999 << 15.0 << 4 << QStringLiteral("33YWP");
    QTest::newRow("80 south") << -80.0 << 15.0 << 4 << QStringLiteral("33CWM");
    // Squares by the Ordnance Survey's map of the grid.
    QTest::newRow("Scilly") << 49.92 << -6.3 << 1 << QStringLiteral("SV");
    QTest::newRow("London") << 51.5 << -0.12 << 1 << QStringLiteral("TQ");
    QTest::newRow("Edinburgh") << 55.95 << -3.19 << 1 << QStringLiteral("NT");
    QTest::newRow("Shetland") << 60.5 << -1.2 << 1 << QStringLiteral("HU");
    QTest::newRow("Lowestoft") << 52.48 << 1.75 << 1 << QStringLiteral("TM");
    QTest::newRow("Isle of Man") << 54.15 << -4.48 << 1 << QStringLiteral("SC");
    QTest::newRow("Dublin") << 53.35 << -6.26 << 2 << QStringLiteral("O");
    QTest::newRow("Cork") << 51.9 << -8.47 << 2 << QStringLiteral("W");
    QTest::newRow("Belfast") << 54.6 << -5.93 << 2 << QStringLiteral("J");
}

void TestGridReference::letters()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(int, projection);
    QFETCH(QString, prefix);

    const QString reference = transform.LL2GR(latitude, longitude, projection);
    QVERIFY2(reference.startsWith(prefix), qPrintable(reference));
    QCOMPARE(reference.size(), prefix.size() + 10);
}

void TestGridReference::refusesPosition_data()
{
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<int>("projection");
    QTest::addColumn<QString>("answer");

    const auto latitude = QStringLiteral("#INVALID LATITUDE");
    const auto longitude = QStringLiteral("#INVALID LONGITUDE");
    const auto military = QStringLiteral("#LATITUDE OUTSIDE MGRS AREA");
    const auto british = QStringLiteral("#OUTSIDE BRITISH GRID AREA");
    const auto irish = QStringLiteral("#OUTSIDE IRISH GRID AREA");
    QTest::newRow("latitude first") << 91.0 << 181.0 << 4 << latitude;
    QTest::newRow("NaN") << notANumber << 0.0 << 4 << latitude;
    QTest::newRow("longitude") << 0.0 << 181.0 << 1 << longitude;
    QTest::newRow("84 north") << 84.0 << 0.0 << 4 << military;
    QTest::newRow("80.5 south") << -80.5 << 0.0 << -4 << military;
    QTest::newRow("area before zone") << 85.0 << 180.0 << 4 << military;
    QTest::newRow("past the last zone") << 0.0 << 180.0 << 4 << longitude;
    QTest::newRow("nudged past it") << 0.0 << 179.999995 << 4 << longitude;
    QTest::newRow("before the first zone") << 0.0 << -180.5 << 4 << longitude;
    QTest::newRow("France") << 48.8 << 2.3 << 1 << british;
    QTest::newRow("Norway") << 60.0 << 9.0 << 1 << british;
    QTest::newRow("Atlantic") << 52.0 << -12.0 << 2 << irish;
    QTest::newRow("Scotland") << 56.5 << -5.0 << 2 << irish;
    QTest::newRow("other code") << 50.0 << 10.0 << 5 << QStringLiteral("Invalid");
    QTest::newRow("no magnitude") << 50.0 << 10.0 << smallestInt << QStringLiteral("Invalid");
}

void TestGridReference::refusesPosition()
{
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(int, projection);
    QTEST(transform.LL2GR(latitude, longitude, projection), "answer");
}

void TestGridReference::readsTypedText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("projection");
    QTest::addColumn<QString>("reference");

    const auto eiffel = QStringLiteral("31UDQ4825211932");
    QTest::newRow("as written") << eiffel << 4 << eiffel;
    QTest::newRow("as shown") << QStringLiteral("31U-DQ-48252-11932") << 4 << eiffel;
    QTest::newRow("lower case, blanks, tab")
        << QStringLiteral(" 31u dq\t48252 11932 ") << 4 << eiffel;
    QTest::newRow("two digits") << QStringLiteral("31UDQ41") << 4
                                << QStringLiteral("31UDQ4000010000");
    QTest::newRow("six digits") << QStringLiteral("31U DQ 482 119") << 4
                                << QStringLiteral("31UDQ4820011900");
    QTest::newRow("leading zero") << QStringLiteral("01GCL0000000000") << 4
                                  << QStringLiteral("1GCL0000000000");
    QTest::newRow("alternative") << QStringLiteral("31UDE4825211932") << -4
                                 << QStringLiteral("31UDE4825211932");
    QTest::newRow("British") << QStringLiteral("tq 30 80") << 1 << QStringLiteral("TQ3000080000");
    QTest::newRow("Irish") << QStringLiteral("O-1590434671") << 2 << QStringLiteral("O1590434671");
}

void TestGridReference::readsTypedText()
{
    QFETCH(QString, text);
    QFETCH(int, projection);

    double latitude = 0;
    double longitude = 0;
    QVERIFY(transform.GR2LL(text, projection, latitude, longitude));
    QTEST(transform.LL2GR(latitude, longitude, projection), "reference");
    QCOMPARE(transform.GR2LL(true, text, projection), latitude);
    QCOMPARE(transform.GR2LL(false, text, projection), longitude);
}

void TestGridReference::refusesText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("projection");

    const auto row = [](const char* name, const QString& text, int projection = 4) {
        QTest::newRow(name) << text << projection;
    };
    row("empty", {});
    row("no digits", QStringLiteral("31UDQ"));
    row("odd digits", QStringLiteral("31UDQ482521193"));
    row("unequal halves", QStringLiteral("31UDQ 4825 211932"));
    row("twelve digits", QStringLiteral("31UDQ482520119320"));
    row("third run of digits", QStringLiteral("31UDQ 48 11 932"));
    row("hyphen at the end", QStringLiteral("31UDQ4825211932-"));
    row("zone 0", QStringLiteral("0NDQ4825211932"));
    row("zone 61", QStringLiteral("61NDQ4825211932"));
    row("three digits of zone", QStringLiteral("031UDQ4825211932"));
    row("blank inside the zone", QStringLiteral("3 1UDQ4825211932"));
    row("band I", QStringLiteral("31IDQ4825211932"));
    row("band B", QStringLiteral("31BDQ4825211932"));
    row("column of another zone", QStringLiteral("31UJQ4825211932"));
    row("row W", QStringLiteral("31UDW4825211932"));
    row("row of another band", QStringLiteral("31UDJ4825211932"));
    row("west of the zone", QStringLiteral("31UAQ4825211932"));
    row("zone that Svalbard lacks", QStringLiteral("32XMF0012300321"));
    row("Arabic digits", QStringLiteral("31UDQ\u0664\u0668\u0662\u0665\u0662\u0661\u0661"));
    row("Greek letter", QStringLiteral("31U\u0391Q4825211932"));
    row("wide digits", QStringLiteral("\uFF13\uFF11UDQ4825211932"));
    row("10,000 digits", QStringLiteral("31UDQ") + QString(10000, u'4'));
    row("10,000 blanks", QString(10000, u' '));
    row("no such British square", QStringLiteral("AB1234"), 1);
    row("letter I on the British grid", QStringLiteral("SI1234"), 1);
    row("one British letter", QStringLiteral("S1234"), 1);
    row("two Irish letters", QStringLiteral("OO1234"), 2);
    row("projection without a grid", QStringLiteral("31UDQ4825211932"), 5);
    row("projection without a magnitude", QStringLiteral("31UDQ4825211932"), smallestInt);
}

void TestGridReference::refusesText()
{
    QFETCH(QString, text);
    QFETCH(int, projection);

    double latitude = 12;
    double longitude = 34;
    QVERIFY(!transform.GR2LL(text, projection, latitude, longitude));
    QCOMPARE(latitude, 12.0);
    QCOMPARE(longitude, 34.0);
    QCOMPARE(transform.GR2LL(true, text, projection), -1.0);
}

void TestGridReference::readsXForY()
{
    const QString written = transform.LL2GR(82, 15, 4);
    QVERIFY(written.startsWith(QStringLiteral("33Y")));
    QString typed = written;
    typed[2] = u'X';
    QCOMPARE(transform.GR2LL(true, typed, 4), transform.GR2LL(true, written, 4));

    QString wrong = transform.LL2GR(75, 15, 4);
    wrong[2] = u'Y';
    QCOMPARE(transform.GR2LL(true, wrong, 4), -1.0);
}

void TestGridReference::roundTripsEverywhere()
{
    std::mt19937_64 random(20240229);
    std::uniform_real_distribution<double> latitudes(-80, 84);
    std::uniform_real_distribution<double> longitudes(-180, 180);
    for (int i = 0; i < 20000; ++i) {
        const int projection = std::array{4, -4, 3, 10, -11}[static_cast<std::size_t>(i % 5)];
        const QString fault = faultOfRoundTrip(latitudes(random), longitudes(random), projection);
        QVERIFY2(fault.isEmpty(), qPrintable(fault));
    }
}

// Within two metres of the borders of all zones and bands, on both sides: there the middle of a
// square often lies in the neighbour.
void TestGridReference::roundTripsOnBorders()
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> offset(-2e-5, 2e-5);
    std::uniform_real_distribution<double> latitudes(-80, 84);
    std::uniform_real_distribution<double> longitudes(-180, 180);
    for (int longitude = -180; longitude <= 180; longitude += 3) {
        for (int i = 0; i < 60; ++i) {
            const QString fault =
                faultOfRoundTrip(latitudes(random), longitude + offset(random), 4);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }
    for (int latitude = -80; latitude <= 84; latitude += 4) {
        for (int i = 0; i < 200; ++i) {
            const QString fault =
                faultOfRoundTrip(latitude + offset(random), longitudes(random), 4);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
        for (int longitude = -180; longitude <= 180; longitude += 3) {
            const QString fault =
                faultOfRoundTrip(latitude + offset(random), longitude + offset(random), 4);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }
}

void TestGridReference::roundTripsOnNationalGrids()
{
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> metres(-2, 2);
    std::uniform_int_distribution<int> hundredKilometres(0, 15);
    std::uniform_real_distribution<double> anywhere(0, 100000);
    for (const int projection : {1, 2}) {
        for (int i = 0; i < 6000; ++i) {
            // A third near the edges of the squares, those of the grid itself included.
            const double inside = i % 3 == 0 ? metres(random) : anywhere(random);
            double latitude = 0;
            double longitude = 0;
            QVERIFY(transform.TM2LL(hundredKilometres(random) * 1e5 + inside,
                                    hundredKilometres(random) * 1e5 + anywhere(random), projection,
                                    0, latitude, longitude));
            const QString fault = faultOfRoundTrip(latitude, longitude, projection);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
        }
    }
}

QTEST_APPLESS_MAIN(TestGridReference)
#include "tst_gridreference.moc"
