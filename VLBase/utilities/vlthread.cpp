#include "vlthread.h"

IRun::~IRun() = default;

VLThread::VLThread(IRun& work)
    : m_Work(work)
{
}

VLThread::~VLThread()
{
    m_bStop = true;
    wait();
}

bool VLThread::Finish(unsigned long timeoutMs)
{
    m_bStop = true;
    return wait(timeoutMs);
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
}
