#pragma once

#include "tally.h"
#include "verdict.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QVector>

#include <memory>
#include <vector>

/// What a run does to whom.
struct Scenario
{
    int writers = 4;
    quint64 linesPerWriter = 0; ///< 0: until all blows have fallen
    int bufferBytes = 1 << 20;
    int fullBufferWaitMs = 0;
    int writerKills = 0;
    int ownerKills = 0;
    int viewerKills = 0;
    int writerStops = 0; ///< stops of 2.5 s at a random moment
    int holds = 0;       ///< a process that takes the lock and hangs for 3 s
};

/// Starts an owner, a viewer and writers on a log of their own, deals the blows of a scenario and
/// judges the file.
class Conductor
{
public:
    explicit Conductor(const Scenario& scenario);
    ~Conductor();

    /// The judgement, with what went wrong on the way among its faults.
    Verdict run();

private:
    struct Writer
    {
        std::unique_ptr<QProcess> process;
        int slot = 0;
    };

    void startOwner();
    void startViewer();
    void startWriter(Writer& writer);
    void dealBlows();
    void awaitProgress();
    void killWriter();
    void killOwner();
    void killViewer();
    void stopWriter();
    void hold();
    void awaitWriters();
    void awaitSettled();
    Writer& anyWriter();
    void pause(int atMostMs);

    Scenario m_scenario;
    QTemporaryDir m_directory;
    QString m_instance;
    Tally m_tally;
    std::unique_ptr<QProcess> m_owner;
    std::unique_ptr<QProcess> m_viewer;
    std::vector<Writer> m_writers;
    QVector<int> m_stoppedSlots;
    int m_nextSlot = 0;
    QRandomGenerator m_random;
    QStringList m_faults;
};
