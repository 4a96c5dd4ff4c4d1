#include "conductor.h"

#include "processcontrol.h"
#include "tests/support/program.h"

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logowner.h>
#include <VLBase/logging/logwriter.h>
#include <VLBase/logging/viewerclaim.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>

namespace {

constexpr int processLimitMs = 60'000;

/// Keeps the log's memory alive while everybody else is killed, and reads its index.
class Probe : public CLogWriter
{
public:
    using CMMShared::GetIndex;
};

void end(QProcess& process)
{
    process.kill();
    awaitEnd(process, processLimitMs);
}

QString uniqueInstance()
{
    static int count = 0;
    return QStringLiteral("chaos-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
}

} // namespace

Conductor::Conductor(const Scenario& scenario)
    : m_scenario(scenario)
    , m_instance(uniqueInstance())
    , m_random(static_cast<quint32>(qHash(m_instance)))
{
}

Conductor::~Conductor()
{
    for (Writer& writer : m_writers)
        if (writer.process)
            end(*writer.process);
    if (m_viewer)
        end(*m_viewer);
    if (m_owner)
        end(*m_owner);
    // Whoever was killed left memory behind, which goes with the last one that opens it.
    setLogInstance(m_instance);
    const vlbase::logging::LogOwner sweeper(4096);
    vlbase::logging::ViewerClaim().take();
}

Verdict Conductor::run()
{
    if (!m_tally.open(m_directory.filePath(QStringLiteral("tally")),
                      m_scenario.writers + m_scenario.writerKills)) {
        Verdict verdict;
        verdict.faults << QStringLiteral("no tally");
        return verdict;
    }
    startOwner();
    startViewer();
    m_writers.resize(static_cast<std::size_t>(m_scenario.writers));
    for (Writer& writer : m_writers)
        startWriter(writer);
    dealBlows();
    awaitWriters();
    awaitSettled();

    Verdict verdict =
        Verdict::of(m_directory.filePath(QStringLiteral("log")), m_tally, m_stoppedSlots);
    verdict.faults = m_faults + verdict.faults;
    return verdict;
}

void Conductor::startOwner()
{
    m_owner = std::make_unique<QProcess>();
    m_owner->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_owner->setStandardOutputFile(QProcess::nullDevice());
    startVlbase(*m_owner,
                {QStringLiteral("log"), QStringLiteral("own"), QStringLiteral("--instance"),
                 m_instance, QStringLiteral("--file"), m_directory.filePath(QStringLiteral("log")),
                 QStringLiteral("--buffer-size"), QString::number(m_scenario.bufferBytes)});
}

void Conductor::startViewer()
{
    m_viewer = std::make_unique<QProcess>();
    m_viewer->setStandardOutputFile(QProcess::nullDevice());
    m_viewer->setStandardErrorFile(QProcess::nullDevice());
    startVlbase(*m_viewer, {QStringLiteral("log"), QStringLiteral("tail"),
                            QStringLiteral("--instance"), m_instance});
}

void Conductor::startWriter(Writer& writer)
{
    writer.slot = m_nextSlot++;
    writer.process = std::make_unique<QProcess>();
    writer.process->setProcessChannelMode(QProcess::ForwardedChannels);
    startThisProgram(*writer.process,
                     {QStringLiteral("writer"), m_instance,
                      m_directory.filePath(QStringLiteral("tally")), QString::number(writer.slot),
                      QString::number(m_scenario.linesPerWriter),
                      QString::number(m_scenario.fullBufferWaitMs)});
}

void Conductor::dealBlows()
{
    using Blow = void (Conductor::*)();
    std::vector<Blow> blows;
    const auto add = [&blows](int count, Blow blow) {
        blows.insert(blows.end(), static_cast<std::size_t>(count), blow);
    };
    add(m_scenario.writerKills, &Conductor::killWriter);
    add(m_scenario.ownerKills, &Conductor::killOwner);
    add(m_scenario.viewerKills, &Conductor::killViewer);
    add(m_scenario.writerStops, &Conductor::stopWriter);
    add(m_scenario.holds, &Conductor::hold);
    std::shuffle(blows.begin(), blows.end(), m_random);
    awaitProgress();
    for (const Blow blow : blows) {
        pause(20);
        (this->*blow)();
        awaitProgress();
    }
    m_tally.requestStop();
}

/// Waits until the log has taken some more lines, so that no blow falls on a log at rest.
void Conductor::awaitProgress()
{
    const auto returned = [this] {
        quint64 sum = 0;
        for (int slot = 0; slot < m_tally.slotCount(); ++slot)
            sum += m_tally.slot(slot).returned;
        return sum;
    };
    const quint64 wanted = returned() + 50;
    QElapsedTimer clock;
    clock.start();
    while (m_scenario.linesPerWriter == 0 && returned() < wanted &&
           clock.elapsed() < processLimitMs)
        QThread::usleep(200);
}

void Conductor::killWriter()
{
    Writer& writer = anyWriter();
    pause(10);
    end(*writer.process);
    startWriter(writer);
}

void Conductor::killOwner()
{
    pause(200);
    end(*m_owner);
    startOwner();
}

void Conductor::killViewer()
{
    end(*m_viewer);
    startViewer();
}

void Conductor::stopWriter()
{
    Writer& writer = anyWriter();
    m_stoppedSlots << writer.slot;
    if (!processcontrol::suspend(writer.process->processId()))
        m_faults << QStringLiteral("a writer could not be stopped");
    QThread::msleep(2500);
    processcontrol::resume(writer.process->processId());
}

void Conductor::hold()
{
    QProcess holder;
    startThisProgram(holder, {QStringLiteral("holder"), m_instance});
    if (!holder.waitForReadyRead(processLimitMs))
        m_faults << QStringLiteral("the holder did not get the lock");
    QThread::msleep(3000);
    holder.closeWriteChannel();
    if (!awaitEnd(holder, processLimitMs)) {
        m_faults << QStringLiteral("the holder did not end");
        end(holder);
    }
}

void Conductor::awaitWriters()
{
    for (Writer& writer : m_writers) {
        if (awaitEnd(*writer.process, 10 * processLimitMs) && writer.process->exitCode() == 0)
            continue;
        m_faults << QStringLiteral("writer %1 did not end well: %2")
                        .arg(writer.slot)
                        .arg(writer.process->errorString());
    }
}

/// Waits until the owner has filed or counted every index that was given out.
void Conductor::awaitSettled()
{
    setLogInstance(m_instance);
    Probe probe;
    QElapsedTimer clock;
    clock.start();
    quint64 consumed = 0;
    while (clock.elapsed() < processLimitMs) {
        consumed = Verdict::of(m_directory.filePath(QStringLiteral("log")), m_tally, {}).consumed;
        if (probe.IsOpen() && probe.GetIndex() == static_cast<long>(100000 + consumed % 900000))
            return;
        QThread::msleep(100);
    }
    m_faults << QStringLiteral("the log gave out index %1, the file accounts for %2 lines")
                    .arg(probe.GetIndex())
                    .arg(consumed);
}

Conductor::Writer& Conductor::anyWriter()
{
    return m_writers[m_random.bounded(static_cast<quint32>(m_writers.size()))];
}

void Conductor::pause(int atMostMs)
{
    QThread::usleep(m_random.bounded(static_cast<quint32>(atMostMs) * 1000));
}
