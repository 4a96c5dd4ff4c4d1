#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace vlbase::platform {

/// Year, month, day of the week (0 is Sunday), day, hour, minute, second, millisecond: a SYSTEMTIME
/// of Windows. The day of the week is not read.
using SystemTime = std::array<std::uint16_t, 8>;

/// A time as UTC: itself if \a isUtc, otherwise less the local offset that is in force now, which
/// need not be the one in force at that time, and with its day of the week.
/// \return none when there is no such time, or it lies before 1601.
std::optional<SystemTime> systemTimeInUtc(const SystemTime& time, bool isUtc);

} // namespace vlbase::platform
