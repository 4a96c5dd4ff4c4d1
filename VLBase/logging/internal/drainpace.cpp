#include "drainpace.h"

#include <algorithm>
#include <cmath>

namespace vlbase::logging {

namespace {

using namespace std::chrono_literals;
using std::chrono::microseconds;
using Seconds = std::chrono::duration<double>;

// The system sleeps no shorter than about this.
constexpr microseconds shortestRest = 50us;
constexpr microseconds busyRest = 1ms;
// A burst after silence must not run the half over before it is looked at.
constexpr microseconds longestRest = 5ms;

// A rush is expected to go on although a few drains bring little: its writers may just wait.
constexpr Seconds halfLife = 2ms;

} // namespace

DrainPace::DrainPace(int bufferSize)
    : m_bufferSize(bufferSize)
    , m_drainedAt(std::chrono::steady_clock::now())
{
}

microseconds DrainPace::restAfter(const LogOwner::Drained& drained)
{
    const auto now = std::chrono::steady_clock::now();
    const Seconds elapsed = std::max<Seconds>(now - m_drainedAt, 1us);
    m_drainedAt = now;
    m_bytesPerSecond = std::max(drained.bytes / elapsed.count(),
                                m_bytesPerSecond * std::exp2(-(elapsed / halfLife)));
    const int quarter = m_bufferSize / 4;
    if (drained.fillBefore > quarter && !drained.stagingFull)
        return m_rest = 0us;
    const microseconds most =
        drained.bytes > 0 ? busyRest : std::clamp(2 * m_rest, busyRest, longestRest);
    const Seconds untilQuarter(quarter / std::max(m_bytesPerSecond, 1.0));
    m_rest = untilQuarter >= most
                 ? most
                 : std::max(shortestRest, std::chrono::duration_cast<microseconds>(untilQuarter));
    return m_rest;
}

} // namespace vlbase::logging
