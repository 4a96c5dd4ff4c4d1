#include <VLBase/basetypes/band.h>

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr unsigned long lastChannel = 0xFFFFFFFF;

Band twoPieces()
{
    Band band(QStringLiteral("two pieces"), 200e3, 890e6, 0, 124, 0, false);
    band.AddSubBand(200e3, 890e6, 955, 1023, 1024);
    return band;
}

} // namespace

class tst_Band : public QObject
{
    Q_OBJECT

private slots:
    void raster_data();
    void raster();
    void findOnRaster_data();
    void findOnRaster();
    void stepOnRaster();
    void stepThroughChannels();
    void channelOfFrequency_data();
    void channelOfFrequency();
    void cursorStaysBelowTheFirstChannel();
    void subBandLimits();
    void lastOverlappingSubBandCounts();
    void rangeWithinFrequencies();
    void frequenciesInReach();
    void nextValidChannelAsByWalking();
    void channelsAreThirtyTwoBits();
    void everyExtremeEnds();
    void comparison();
};

void tst_Band::raster_data()
{
    QTest::addColumn<double>("spacing");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("expected");

    QTest::newRow("whole hertz snap down") << 10e3 << 0.0 << 19'999.0 << 10e3;
    QTest::newRow("below zero too") << 10e3 << 0.0 << -1.0 << -10e3;
    QTest::newRow("offset") << 10e3 << 3e3 << 22'999.0 << 13e3;
    QTest::newRow("fraction rounds down") << 12'500.5 << 0.0 << 18'750.0 << 12'500.5;
    QTest::newRow("fraction rounds up") << 12'500.5 << 0.0 << 18'751.0 << 25'001.0;
    QTest::newRow("nearly whole is whole") << 12'500.0009 << 0.0 << 24'999.0 << 12'500.0;
    QTest::newRow("a hair below whole is a fraction")
        << 12'499.9995 << 0.0 << 24'000.0 << 24'999.999;
    QTest::newRow("no spacing is 10 kHz") << 0.0 << 0.0 << 12'345.0 << 10e3;
    QTest::newRow("far outside") << 10e3 << 0.0 << 1e300 << 1e300;
}

void tst_Band::raster()
{
    QFETCH(double, spacing);
    QFETCH(double, offset);
    QFETCH(double, frequency);
    QFETCH(double, expected);
    Band band(QString(), spacing, offset, true);
    QCOMPARE(band.GetFrequency(77, frequency), expected);
    QCOMPARE(band.GetStepWidth(), spacing == 0.0 ? 10e3 : spacing);
    band.SetUseRaster(false);
    QCOMPARE(band.GetFrequency(77, frequency), frequency);
}

void tst_Band::findOnRaster_data()
{
    QTest::addColumn<double>("frequency");
    QTest::addColumn<int>("expected");
    QTest::newRow("on") << 20e3 << 0;
    QTest::newRow("between") << 25e3 << 1;
    QTest::newRow("just above") << 20'000.000009 << 0;
    QTest::newRow("just below") << 19'999.999995 << 0;
    QTest::newRow("too far below") << 19'999.9999 << 1;
    QTest::newRow("below the offset") << -25e3 << 0;
    QTest::newRow("not a number") << notANumber << 1;
    QTest::newRow("infinite") << infinity << 1;
}

void tst_Band::findOnRaster()
{
    QFETCH(double, frequency);
    QFETCH(int, expected);
    Band band;
    unsigned long channel = 4711;
    QCOMPARE(int{band.FindFrequency(frequency, channel)}, expected);
    band.SetUseRaster(false);
    QCOMPARE(band.FindFrequency(frequency, channel), FrequencyWithoutRaster);
    QCOMPARE(channel, 4711UL);
}

void tst_Band::stepOnRaster()
{
    Band band(QString(), 25e3, 0.0, true);
    bool up = false;
    bool down = true;
    QCOMPARE(band.GetNextFrequency(true, up, down, 100e3, 100e3, 150e3), 125e3);
    QVERIFY(up && down);
    QCOMPARE(band.GetNextFrequency(true, up, down, 125e3, 100e3, 150e3), 150e3);
    QVERIFY(!up && down);
    QCOMPARE(band.GetNextFrequency(false, up, down, 130e3, 100e3, 150e3), 100e3);
    QVERIFY(up && !down);
}

void tst_Band::stepThroughChannels()
{
    Band band = twoPieces();
    bool up = false;
    bool down = false;
    const auto step = [&](bool upwards) {
        return band.GetNextFrequency(upwards, up, down, notANumber, 0.0, 10e9);
    };
    QCOMPARE(step(false), 890e6);
    QCOMPARE(band.GetChannelValue(), 0UL);
    QVERIFY(up && !down);

    band.GetFrequency(124);
    QCOMPARE(step(true), 876.2e6); // across the gap to 955
    QCOMPARE(band.GetChannelValue(), 955UL);
    QVERIFY(up && down);
    QCOMPARE(step(false), 914.8e6);
    QCOMPARE(band.GetChannelValue(), 124UL);

    band.GetFrequency(1023);
    QCOMPARE(step(true), 889.8e6);
    QVERIFY(!up && down);
}

