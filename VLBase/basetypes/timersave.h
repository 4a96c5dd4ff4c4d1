#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

#include <map>

class TimerSaveObject;

/// Named locks of the process, so that a timer-driven action does not run twice at the same time.
///
///     TimerSaveObject token;
///     if (!TimerSave::Instance().LockTimerSaveObject(QStringLiteral("poll"), token))
///         return;   // it is still running further up
///
/// The locks are for the thread that runs the timers; from others they must not be touched.
class VLBASE_EXPORT TimerSave
{
public:
    static TimerSave& Instance();
    virtual ~TimerSave();

    TimerSave(const TimerSave&) = delete;
    TimerSave& operator=(const TimerSave&) = delete;

    /// Takes the lock of a name, which may be empty, and makes `token` hold it; whatever it held
    /// before stays locked. \return false when the lock is taken, with the token untouched
    bool LockTimerSaveObject(QString name, TimerSaveObject& token);

    /// Lets the lock of a name go. A name that was never locked is ignored.
    void UnLockTimerSaveObject(QString name);

private:
    TimerSave();

    std::map<QString, bool> m_locked;
};

/// Holds one lock of `TimerSave` and lets it go when destroyed. Copies hold the same lock: the
/// first one that is destroyed releases it.
class VLBASE_EXPORT TimerSaveObject
{
public:
    /// Holds nothing.
    TimerSaveObject();
    TimerSaveObject(const TimerSaveObject& other);
    TimerSaveObject& operator=(const TimerSaveObject& other);
    ~TimerSaveObject();

    /// Names the lock to let go; an empty name is none.
    void SetName(QString name);

private:
    friend class TimerSave;

    QString m_name; // null for none: the empty name can be locked as well
};
