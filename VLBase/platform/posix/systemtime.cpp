#include <VLBase/platform/systemtime.h>
#include <VLBase/platform/timezone.h>

#include <ctime>

namespace vlbase::platform {

namespace {

enum Field { Year, Month, DayOfWeek, Day, Hour, Minute, Second, Millisecond };

std::time_t instantOf(const SystemTime& time)
{
    std::tm fields{};
    fields.tm_year = time[Year] - 1900;
    fields.tm_mon = time[Month] - 1;
    fields.tm_mday = time[Day];
    fields.tm_hour = time[Hour];
    fields.tm_min = time[Minute];
    fields.tm_sec = time[Second];
    return ::timegm(&fields);
}

/// The years of Windows' calendar.
bool hasYear(const SystemTime& time)
{
    return time[Year] >= 1601 && time[Year] <= 30827;
}

SystemTime timeAt(std::time_t instant, std::uint16_t millisecond)
{
    std::tm fields{};
    ::gmtime_r(&instant, &fields);
    SystemTime time{};
    const std::array<int, 7> values{fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_wday,
                                    fields.tm_mday,        fields.tm_hour,    fields.tm_min,
                                    fields.tm_sec};
    for (std::size_t i = 0; i < values.size(); ++i)
        time[i] = static_cast<std::uint16_t>(values[i]);
    time[Millisecond] = millisecond;
    return time;
}

} // namespace

std::optional<SystemTime> systemTimeInUtc(const SystemTime& time, bool isUtc)
{
    const std::time_t instant = instantOf(time);
    // What does not exist, such as February 30, has become another time.
    SystemTime normalized = timeAt(instant, time[Millisecond]);
    normalized[DayOfWeek] = time[DayOfWeek];
    const SystemTime utc =
        isUtc ? time : timeAt(instant - localUtcOffset(true).count(), time[Millisecond]);
    if (normalized != time || time[Millisecond] > 999 || !hasYear(time) || !hasYear(utc))
        return std::nullopt;
    return utc;
}

} // namespace vlbase::platform
