#include <VLBase/basetypes/gsm.h>

#include <QtTest>

#include <utility>

/// The plan against the channel numbering of 3GPP TS 45.005, section 2.
class tst_GSM : public QObject
{
    Q_OBJECT

private slots:
    void publishedPlan_data();
    void publishedPlan();
    void extendedRange();
    void everyChannelAndBack();
    void noSuchBand();
    void broadcastBand();
    void copiesAndMoves();
};

void tst_GSM::publishedPlan_data()
{
    QTest::addColumn<int>("uplink");
    QTest::addColumn<quint32>("first");
    QTest::addColumn<quint32>("last");
    QTest::addColumn<double>("firstMHz");
    QTest::addColumn<double>("lastMHz");
    QTest::addColumn<double>("duplexMHz");

    QTest::newRow("GSM900") << 0 << 0U << 124U << 890.0 << 914.8 << 45.0;
    QTest::newRow("GSM1800") << 2 << 512U << 885U << 1710.2 << 1784.8 << 95.0;
    QTest::newRow("GSM1900") << 4 << 512U << 810U << 1850.2 << 1909.8 << 80.0;
    QTest::newRow("GSM450") << 6 << 259U << 293U << 450.6 << 457.4 << 10.0;
    QTest::newRow("GSM480") << 8 << 306U << 340U << 479.0 << 485.8 << 10.0;
    QTest::newRow("GSM850") << 10 << 128U << 251U << 824.2 << 848.8 << 45.0;
}

void tst_GSM::publishedPlan()
{
    QFETCH(int, uplink);
    QFETCH(quint32, first);
    QFETCH(quint32, last);
    QFETCH(double, firstMHz);
    QFETCH(double, lastMHz);
    QFETCH(double, duplexMHz);

    GSM plan;
    for (const bool down : {false, true}) {
        const auto band = static_cast<GSM::EGSMBand>(uplink + down);
        const double shift = down ? duplexMHz : 0.0;
        QCOMPARE(qRound64(plan.Channel2Frequency(first, band)), qRound64((firstMHz + shift) * 1e6));
        QCOMPARE(qRound64(plan.Channel2Frequency(last, band)), qRound64((lastMHz + shift) * 1e6));

        const Band entry = plan.GetBand(band);
        QCOMPARE(entry.GetName(),
                 QLatin1String(QTest::currentDataTag()) + QLatin1String(down ? " Down" : " Up"));
        QVERIFY(entry.GetGSM() && entry.isSystem() && entry.isVisible() && entry.GetUseRaster());
        QVERIFY(entry.IsValidChannel(first) && entry.IsValidChannel(last));
        QVERIFY(!entry.IsValidChannel(first - 1) && !entry.IsValidChannel(last + 1));
    }
}

void tst_GSM::extendedRange()
{
    GSM plan;
    QCOMPARE(plan.Channel2Frequency(955, GSM::GSM900Up), 876'200'000.0);
    QCOMPARE(plan.Channel2Frequency(975, GSM::GSM900Down), 925'200'000.0);
    QCOMPARE(plan.Channel2Frequency(1023, GSM::GSM900Up), 889'800'000.0);

    const Band band = plan.GetBand(GSM::GSM900Down);
    QCOMPARE(band.GetStartChannel(), 0UL);
    QCOMPARE(band.GetStopChannel(), 1023UL);
    QVERIFY(band.IsValidChannel(1000));
    QVERIFY(!band.IsValidChannel(125) && !band.IsValidChannel(500) && !band.IsValidChannel(954));
    QCOMPARE(band.GetNextValidChannel(500, false, false), 124UL);
    QCOMPARE(band.GetNextValidChannel(540, false, false), 955UL);
    QCOMPARE(band.GetNextValidChannel(500, true, false), 955UL);
    QCOMPARE(band.GetNextValidChannel(500, false, true), 124UL);
    QCOMPARE(band.GetNextValidChannel(4000, true, false), 1023UL);

    // A channel in the gap belongs to no sub-band.
    QCOMPARE(plan.Channel2Frequency(500, GSM::GSM900Up), 0.0);
}

void tst_GSM::everyChannelAndBack()
{
    GSM plan;
    int channels = 0;
    for (unsigned index = 0; index < plan.GetCount(); ++index) {
        Band band = plan.GetBand(index);
        for (unsigned long channel = 0; channel <= band.GetStopChannel(); ++channel) {
            if (!band.IsValidChannel(channel))
                continue;
            const double frequency = band.GetFrequency(channel, 0.0);
            unsigned long found = 99'999;
            QCOMPARE(band.FindFrequency(frequency, found), FrequencyOnChannel);
            QCOMPARE(found, channel);
            QCOMPARE(band.GetChannelValue(), channel);
            ++channels;
        }
    }
    QCOMPARE(channels, 2 * (125 + 69 + 374 + 299 + 35 + 35 + 124));
}

void tst_GSM::noSuchBand()
{
    GSM plan;
    QCOMPARE(plan.GetCount(), 12U);
    QCOMPARE(plan.Channel2Frequency(1, static_cast<GSM::EGSMBand>(12)), -1.0);
    QCOMPARE(plan.Channel2Frequency(1, static_cast<GSM::EGSMBand>(-1)), -1.0);
    QCOMPARE(plan.GetBand(99).GetName(), QStringLiteral("GSM900 Up"));

    BandGSM untouched;
    QString name = QStringLiteral("mine");
    double step = 1.0;
    double start = 2.0;
    unsigned long first = 3;
    unsigned long last = 4;
    QVERIFY(!plan.GetDefinition(12, untouched));
    QVERIFY(!plan.GetDefinition(12, name, step, start, first, last));
    QCOMPARE(untouched, BandGSM());
    QCOMPARE(name, QStringLiteral("mine"));
    QVERIFY(step == 1.0 && start == 2.0 && first == 3 && last == 4);

    QVERIFY(plan.GetDefinition(11, name, step, start, first, last));
    QCOMPARE(name, QStringLiteral("GSM850 Down"));
    QVERIFY(step == 200e3 && start == 869.2e6 && first == 128 && last == 251);
}

void tst_GSM::broadcastBand()
{
    const int expected[] = {1, 1, 3, 3, 5, 5, 7, 7, 9, 9, 11, 11};
    for (int band = 0; band < 12; ++band)
        QCOMPARE(GSM::GetBcchBandForBand(band), expected[band]);
    for (const int band : {-2, -1, 12, 13, 14, 1000})
        QCOMPARE(GSM::GetBcchBandForBand(band), 1);
}

void tst_GSM::copiesAndMoves()
{
    GSM plan;
    GSM copy = plan;
    plan.setVisible(4, true);
    plan.setVisible(12, false);
    QVERIFY(!plan.GetBand(4).isVisible());
    QVERIFY(copy.GetBand(4).isVisible());

    const GSM moved = std::move(copy);
    QCOMPARE(moved.GetBand(1), GSM().GetBand(1));
    // NOLINTNEXTLINE(bugprone-use-after-move): an empty plan still answers.
    QCOMPARE(copy.Channel2Frequency(1, GSM::GSM900Up), -1.0);
    QCOMPARE(copy.GetBand(0), Band());
}

QTEST_APPLESS_MAIN(tst_GSM)
#include "tst_gsm.moc"
