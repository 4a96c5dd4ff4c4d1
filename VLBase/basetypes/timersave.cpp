#include "timersave.h"

#include <utility>

TimerSave& TimerSave::Instance()
{
    static TimerSave theInstance;
    return theInstance;
}

TimerSave::TimerSave() = default;
TimerSave::~TimerSave() = default;

bool TimerSave::LockTimerSaveObject(QString name, TimerSaveObject& token)
{
    bool& locked = m_locked[name];
    if (locked)
        return false;
    locked = true;
    token.m_name = name.isNull() ? QLatin1String("") : std::move(name);
    return true;
}

void TimerSave::UnLockTimerSaveObject(QString name)
{
    const auto lock = m_locked.find(name);
    if (lock != m_locked.end())
        lock->second = false;
}

TimerSaveObject::TimerSaveObject()
{
    // The registry is complete before the first token is, so that it outlives a static token too.
    TimerSave::Instance();
}

TimerSaveObject::TimerSaveObject(const TimerSaveObject& other) = default;
TimerSaveObject& TimerSaveObject::operator=(const TimerSaveObject& other) = default;

TimerSaveObject::~TimerSaveObject()
{
    if (!m_name.isNull())
        TimerSave::Instance().UnLockTimerSaveObject(m_name);
}

void TimerSaveObject::SetName(QString name)
{
    m_name = name.isEmpty() ? QString() : std::move(name);
}
