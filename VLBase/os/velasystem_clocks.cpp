#include "velasystem.h"

#include <VLBase/platform/timezone.h>

#include <algorithm>
#include <atomic>
#include <chrono>

using namespace std::chrono;

namespace {

std::atomic<quint64> s_LastTimestamp{0};

} // namespace

qint32 VelaSystem::GetSecTimestamp()
{
    const auto now = floor<seconds>(system_clock::now()).time_since_epoch();
    return static_cast<qint32>(static_cast<quint32>(now.count()));
}

quint64 VelaSystem::GetMSecTimestamp()
{
    const auto now = floor<milliseconds>(system_clock::now()).time_since_epoch();
    return static_cast<quint64>(now.count());
}

quint64 VelaSystem::GetTimestamp()
{
    // The clock is read again in every round: a value from before the other thread's step could
    // be from before a change of the clock too.
    quint64 last = s_LastTimestamp.load();
    quint64 stamp = 0;
    do {
        stamp = std::max(GetMSecTimestamp() * 1000, last + 1);
    } while (!s_LastTimestamp.compare_exchange_weak(last, stamp));
    return stamp;
}

qint64 VelaSystem::GetTimezoneOffset(bool withDaylight)
{
    return microseconds(vlbase::platform::localUtcOffset(withDaylight)).count();
}
