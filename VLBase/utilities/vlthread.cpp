#include "vlthread.h"

#include <climits>

IRun::~IRun() = default;

VLThread::VLThread(IRun& work)
    : m_Work(work)
{
}

VLThread::~VLThread()
{
    finish(QDeadlineTimer(QDeadlineTimer::Forever));
}

bool VLThread::Finish(unsigned long timeoutMs)
{
    return finish(timeoutMs == ULONG_MAX ? QDeadlineTimer(QDeadlineTimer::Forever)
                                         : QDeadlineTimer(static_cast<qint64>(timeoutMs)));
}

bool VLThread::finish(QDeadlineTimer deadline)
{
    m_bStop = true;
    const bool ended = wait(deadline);
    // Orders what the thread did before what follows here. The wait does so too, but a thread
    // sanitizer does not see into Qt.
    (void)m_bEnded.load();
    return ended;
}

void VLThread::msleep(unsigned long milliseconds)
{
    QThread::msleep(milliseconds);
}

void VLThread::sleep(unsigned long seconds)
{
    QThread::sleep(seconds);
}

void VLThread::run()
{
    m_Work.Init();
    while (!m_bStop && m_Work.Step()) {
    }
    m_Work.Exit();
    m_Work.Done();
    m_bEnded = true;
}
