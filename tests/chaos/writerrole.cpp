#include "writerrole.h"

#include "tally.h"

#include <VLBase/logging/loginstance.h>
#include <VLBase/logging/logwriter.h>

#include <QElapsedTimer>
#include <QThread>

#include <cstdio>

namespace roles {

namespace {

/// Waits until the log is there; an owner that was killed has a successor soon.
void attach(CMMShared& shared)
{
    while (!shared.IsOpen() && !shared.Open())
        QThread::msleep(2);
}

void sendOne(CLogWriter& writer, Tally::Slot& tally, int slot, quint64 sequence)
{
    QElapsedTimer clock;
    tally.started = sequence + 1;
    clock.start();
    writer.SendTrace(QString::number(slot), QString::number(sequence), payload(slot, sequence));
    const auto microseconds = static_cast<quint64>(clock.nsecsElapsed() / 1000);
    if (microseconds > tally.longestCallUs)
        tally.longestCallUs = microseconds;
    tally.returned = sequence + 1;
}

} // namespace

QString payload(int slot, quint64 sequence)
{
    quint64 state = (static_cast<quint64>(slot) << 40) + sequence + 0x9E3779B97F4A7C15u;
    const auto next = [&state] { // splitmix64 (Steele, Lea, Flood 2014)
        quint64 z = (state += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    };
    const auto length = static_cast<int>(next() % 301);
    QString text(length, Qt::Uninitialized);
    for (QChar& character : text)
        character = QChar(static_cast<char16_t>(u'a' + next() % 26));
    return text;
}

int runWriter(const QStringList& arguments)
{
    setLogInstance(arguments.at(0));
    Tally tally;
    if (!tally.open(arguments.at(1), 0))
        return 2;
    const int slot = arguments.at(2).toInt();
    const quint64 lines = arguments.at(3).toULongLong();

    CLogWriter writer(QStringLiteral("writer"));
    writer.SetFullBufferWait(arguments.at(4).toInt());
    attach(writer);
    for (quint64 i = 0; lines == 0 ? !tally.isStopRequested() : i < lines; ++i)
        sendOne(writer, tally.slot(slot), slot, i);
    return 0;
}

int runHolder(const QStringList& arguments)
{
    setLogInstance(arguments.at(0));
    CLogWriter writer(QStringLiteral("holder"));
    attach(writer);
    Lock lock(&writer);
    std::puts("held");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

} // namespace roles
