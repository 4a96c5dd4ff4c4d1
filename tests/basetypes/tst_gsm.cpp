#include <VLBase/basetypes/gsm.h>

#include <QtTest>

#include <utility>

/// The plan against the channel numbering of 3GPP TS 45.005, section 2.
class tst_GSM : public QObject
{
    Q_OBJECT

private slots:
    void publishedPlan()
    {
        const struct
        {
            const char* name;
            unsigned long first, last;
            double firstMHz, lastMHz, duplexMHz;
        } published[] = {
            {"GSM900", 0, 124, 890.0, 914.8, 45.0},
            {"GSM1800", 512, 885, 1710.2, 1784.8, 95.0},
            {"GSM1900", 512, 810, 1850.2, 1909.8, 80.0},
            {"GSM450", 259, 293, 450.6, 457.4, 10.0},
            {"GSM480", 306, 340, 479.0, 485.8, 10.0},
            {"GSM850", 128, 251, 824.2, 848.8, 45.0},
        };
        GSM plan;
        int index = 0;
        for (const auto& expected : published) {
            for (const double shift : {0.0, expected.duplexMHz}) {
                const auto entry = static_cast<GSM::EGSMBand>(index++);
                Band band = plan.GetBand(static_cast<unsigned>(entry));
                QCOMPARE(band.GetName(),
                         QLatin1String(expected.name) + QLatin1String(shift > 0 ? " Down" : " Up"));
                const auto hertz = [&](unsigned long n) {
                    return plan.Channel2Frequency(n, entry);
                };
                QCOMPARE(hertz(expected.first), (expected.firstMHz + shift) * 1e6);
                QCOMPARE(hertz(expected.last), (expected.lastMHz + shift) * 1e6);
                QVERIFY(!band.IsValidChannel(expected.first - 1));
                QVERIFY(!band.IsValidChannel(expected.last + 1));
                for (unsigned long channel = 0; channel < 1100; ++channel) { // and back
                    unsigned long found = channel;
                    QVERIFY(!band.IsValidChannel(channel) ||
                            (band.FindFrequency(band.GetFrequency(channel), found) == 0 &&
                             found == channel));
                }
                QVERIFY(band.GetGSM() && band.isSystem() && band.isVisible() &&
                        band.GetUseRaster());
                QCOMPARE(GSM::GetBcchBandForBand(entry), index < 3 ? 1 : (index - 1) | 1);
            }
        }
        for (const int band : {-2, -1, 12, 13, 14, 1000})
            QCOMPARE(GSM::GetBcchBandForBand(band), 1);
    }

    void extendedRange()
    {
        GSM plan;
        QCOMPARE(plan.Channel2Frequency(955, GSM::GSM900Up), 876'200'000.0);
        QCOMPARE(plan.Channel2Frequency(1023, GSM::GSM900Down), 934'800'000.0);
        QCOMPARE(plan.Channel2Frequency(500, GSM::GSM900Up), 0.0); // in no sub-band

        const Band band = plan.GetBand(GSM::GSM900Down);
        QVERIFY(!band.IsValidChannel(954) && !band.IsValidChannel(1024));
        QCOMPARE(band.GetNextValidChannel(500, false, false), 124UL);
        QCOMPARE(band.GetNextValidChannel(540, false, false), 955UL);
        QCOMPARE(band.GetNextValidChannel(4000, true, false), 1023UL);
    }

    void noSuchBand()
    {
        GSM plan;
        for (const int band : {12, -1})
            QCOMPARE(plan.Channel2Frequency(1, static_cast<GSM::EGSMBand>(band)), -1.0);
        QCOMPARE(plan.GetBand(99), plan.GetBand(0));
        BandGSM found;
        QVERIFY(!plan.GetDefinition(12, found) && found == BandGSM());
        QVERIFY(plan.GetDefinition(3, found) && found.GetName() == QLatin1String("GSM1800 Down"));

        QString name;
        double step = 1.0, start = 2.0;
        unsigned long first = 3, last = 4;
        QVERIFY(!plan.GetDefinition(12, name, step, start, first, last) && name.isNull());
        QVERIFY(plan.GetDefinition(11, name, step, start, first, last));
        QVERIFY(std::tuple(name, step, start, first, last) ==
                std::tuple(QStringLiteral("GSM850 Down"), 200e3, 869.2e6, 128UL, 251UL));
    }

    void copiesAndMoves()
    {
        GSM plan;
        GSM copy = plan;
        plan.setVisible(4, true);
        plan.setVisible(12, false);
        QVERIFY(!plan.GetBand(4).isVisible() && copy.GetBand(4).isVisible());
        const GSM moved = std::move(copy);
        QCOMPARE(moved.GetBand(1), GSM().GetBand(1));
        // NOLINTNEXTLINE(bugprone-use-after-move): an empty plan still answers.
        QVERIFY(copy.Channel2Frequency(1, GSM::GSM900Up) == -1.0 && copy.GetBand(0) == Band());
    }
};

QTEST_APPLESS_MAIN(tst_GSM)
#include "tst_gsm.moc"