void tst_Band::channelOfFrequency_data()
{
    QTest::addColumn<double>("frequency");
    QTest::addColumn<quint32>("onePiece"); // channels 512 to 885 from 1710.2 MHz, by 200 kHz
    QTest::addColumn<quint32>("twoPieces");
    QTest::newRow("first") << 1710.2e6 << 512U << 0U;
    QTest::newRow("halves go up") << 1710.3e6 << 513U << 0U;
    QTest::newRow("below a half") << 1710.2999e6 << 512U << 0U;
    QTest::newRow("beyond the end") << 1800e6 << 961U << 0U;
    QTest::newRow("negative halves go up") << 1710.2e6 - 512.5 * 200e3 << 0U << 0U;
    QTest::newRow("negative wraps") << 1710.2e6 - 515 * 200e3 << 4294967293U << 0U;
    QTest::newRow("of two pieces the channel below") << 914.79e6 << 4294963831U << 123U;
    QTest::newRow("extended") << 876.4e6 << 4294963639U << 956U;
    QTest::newRow("last") << 889.8e6 << 4294963706U << 1023U;
    QTest::newRow("in the crack between the pieces") << 889.9e6 << 4294963707U << 0U;
    QTest::newRow("not a number") << notANumber << 0U << 0U;
    QTest::newRow("infinite") << infinity << 4294967295U << 0U;
    QTest::newRow("minus infinite") << -infinity << 2147483648U << 0U;
}

void tst_Band::channelOfFrequency()
{
    QFETCH(double, frequency);
    QFETCH(quint32, onePiece);
    const Band band(QString(), 200e3, 1710.2e6, 512, 885, 512, false);
    QCOMPARE(quint32(band.GetChannelForFrequency(frequency)), onePiece);
    QTEST(quint32(::twoPieces().GetChannelForFrequency(frequency)), "twoPieces");
}

void tst_Band::cursorStaysBelowTheFirstChannel()
{
    Band band(QString(), 200e3, 1710.2e6, 512, 885, 512, false);
    QCOMPARE(band.GetFrequency(600, 0.0), 1727.8e6);
    QCOMPARE(band.GetFrequency(511, 0.0), 1727.8e6);
    QCOMPARE(band.GetChannelValue(), 600UL);
    QCOMPARE(band.GetFrequency(886, 0.0), 1785e6); // beyond the end is computed all the same

    unsigned long channel = 4711;
    QCOMPARE(band.FindFrequency(1600e6, channel), FrequencyOutsideBand);
    QCOMPARE(channel, 4711UL);
    QCOMPARE(band.FindFrequency(1710.25e6, channel), FrequencyBetweenChannels);
    QCOMPARE(channel, 512UL);
}

void tst_Band::subBandLimits()
{
    BandGSM band;
    QCOMPARE(band.GetName(), QStringLiteral("not defined"));
    QCOMPARE(band.GetFrequency(3), 0.0);
    QCOMPARE(band.GetStepWidth(), 10e3);
    band.AddSubBand(1e3, 500.0, 10, 20, 0);
    QCOMPARE(band.GetStartFreq(), 500.0);
    QCOMPARE(band.GetStartChannel(), 10UL);
    band.AddSubBand(1e3, 0.0, 5, 8, 0); // starts at nothing: the lowest start stays
    QCOMPARE(band.GetStartFreq(), 500.0);
    band.AddSubBand(1e3, 700.0, 30, 40, 7); // and the nothing before it does not count either
    QCOMPARE(band.GetStartFreq(), 700.0);
    QCOMPARE(band.GetStartChannel(), 5UL);
    QCOMPARE(band.GetStopChannel(), 40UL);
    QCOMPARE(band.GetChannelCalculationFactor(), 0UL);
}

void tst_Band::lastOverlappingSubBandCounts()
{
    BandGSM band(QString(), 100.0, 1000.0, 0, 20, 0);
    band.AddSubBand(50.0, 5000.0, 10, 30, 10);
    QCOMPARE(band.GetFrequency(5), 1500.0);
    QCOMPARE(band.GetFrequency(15), 5500.0); // the band's own step counts
    QCOMPARE(band.GetChannelForFrequency(5125.0), 12UL);
}

void tst_Band::rangeWithinFrequencies()
{
    const Band band(QString(), 200e3, 1710.2e6, 512, 885, 512, false);
    const auto range = [&band](double low, double high) {
        int first = -1;
        int last = -1;
        band.GetChannelRangeWithinFreqRange(first, last, low, high);
        return std::pair(first, last);
    };
    QCOMPARE(range(0.0, 10e9), std::pair(512, 885));
    QCOMPARE(range(1710.3e6, 1711.1e6), std::pair(513, 516));
    QCOMPARE(range(1710.4e6, 1711.0e6), std::pair(513, 516));
    QCOMPARE(range(notANumber, notANumber), std::pair(512, 885));
    QCOMPARE(range(2e9, 1e9), std::pair(512, 885));
}

