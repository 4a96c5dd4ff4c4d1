#include <VLBase/platform/systemtime.h>

#include <cstring>
#include <windows.h>

namespace vlbase::platform {

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
