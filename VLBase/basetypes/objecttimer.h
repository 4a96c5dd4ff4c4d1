#pragma once

#include <VLBase/vlbase_export.h>

#include <QObject>

#include <set>

class QTimerEvent;

namespace Vela {

/// What an `ObjectTimer` calls.
class VLBASE_EXPORT IHasTimerCallback
{
public:
    /// A timer has fired.
    virtual void OnTimer(int timerId) = 0;

    IHasTimerCallback() = default;
    IHasTimerCallback(const IHasTimerCallback&) = default;
    IHasTimerCallback& operator=(const IHasTimerCallback&) = default;
    virtual ~IHasTimerCallback();
};

/// Timers for a class that is no `QObject`.
///
/// They fire in the thread that the object lives in, which runs an event loop, and end with the
/// object. A callback may stop its own timer, start others and destroy this object.
class VLBASE_EXPORT ObjectTimer : public QObject
{
    Q_OBJECT

public:
    /// \param callback must live as long as a timer runs; nothing is called when it is null
    explicit ObjectTimer(IHasTimerCallback* callback);
    ~ObjectTimer() override;

    /// A new object, which belongs to the caller; null when there is no memory for it.
    static ObjectTimer* create(IHasTimerCallback* callback);

    /// Starts a timer that fires again and again, exact to the millisecond where the system is.
    /// \return its id; 0 when there can be none
    int StartTimer(int milliseconds);

    /// Stops one timer.
    void KillTimer(int id);

    /// Stops all timers that this object has started.
    void KillTimers();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    IHasTimerCallback* m_callback;
    std::set<int> m_timerIds;
};

} // namespace Vela