void tst_Band::frequenciesInReach()
{
    const Band band = twoPieces();
    QVERIFY(band.HasChannelsWithinFreqRange(914.8e6, 2e9));
    QVERIFY(band.HasChannelsWithinFreqRange(880e6, 870e6)); // in either order
    QVERIFY(!band.HasChannelsWithinFreqRange(889.85e6, 889.95e6));
    QVERIFY(!band.HasChannelsWithinFreqRange(914.9e6, 2e9));
    QVERIFY(!band.HasChannelsWithinFreqRange(0.0, notANumber));
    QVERIFY(!band.HasChannelsWithinFreqRange(notANumber, 2e9));
    QVERIFY(Band().HasChannelsWithinFreqRange(1.0, 2.0));
}

void tst_Band::nextValidChannelAsByWalking()
{
    QRandomGenerator random(2024);
    for (int round = 0; round < 2000; ++round) {
        BandGSM band;
        for (int i = 0; i < 3; ++i) {
            const auto start = static_cast<unsigned long>(random.bounded(40));
            band.AddSubBand(1.0, 1.0, start, start + static_cast<unsigned long>(random.bounded(6)),
                            0);
        }
        for (unsigned long channel = band.GetStartChannel(); channel <= band.GetStopChannel();
             ++channel) {
            unsigned long up = channel;
            unsigned long down = channel;
            while (!band.IsValidChannel(up))
                ++up;
            while (!band.IsValidChannel(down))
                --down;
            QCOMPARE(band.GetNextValidChannel(channel, true, false), up);
            QCOMPARE(band.GetNextValidChannel(channel, false, true), down);
        }
    }
}

void tst_Band::channelsAreThirtyTwoBits()
{
    Band band(QString(), 1.0, 1e6, 0, lastChannel, 0, false);
    QCOMPARE(band.GetStopChannel(), lastChannel);
    QVERIFY(band.IsValidChannel(lastChannel));
    // The distance to the calculation factor is a signed number.
    QCOMPARE(band.GetFrequency(lastChannel, 0.0), 1e6 - 1.0);

    bool up = true;
    bool down = false;
    band.GetNextFrequency(true, up, down, 0.0, 0.0, 1e12);
    QCOMPARE(band.GetChannelValue(), lastChannel);
    QVERIFY(!up && down);
    int first = 0;
    int last = 0;
    QVERIFY(band.GetChannelRange(first, last));
    QCOMPARE(std::pair(first, last), std::pair(0, -1));
    if (sizeof(unsigned long) > 4)
        QCOMPARE(band.GetFrequency(lastChannel + 4, 0.0), 1e6 + 3.0);
}

void tst_Band::everyExtremeEnds()
{
    const double numbers[] = {notANumber, infinity, -infinity, 0.0, -1.0, 1e308, 5e-324, 200e3};
    const unsigned long channels[] = {0, 1, 0x7FFFFFFF, 0x80000000, lastChannel};
    for (const double step : numbers) {
        for (const double start : numbers) {
            for (const unsigned long first : channels) {
                // A stop below the start leaves a band, and then a gap, without a valid channel.
                Band band(QString(), step, start, first, 3, 7, false);
                for (int pieces = 1; pieces < 3; ++pieces) {
                    for (const double frequency : numbers) {
                        unsigned long channel = 0;
                        bool up = false;
                        bool down = false;
                        band.FindFrequency(frequency, channel);
                        band.GetNextFrequency(true, up, down, frequency, frequency, start);
                        band.GetNextFrequency(false, up, down, frequency, start, frequency);
                    }
                    band.AddSubBand(start, step, lastChannel, first, first);
                }
            }
        }
    }
    BandGSM inverted(QString(), 1.0, 1.0, 10, 5, 0);
    inverted.AddSubBand(1.0, 1.0, 20, 15, 0);
    inverted.SetStartChannel(0);
    inverted.SetStopChannel(100);
    QCOMPARE(inverted.GetNextValidChannel(12, true, false), 12UL);
    QCOMPARE(inverted.GetNextValidChannel(12, false, true), 12UL);
    // The numbers are a ring: beyond the last one the search goes on at 0.
    inverted.AddSubBand(1.0, 1.0, 3, 4, 0);
    inverted.SetStopChannel(100);
    QCOMPARE(inverted.GetNextValidChannel(50, true, false), 3UL);
}

void tst_Band::comparison()
{
    Band band = twoPieces();
    Band copy = band;
    QCOMPARE(copy, band);
    QVERIFY(!(copy < band) && !(band < copy));
    copy.AddSubBand(200e3, 890e6, 955, 1023, 1024);
    QVERIFY(copy != band);
    copy = band;
    QVERIFY(copy == band);
    copy.GetFrequency(17); // the cursor counts
    QVERIFY(copy != band);

    Band hidden = band;
    hidden.setVisible(true);
    QVERIFY(!hidden.isVisible() && hidden != band);

    QVERIFY(Band(QStringLiteral("z"), 5.0, 0, true) < Band(QStringLiteral("a"), 6.0, 0, true));
    const Band undefined(QString(), notANumber, 0.0, true);
    QVERIFY(undefined != undefined);
}

QTEST_APPLESS_MAIN(tst_Band)
#include "tst_band.moc"
