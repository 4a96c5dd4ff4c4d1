#include "helperrole.h"
#include "testlog.h"
#include "tests/support/program.h"

#include <VLBase/logging/livelogreader.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logstatus.h>
#include <VLBase/logging/logwriter.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMap>
#include <QProcess>
#include <QTest>

using vlbase::logging::LineLedger;
using vlbase::logging::LogOwner;
using vlbase::logging::LogStatus;
using vlbase::logging::peekLog;

namespace {

/// Another process that takes part in the log.
class Helper
{
public:
    Helper()
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        startThisProgram(m_process, {QStringLiteral("helper"), logInstance()});
    }
    ~Helper()
    {
        m_process.closeWriteChannel();
        awaitEnd(m_process);
    }
    QByteArray tell(const char* command)
    {
        m_process.write(QByteArray(command) + '\n');
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(30000))
                return "no answer";
        }
        return m_process.readLine().trimmed();
    }
    bool does(const char* command) { return tell(command) == "done"; }
    void kill()
    {
        m_process.kill();
        awaitEnd(m_process);
    }

private:
    QProcess m_process;
};

/// How often each event came, by module and number; drains until nothing is left.
QMap<QByteArray, int> takeEvents(LogOwner& owner, LineLedger& ledger, std::uint64_t& lost)
{
    QMap<QByteArray, int> events;
    while (!owner.nextIndexIfIdle()) {
        owner.drain();
        const std::string_view pack = owner.pending();
        for (const std::string& line : linesOf(pack)) {
            const LineLedger::Judgement judgement = ledger.judge(line);
            lost += judgement.lostBefore;
            if (judgement.verdict == LineLedger::Verdict::Accept) {
                const auto fields = QByteArray::fromStdString(line).split('\t');
                ++events[fields.value(4) + fields.value(6)];
            }
        }
        owner.markWritten(pack.size());
    }
    lost += ledger.lostUpTo(*owner.nextIndexIfIdle());
    return events;
}

QMap<QByteArray, int> onceEach(const QByteArray& module, int count)
{
    QMap<QByteArray, int> events;
    for (int i = 0; i < count; ++i)
        events[module + QByteArray::number(i)] = 1;
    return events;
}

} // namespace

class tst_LogProcesses : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(!useOwnLog().isEmpty()); }
    void cleanup() { QCOMPARE(peekLog().presence, LogStatus::Presence::Absent); }

    void ownerKilled();
    void holderKilled();
    void allKilled();
};

// Its lines are in three places: in the file, in the staging area, and in the log.
void tst_LogProcesses::ownerKilled()
{
    for (const char* own : {"own 20000 1000000", "own 20000 0"}) {
        Helper owner;
        QCOMPARE(owner.tell(own), QByteArray("0"));
        Helper writer;
        QCOMPARE(writer.tell("join A"), QByteArray("open"));
        QCOMPARE(LogOwner(100).openResult(), LogOwner::OpenResult::Busy);
        QVERIFY(peekLog().ownerAlive);

        QVERIFY(writer.does("send 100"));
        QVERIFY(owner.does("drain") && owner.does("mark 30"));
        CLogWriter here(QStringLiteral("B"));
        for (int i = 0; i < 50; ++i)
            here.SendEvent(QString::number(i), QString(), QString());
        QCOMPARE(peekLog().owners, 1);
        owner.kill();
        QVERIFY(!peekLog().ownerAlive);
        QVERIFY(writer.does("send 0"));

        LogOwner next(100);
        QCOMPARE(next.openResult(), LogOwner::OpenResult::TookOver);
        QCOMPARE(next.bufferSize(), 20000);
        QCOMPARE(peekLog().owners, 1);
        QVERIFY(peekLog().ownerAlive);
        for (int i = 50; i < 60; ++i)
            here.SendEvent(QString::number(i), QString(), QString());
        LineLedger ledger = next.makeLedger();
        std::uint64_t lost = 0;
        QMap<QByteArray, int> expected = onceEach("A", 100);
        for (int i = 0; i < 30; ++i)
            expected.remove("A" + QByteArray::number(i));
        expected.insert(onceEach("B", 60));
        QCOMPARE(takeEvents(next, ledger, lost), expected);
        QCOMPARE(lost, std::uint64_t(0));
    }
}

void tst_LogProcesses::holderKilled()
{
    LogOwner owner(20000, 0);
    LineLedger ledger = owner.makeLedger();
    ledger.startAtBeginning();
    Helper victim;
    QCOMPARE(victim.tell("join A"), QByteArray("open"));
    QVERIFY(victim.does("send 10") && victim.does("lock"));
    QVERIFY(victim.does("spoil"));
    QVERIFY(peekLog().lockHeld);
    victim.kill();

    QElapsedTimer time;
    time.start();
    CLogWriter writer(QStringLiteral("B"));
    for (int i = 0; i < 10; ++i)
        writer.SendEvent(QString::number(i), QString(), QString());
    QVERIFY2(time.elapsed() < 1000, "the dead held the living up");
    QVERIFY(!peekLog().lockHeld);
    QMap<QByteArray, int> expected = onceEach("A", 10);
    expected.insert(onceEach("B", 10));
    std::uint64_t lost = 0;
    QCOMPARE(takeEvents(owner, ledger, lost), expected);
    QCOMPARE(lost, std::uint64_t(0));
}

// Nothing that they left is in the way of the next ones.
void tst_LogProcesses::allKilled()
{
    {
        Helper owner;
        Helper writer;
        QCOMPARE(owner.tell("own 20000 0"), QByteArray("0"));
        QCOMPARE(writer.tell("join A"), QByteArray("open"));
        QVERIFY(writer.does("send 10") && writer.does("lock"));
        owner.kill();
        writer.kill();
    }
    QCOMPARE(peekLog().presence, LogStatus::Presence::Absent);
    QVERIFY(!CLogWriter().IsOpen());
    QVERIFY(!CLiveLogReader().IsOpen());
    LogOwner owner(300);
    QCOMPARE(owner.openResult(), LogOwner::OpenResult::Created);
    QCOMPARE(owner.bufferSize(), 300);
    QCOMPARE(owner.GetIndex(), 100000L);
    QVERIFY(owner.pending().empty());
    QVERIFY(CLogWriter().IsOpen());
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("helper"))
        return runHelper(arguments.value(2));
    tst_LogProcesses test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_logprocesses.moc"
