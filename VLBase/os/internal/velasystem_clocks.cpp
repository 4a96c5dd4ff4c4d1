#include "timeservice.h"
#include "velasystem.h"

#include <VLBase/platform/clocks.h>
#include <VLBase/platform/lasterror.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>

using namespace std::chrono;
namespace platform = vlbase::platform;

namespace {

std::atomic<quint64> s_LastTimestamp{0};

/// None for a number that its field has no room for, so that it does not become another one.
std::optional<platform::SystemTime> toSystemTime(const std::array<int, 8>& numbers)
{
    platform::SystemTime time{};
    for (std::size_t i = 0; i < time.size(); ++i) {
        time[i] = static_cast<std::uint16_t>(numbers[i]);
        if (time[i] != numbers[i])
            return std::nullopt;
    }
    return time;
}

} // namespace

qint32 VelaSystem::GetSecTimestamp()
{
    const auto now = duration_cast<seconds>(platform::wallClock());
    return static_cast<qint32>(static_cast<quint32>(now.count()));
}

quint64 VelaSystem::GetMSecTimestamp()
{
    return static_cast<quint64>(platform::wallClock().count());
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

bool VelaSystem::SetSystemTime(int year, int month, int day, int hour, int minute, int second,
                               int millisecond, bool utc)
{
    const auto given = toSystemTime({year, month, 0, day, hour, minute, second, millisecond});
    const auto wanted = given ? platform::systemTimeInUtc(*given, utc) : std::nullopt;
    if (!wanted) {
        platform::setLastError(platform::Fault::InvalidArgument);
        return false;
    }
    const qint32 answer = vlbase::requestSystemTime(*wanted);
    if (answer != 0) {
        platform::setLastError(answer == -1 ? platform::Fault::NoAnswer
                                            : platform::Fault::NotPermitted);
        return false;
    }
    s_LastTimestamp = GetMSecTimestamp() * 1000; // stamps follow the new clock, also backwards
    return true;
}

qint64 VelaSystem::GetTimezoneOffset(bool withDaylight)
{
    return microseconds(platform::localUtcOffset(withDaylight)).count();
}
