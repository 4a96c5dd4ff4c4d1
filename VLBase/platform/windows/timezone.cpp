#include <VLBase/platform/timezone.h>

#include <ctime>
#include <windows.h>

namespace vlbase::platform {

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

} // namespace vlbase::platform
