#include <VLBase/basetypes/band.h>

#include <QRandomGenerator>
#include <QtTest>

#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr unsigned long lastChannel = 0xFFFFFFFF;

Band onePiece()
{
    return Band(QString(), 200e3, 1710.2e6, 512, 885, 512, false);
}

Band twoPieces()
{
    Band band(QString(), 200e3, 890e6, 0, 124, 0, false);
    band.AddSubBand(200e3, 890e6, 955, 1023, 1024);
    return band;
}

} // namespace

class tst_Band : public QObject
{
    Q_OBJECT

private slots:
    void raster()
    {
        // Spacing, offset, frequency, snapped. Fractions round to the nearest; a spacing that is
        // nearly whole is whole, but only from above.
        const std::tuple<double, double, double, double> cases[] = {
            {10e3, 3e3, 22'999.0, 13e3},
            {12'500.01, 0.0, 18'751.0, 25'000.02},
            {10e3, 0.0, -1.0, -10e3},
            {12'500.0009, 0.0, 24'999.0, 12'500.0},
            {12'500.5, 0.0, 18'750.0, 12'500.5},
            {12'499.9995, 0.0, 24'000.0, 24'999.999},
            {0.0, 0.0, 12'345.0, 10e3},
            {10e3, 0.0, 1e300, 1e300},
        };
        for (const auto& [spacing, offset, frequency, snapped] : cases)
            QCOMPARE(Band(QString(), spacing, offset, true).GetFrequency(77, frequency), snapped);
        Band band(QString(), 0.0, 0.0, true);
        QVERIFY(band.GetFrequency(0, 1.0) == 0.0 && band.GetStepWidth() == 10e3);
        unsigned long channel = 4711;
        // Below the offset the remainder is negative, which counts as on the raster.
        for (const double on : {20e3, 20'000.000009, 19'999.999995, -25e3})
            QCOMPARE(band.FindFrequency(on, channel), FrequencyOnChannel);
        for (const double between : {25e3, 19'999.9999, notANumber, infinity})
            QCOMPARE(band.FindFrequency(between, channel), FrequencyBetweenChannels);
        band.SetUseRaster(false);
        QCOMPARE(band.FindFrequency(20e3, channel), FrequencyWithoutRaster);
        QVERIFY(channel == 4711 && band.GetFrequency(77, 12'345.0) == 12'345.0);
    }

    void steps()
    {
        Band raster(QString(), 25e3, 0.0, true), gsm = twoPieces();
        bool up = false, down = false;
        const std::tuple<bool, double, double, bool, bool> frequencies[] = {
            {true, 100e3, 125e3, true, true},
            {true, 125e3, 150e3, false, true},
            {false, 130e3, 100e3, true, false},
        };
        for (const auto& [upwards, from, to, canUp, canDown] : frequencies) {
            QCOMPARE(raster.GetNextFrequency(upwards, up, down, from, 100e3, 150e3), to);
            QVERIFY(up == canUp && down == canDown);
        }
        const std::tuple<unsigned long, bool, unsigned long, bool, bool> channels[] = {
            {0, false, 0, true, false},
            {124, true, 955, true, true},
            {955, false, 124, true, true},
            {1023, true, 1023, false, true},
        };
        for (const auto& [from, upwards, to, canUp, canDown] : channels) {
            gsm.GetFrequency(from);
            const double next = gsm.GetNextFrequency(upwards, up, down, notANumber, 0.0, 10e9);
            QVERIFY(gsm.GetChannelValue() == to && next == gsm.GetFrequency(to));
            QVERIFY(up == canUp && down == canDown);
        }
    }

    void channelsAndFrequencies()
    {
        // Frequency, channel in one piece, where halves go up, and the one below in two pieces.
        const std::tuple<double, quint32, quint32> cases[] = {
            {1710.3e6, 513, 0},
            {1710.2999e6, 512, 0},
            {1710.2e6 - 512.5 * 200e3, 0, 0},
            {1710.2e6 - 515 * 200e3, 4294967293, 0},
            {914.79e6, 4294963831, 123},
            {889.8e6, 4294963706, 1023},
            {889.9e6, 4294963707, 0},
            {notANumber, 0, 0},
            {infinity, 4294967295, 0},
        };
        for (const auto& [frequency, inOne, inTwo] : cases) {
            QCOMPARE(quint32(onePiece().GetChannelForFrequency(frequency)), inOne);
            QCOMPARE(quint32(twoPieces().GetChannelForFrequency(frequency)), inTwo);
        }

        Band band = onePiece();
        unsigned long channel = 4711;
        QCOMPARE(band.GetFrequency(600, 0.0), 1727.8e6);
        QCOMPARE(band.GetFrequency(511, 0.0), 1727.8e6); // stays where it was
        QCOMPARE(band.GetFrequency(886, 0.0), 1785e6);   // goes on beyond the end
        QCOMPARE(band.FindFrequency(1600e6, channel), FrequencyOutsideBand);
        QCOMPARE(channel, 4711UL);
        QCOMPARE(band.FindFrequency(1710.25e6, channel), FrequencyBetweenChannels);
        QVERIFY(channel == 512 && band.GetChannelValue() == 512);

        // Channels have 32 bits, their distance from the calculation factor is a signed number.
        Band whole(QString(), 1.0, 1e6, 0, lastChannel, 0, false);
        QVERIFY(whole.IsValidChannel(lastChannel));
        QCOMPARE(whole.GetFrequency(lastChannel, 0.0), 1e6 - 1.0);
        bool up = true, down = false;
        whole.GetNextFrequency(true, up, down, 0.0, 0.0, 1e12);
        QVERIFY(whole.GetChannelValue() == lastChannel && !up && down);
        if (sizeof(unsigned long) > 4)
            QCOMPARE(whole.GetFrequency(lastChannel + 4, 0.0), 1e6 + 3.0);
    }

    void limits()
    {
        const std::tuple<double, double, int, int> ranges[] = {
            {1710.3e6, 1711.1e6, 513, 516},
            {1710.4e6, 1711e6, 513, 516},
            {2e9, 1e9, 512, 885},
        };
        for (const auto& [low, high, first, last] : ranges) {
            int from = -1, to = -1;
            QVERIFY(onePiece().GetChannelRangeWithinFreqRange(from, to, low, high));
            QVERIFY(from == first && to == last);
        }
        const std::tuple<double, double, bool> reach[] = {
            {914.8e6, 2e9, true},  {880e6, 870e6, true},     {889.85e6, 889.95e6, false},
            {914.9e6, 2e9, false}, {0.0, notANumber, false}, {notANumber, 2e9, false},
        };
        for (const auto& [low, high, inReach] : reach)
            QCOMPARE(twoPieces().HasChannelsWithinFreqRange(low, high), inReach);
        QVERIFY(Band().HasChannelsWithinFreqRange(1.0, 2.0));
    }

    void subBands()
    {
        BandGSM band;
        QCOMPARE(band.GetName(), QStringLiteral("not defined"));
        band.SetStartFreq(900.0);
        QVERIFY(!band.HasChannelsWithinFreqRange(-1e9, 1e9) && band.GetFrequency(0) == 0.0);
        band.AddSubBand(1e3, 500.0, 10, 20, 0);
        band.AddSubBand(1e3, 0.0, 5, 8, 0); // starts at nothing: the lowest start stays
        QCOMPARE(band.GetStartFreq(), 500.0);
        band.AddSubBand(1e3, 700.0, 30, 40, 7); // and the nothing before it does not count either
        QCOMPARE(band.GetStartFreq(), 700.0);
        QVERIFY(band.GetStartChannel() == 5 && band.GetStopChannel() == 40);
        QVERIFY(band.GetChannelCalculationFactor() == 0);

        BandGSM overlapping(QString(), 100.0, 1000.0, 0, 20, 0); // the last match counts
        overlapping.AddSubBand(50.0, 5000.0, 10, 30, 10);
        QCOMPARE(overlapping.GetFrequency(5), 1500.0);
        QCOMPARE(overlapping.GetFrequency(15), 5500.0); // the band's own step counts
        QCOMPARE(overlapping.GetChannelForFrequency(5125.0), 12UL);
    }

    void nextValidChannelAsByWalking()
    {
        QRandomGenerator random(2024);
        for (int round = 0; round < 2000; ++round) {
            BandGSM band;
            for (int i = 0; i < 3; ++i) {
                const auto start = random.bounded(40U);
                band.AddSubBand(1.0, 1.0, start, start + random.bounded(6U), 0);
            }
            for (auto channel = band.GetStartChannel(); channel <= band.GetStopChannel();
                 ++channel) {
                unsigned long up = channel, down = channel;
                while (!band.IsValidChannel(up))
                    ++up;
                while (!band.IsValidChannel(down))
                    --down;
                QCOMPARE(band.GetNextValidChannel(channel, true, false), up);
                QCOMPARE(band.GetNextValidChannel(channel, false, true), down);
            }
        }
        BandGSM inverted(QString(), 1.0, 1.0, 10, 5, 0);
        inverted.AddSubBand(1.0, 1.0, 20, 15, 0);
        inverted.SetStopChannel(100);
        QCOMPARE(inverted.GetNextValidChannel(12, true, false), 12UL);
        // The numbers are a ring: beyond the last one the search goes on at 0.
        inverted.AddSubBand(1.0, 1.0, 3, 4, 0);
        inverted.SetStopChannel(100);
        QCOMPARE(inverted.GetNextValidChannel(50, true, false), 3UL);
    }

    void comparison()
    {
        const Band band = twoPieces();
        Band other = band;
        QVERIFY(other == band && !(other < band) && !(band < other));
        other.AddSubBand(200e3, 890e6, 955, 1023, 1024);
        QVERIFY(other != band);
        other = band;
        other.GetFrequency(17); // the cursor counts
        QVERIFY(other != band);
        other = band;
        other.setVisible(true);
        QVERIFY(!other.isVisible() && other != band);
        QVERIFY(Band(QStringLiteral("z"), 5.0, 0, true) < Band(QStringLiteral("a"), 6.0, 0, true));
        const Band undefined(QString(), notANumber, 0.0, true);
        QVERIFY(undefined != undefined);
    }
};

QTEST_APPLESS_MAIN(tst_Band)
#include "tst_band.moc"
