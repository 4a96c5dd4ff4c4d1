#include <VLBase/platform/clocks.h>

#include <cstring>
#include <ctime>
#include <sys/timeb.h>
#include <windows.h>

namespace vlbase::platform {

std::chrono::milliseconds wallClock()
{
    struct __timeb64 now
    {
    };
    ::_ftime64(&now);
    return std::chrono::seconds(now.time) + std::chrono::milliseconds(now.millitm);
}

std::int64_t performanceCounter()
{
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
}

std::int64_t performanceFrequency()
{
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

std::chrono::seconds localUtcOffset(bool withDaylight)
{
    ::_tzset(); // not for the answer below: the C runtime's own time functions follow the zone too
    TIME_ZONE_INFORMATION zone{};
    const DWORD season = ::GetTimeZoneInformation(&zone);
    if (season == TIME_ZONE_ID_INVALID)
        return std::chrono::seconds(0);

    LONG bias = zone.Bias; // UTC is local time plus this
    if (withDaylight && season == TIME_ZONE_ID_STANDARD)
        bias += zone.StandardBias;
    else if (withDaylight && season == TIME_ZONE_ID_DAYLIGHT)
        bias += zone.DaylightBias;
    return -std::chrono::minutes(bias);
}

std::optional<SystemTime> systemTimeInUtc(const SystemTime& time, bool isUtc)
{
    SYSTEMTIME fields{};
    static_assert(sizeof fields == sizeof time);
    std::memcpy(&fields, time.data(), sizeof fields);
    FILETIME given{};
    if (!::SystemTimeToFileTime(&fields, &given))
        return std::nullopt;
    if (isUtc)
        return time;
    FILETIME utc{};
    if (!::LocalFileTimeToFileTime(&given, &utc) || !::FileTimeToSystemTime(&utc, &fields))
        return std::nullopt;
    SystemTime result{};
    std::memcpy(result.data(), &fields, sizeof fields);
    return result;
}

} // namespace vlbase::platform
