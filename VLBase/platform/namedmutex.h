#pragma once

#include <VLBase/platform/nativemutex.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace vlbase::platform {

/// A recursive mutex that the processes of one user share under a name.
///
/// A holder that is killed, or whose thread ends, does not lock the others out. Opening, creating
/// and destroying are serialised by the callers (`OpeningLock`); locking is for any thread.
class NamedMutex
{
public:
    NamedMutex();

    /// Lets go of the mutex first when the calling thread holds it.
    ~NamedMutex();
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;

    /// Opens an existing mutex; \a name as for `NamedMapping`.
    bool open(const std::string& name);

    /// Makes a mutex that nobody holds, or opens the one that is there.
    bool create(const std::string& name);

    LockResult lock(std::chrono::milliseconds timeout);

    /// Lets go once; false, and nothing happens, when the calling thread does not hold it.
    bool unlock();

    bool isHeldByThisThread() const;

    /// Whether somebody holds the mutex called \a name now, or died holding it.
    static bool isHeld(const std::string& name);

private:
    NativeMutex m_native;
    // Written by the holder only, so that others see at worst somebody else's number.
    std::atomic<std::uint64_t> m_holder{0};
    int m_depth = 0;
};

} // namespace vlbase::platform
