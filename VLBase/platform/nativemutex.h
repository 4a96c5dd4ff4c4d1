#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace vlbase::platform {

enum class LockResult {
    Owned,
    OwnedAfterDeath, ///< the last holder ended without letting go: what it guards may be half done
    TimedOut,
    Failed
};

/// The system's named, recursive mutex of one user; `NamedMutex` is what callers use.
class NativeMutex
{
public:
    NativeMutex();
    ~NativeMutex();
    NativeMutex(NativeMutex&& other) noexcept;
    NativeMutex& operator=(NativeMutex&& other) noexcept;

    bool open(const std::string& name);

    /// Also opens one that is there already.
    bool create(const std::string& name);

    LockResult lock(std::chrono::milliseconds timeout);

    /// Only by the thread that holds it.
    void unlock();

    /// Lets go of the object without touching it, for a mutex that another thread still holds.
    void leak();

    static bool isHeld(const std::string& name);

private:
    class Handle;
    std::unique_ptr<Handle> m_handle;
};

} // namespace vlbase::platform
