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

private:
    void judge(const Scenario& scenario, const Verdict& verdict);
};

Q_DECLARE_METATYPE(Scenario)

namespace {

bool isLong()
{
    return qgetenv("VLBASE_CHAOS") == "long";
}

#ifdef Q_OS_WIN // Starting a process under Wine costs ten times as much.
constexpr int costOfAProcess = 5;
#else
constexpr int costOfAProcess = 1;
#endif

/// The number for one round.
int number(int ofAll)
{
    return (ofAll + costOfAProcess - 1) / costOfAProcess;
}

/// The long form goes round many times, because the file of a single one would fill the disk.
void addRow(const char* name, const Scenario& scenario, int longRounds = 1)
{
    QTest::newRow(name) << scenario << (isLong() ? longRounds : 1);
}

} // namespace

void ChaosTest::everyLineIsFiledOrCounted_data()
{
    QTest::addColumn<Scenario>("scenario");
    QTest::addColumn<int>("rounds");

    Scenario load;
    load.writers = 8;
    load.linesPerWriter = static_cast<quint64>(number(125'000));
    load.fullBufferWaitMs = 30'000;
    addRow("as fast as they can, writers wait", load);
    load.fullBufferWaitMs = 0;
    load.bufferBytes = 64 * 1024;
    addRow("as fast as they can, nobody waits", load);

    Scenario writerKills;
    writerKills.fullBufferWaitMs = 30'000;
    writerKills.writerKills = number(100);
    writerKills.viewerKills = number(3);
    addRow("writers killed", writerKills, 100);

    Scenario ownerKills;
    ownerKills.fullBufferWaitMs = 30'000;
    ownerKills.ownerKills = number(15);
    ownerKills.writerKills = number(15);
    addRow("owners and writers killed", ownerKills, 70);

    Scenario stops;
    stops.fullBufferWaitMs = 30'000;
    stops.writerStops = number(3);
    stops.holds = 1;
    addRow("writers stopped, the lock held", stops, 15);
}

void ChaosTest::everyLineIsFiledOrCounted()
{
    QFETCH(Scenario, scenario);
    QFETCH(int, rounds);
    for (int round = 0; round < rounds && !QTest::currentTestFailed(); ++round)
        judge(scenario, Conductor(scenario).run());
}

void ChaosTest::judge(const Scenario& scenario, const Verdict& verdict)
{
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
    if (isLong())
        qputenv("QTEST_FUNCTION_TIMEOUT", "86400000");
    ChaosTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_chaos.moc"
