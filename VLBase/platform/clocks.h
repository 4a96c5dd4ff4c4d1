#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>

namespace vlbase::platform {

/// The system's clock: the time since 1970-01-01 00:00 UTC.
std::chrono::milliseconds wallClock();

/// The system's finest clock, which only goes forward, in counts since some moment.
std::int64_t performanceCounter();

/// Counts of that clock in a second. Constant while the system runs.
std::int64_t performanceFrequency();

/// The local zone's offset from UTC now, positive east of Greenwich. Without \a withDaylight its
/// offset outside summer time. 0 when the system cannot tell.
std::chrono::seconds localUtcOffset(bool withDaylight);

/// Year, month, day of the week (0 is Sunday), day, hour, minute, second, millisecond: a SYSTEMTIME
/// of Windows. The day of the week is not read.
using SystemTime = std::array<std::uint16_t, 8>;

/// A time as UTC: itself if \a isUtc, otherwise less the local offset that is in force now, which
/// need not be the one in force at that time, and with its day of the week.
/// \return none when there is no such time, or it lies before 1601.
std::optional<SystemTime> systemTimeInUtc(const SystemTime& time, bool isUtc);

} // namespace vlbase::platform
