#include "objecttimer.h"

#include <QTimerEvent>

#include <new>
#include <utility>

namespace Vela {

IHasTimerCallback::~IHasTimerCallback() = default;

ObjectTimer::ObjectTimer(IHasTimerCallback* callback)
    : m_callback(callback)
{
}

ObjectTimer::~ObjectTimer() = default;

ObjectTimer* ObjectTimer::create(IHasTimerCallback* callback)
{
    return new (std::nothrow) ObjectTimer(callback);
}

int ObjectTimer::StartTimer(int milliseconds)
{
    const int id = startTimer(milliseconds, Qt::PreciseTimer);
    m_timerIds.insert(id);
    return id;
}

void ObjectTimer::KillTimer(int id)
{
    killTimer(id);
    m_timerIds.erase(id);
}

void ObjectTimer::KillTimers()
{
    for (const int id : std::exchange(m_timerIds, {}))
        killTimer(id);
}

void ObjectTimer::timerEvent(QTimerEvent* event)
{
    if (m_callback)
        m_callback->OnTimer(event->timerId());
    // The callback may have destroyed this object: nothing follows.
}

} // namespace Vela
