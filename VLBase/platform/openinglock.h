#pragma once

#include <chrono>
#include <memory>
#include <string>

namespace vlbase::platform {

/// Serialises the opening and closing of shared objects between the processes and threads of
/// one user. Not recursive.
class OpeningLock
{
public:
    /// Waits for its turn, at most \a timeout.
    explicit OpeningLock(const std::string& name,
                         std::chrono::milliseconds timeout = std::chrono::milliseconds(2000));
    ~OpeningLock();
    OpeningLock(const OpeningLock&) = delete;
    OpeningLock& operator=(const OpeningLock&) = delete;

    bool isHeld() const { return m_handle != nullptr; }

private:
    class Handle;
    std::unique_ptr<Handle> m_handle;
};

} // namespace vlbase::platform
