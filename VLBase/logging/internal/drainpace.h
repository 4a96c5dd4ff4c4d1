#pragma once

#include <VLBase/logging/logowner.h>

#include <chrono>

namespace vlbase::logging {

/// How long an owner may rest between two drains: until its half will be a quarter full, if the
/// lines come as fast as they did lately.
///
/// Each rest costs a change of threads, so a busy log is not looked at for every line; but
/// writers that wait for room fill three quarters within a millisecond and then stand still.
class DrainPace
{
public:
    /// \a bufferSize is that of the owner's half, in bytes.
    explicit DrainPace(int bufferSize);

    /// The rest after a drain that has just been made; zero when the next one is due at once.
    std::chrono::microseconds restAfter(const LogOwner::Drained& drained);

private:
    int m_bufferSize;
    double m_bytesPerSecond = 0; // the most of late
    std::chrono::steady_clock::time_point m_drainedAt;
    std::chrono::microseconds m_rest{0};
};

} // namespace vlbase::logging
