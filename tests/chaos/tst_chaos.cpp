#include "conductor.h"
#include "writerrole.h"

#include <QTest>

/// The shared log under load and under blows. The short form runs with every test; the long one,
/// before a release, with VLBASE_CHAOS=long in the environment.
class ChaosTest : public QObject
{
    Q_OBJECT

private slots:
    void everyLineIsFiledOrCounted_data();
    void everyLineIsFiledOrCounted();
};

Q_DECLARE_METATYPE(Scenario)

namespace {

bool isLong()
{
    return qgetenv("VLBASE_CHAOS") == "long";
}

/// The number for this run: the long form's, or a share of it that suits every change. Slower
/// builds and systems get less.
int number(int longForm, int shortForm)
{
#ifdef Q_OS_WIN // Starting a process under Wine costs ten times as much.
    return isLong() ? longForm / 20 : (shortForm + 4) / 5;
#else
    return isLong() ? longForm : shortForm;
#endif
}

void addRow(const char* name, const Scenario& scenario)
{
    QTest::newRow(name) << scenario;
}

} // namespace

void ChaosTest::everyLineIsFiledOrCounted_data()
{
    QTest::addColumn<Scenario>("scenario");

    Scenario load;
    load.writers = 8;
    load.linesPerWriter = static_cast<quint64>(number(125'000, 125'000));
    load.fullBufferWaitMs = 30'000;
    addRow("as fast as they can, writers wait", load);
    load.fullBufferWaitMs = 0;
    load.bufferBytes = 64 * 1024;
    addRow("as fast as they can, nobody waits", load);

    Scenario writerKills;
    writerKills.fullBufferWaitMs = 30'000;
    writerKills.writerKills = number(10'000, 100);
    writerKills.viewerKills = number(100, 3);
    addRow("writers killed", writerKills);

    Scenario ownerKills;
    ownerKills.fullBufferWaitMs = 30'000;
    ownerKills.ownerKills = number(1'000, 15);
    ownerKills.writerKills = number(1'000, 15);
    addRow("owners and writers killed", ownerKills);

    Scenario stops;
    stops.fullBufferWaitMs = 30'000;
    stops.writerStops = number(50, 3);
    stops.holds = number(50, 1);
    addRow("writers stopped, the lock held", stops);
}

void ChaosTest::everyLineIsFiledOrCounted()
{
    QFETCH(Scenario, scenario);
    const Verdict verdict = Conductor(scenario).run();

    qInfo("%llu calls returned, %llu lines filed, %llu counted as lost, longest call %llu us",
          verdict.returnedCalls, verdict.filed, verdict.countedLost, verdict.longestCallUs);
    QVERIFY2(verdict.faults.isEmpty(), qPrintable(verdict.faults.join(QLatin1Char('\n'))));
    QVERIFY(verdict.filed > 0);
    QVERIFY(verdict.filed + verdict.countedLost >= verdict.returnedCalls);
    QVERIFY(verdict.filed + verdict.countedLost <= verdict.startedCalls);
    QVERIFY2(verdict.missingReturned <= verdict.countedLost,
             "a line was lost without being counted");

    const bool mayEmpty = scenario.writerStops + scenario.holds > 0;
    if (scenario.fullBufferWaitMs > 0 && !mayEmpty) {
        QCOMPARE(verdict.missingReturned, quint64{0});
        QVERIFY(verdict.countedLost <= static_cast<quint64>(scenario.writerKills));
    }
    if (mayEmpty)
        QVERIFY2(verdict.longestCallUs <= 2'200'000, "a call took longer than the rule allows");
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QStringList arguments = application.arguments().mid(1);
    const QString role = arguments.value(0);
    if (role == QLatin1String("writer"))
        return roles::runWriter(arguments.mid(1));
    if (role == QLatin1String("holder"))
        return roles::runHolder(arguments.mid(1));
    ChaosTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_chaos.moc"
