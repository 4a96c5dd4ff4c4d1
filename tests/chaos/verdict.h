#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

class Tally;

/// What the owner's file says after a run, held against what the writers say.
struct Verdict
{
    quint64 filed = 0;           ///< writers' lines in the file
    quint64 countedLost = 0;     ///< by the owner's own count
    quint64 missingReturned = 0; ///< calls came back, the line is not in the file
    quint64 startedCalls = 0;
    quint64 returnedCalls = 0;
    quint64 longestCallUs = 0; ///< of writers that were never stopped
    quint64 consumed = 0;      ///< indexes accounted for: filed or counted as lost
    QStringList faults;        ///< torn, repeated, out of order, wrongly counted; the first few

    /// \param stoppedSlots writers whose calls were stretched by being stopped
    static Verdict of(const QString& logFile, Tally& tally, const QVector<int>& stoppedSlots);
};
