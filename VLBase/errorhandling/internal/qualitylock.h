#pragma once

#include <QRecursiveMutex>

#if defined(__SANITIZE_THREAD__)
#define VLBASE_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VLBASE_THREAD_SANITIZER
#endif
#endif

#ifdef VLBASE_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

namespace vlbase {

/// Holds the quality mutex for a scope.
///
/// A recursive mutex lives inside the Qt library, where the thread sanitizer sees nothing of it
/// unless that was built with the sanitizer, too. So the lock tells it what happens.
class QualityLock
{
public:
    explicit QualityLock(QRecursiveMutex& mutex)
        : m_mutex(mutex)
    {
        m_mutex.lock();
#ifdef VLBASE_THREAD_SANITIZER
        __tsan_acquire(&m_mutex);
#endif
    }

    ~QualityLock()
    {
#ifdef VLBASE_THREAD_SANITIZER
        __tsan_release(&m_mutex);
#endif
        m_mutex.unlock();
    }

    QualityLock(const QualityLock&) = delete;
    QualityLock& operator=(const QualityLock&) = delete;

private:
    QRecursiveMutex& m_mutex;
};

} // namespace vlbase
