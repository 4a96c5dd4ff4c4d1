#include <VLBase/platform/clocks.h>
#include <VLBase/platform/posix/zonerules.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>
#include <sys/time.h>
#include <time.h>

namespace vlbase::platform {

std::chrono::milliseconds wallClock()
{
    // The shortest way to the clock: the C library binds this name to the kernel's own function.
    timeval now{};
    ::gettimeofday(&now, nullptr);
    return std::chrono::seconds(now.tv_sec) + std::chrono::milliseconds(now.tv_usec / 1000);
}

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

} // namespace

std::int64_t performanceCounter()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * nanosecondsPerSecond + now.tv_nsec;
}

std::int64_t performanceFrequency()
{
    return nanosecondsPerSecond;
}

namespace {

struct LocalTime
{
    long offset; // seconds east of Greenwich
    bool isDaylight;
};

std::optional<LocalTime> localTimeAt(std::time_t instant)
{
    std::tm local{};
    if (::localtime_r(&instant, &local) == nullptr)
        return std::nullopt;
    return LocalTime{local.tm_gmtoff, local.tm_isdst > 0};
}

/// The offset of the nearest time in the direction of \a step, within a year, in which the clocks
/// stand otherwise than at \a instant because of daylight saving. Shifts of more than two hours,
/// or of none, come from a move of the zone itself.
std::optional<long> otherSeason(std::time_t instant, const LocalTime& here, std::time_t step)
{
    constexpr std::time_t year = 366 * 86400L;
    constexpr long largestSaving = 2 * 3600L;
    for (std::time_t distance = step; std::abs(distance) <= year; distance += step) {
        const auto there = localTimeAt(instant + distance);
        if (!there || there->isDaylight == here.isDaylight || there->offset == here.offset)
            continue;
        if (std::abs(there->offset - here.offset) <= largestSaving)
            return there->offset;
    }
    return std::nullopt;
}

/// The zone's data say of a time only whether daylight saving is on, not by how much. So the
/// seasons are compared: standard time is the one with the smaller offset. That also holds where
/// the law has it the other way round (Ireland, Morocco: standard time in summer, an hour less
/// as the exception), and it is how Windows describes those zones.
long standardOffset(std::time_t instant, const LocalTime& here)
{
    constexpr std::time_t step = 14 * 86400L; // shorter than any season; Ramadan's has a month
    auto other = otherSeason(instant, here, step);
    // A zone may leave daylight saving for good and keep its offset, so that no other season
    // follows. Looking back from standard time would find what was abolished.
    if (!other && here.isDaylight)
        other = otherSeason(instant, here, -step);
    // A zone that never leaves it, which only TZ describes, names its standard time all the same.
    if (!other && here.isDaylight)
        other = -::timezone;
    return other ? std::min(here.offset, *other) : here.offset;
}

/// The last standard offset that the calling thread has looked for, and what it holds for. Zones
/// whose rules differ, but neither names nor offset, come only from TZ, whose text is compared.
class RememberedOffset
{
public:
    bool holds(std::time_t instant, const LocalTime& here) const
    {
        return m_quarter == instant / quarterHour && m_here.offset == here.offset &&
               m_here.isDaylight == here.isDaylight && m_names[0] == ::tzname[0] &&
               m_names[1] == ::tzname[1] && std::strcmp(m_text, zoneText()) == 0;
    }
    void remember(std::time_t instant, const LocalTime& here, long offset)
    {
        const char* text = zoneText();
        const std::size_t size = std::strlen(text) + 1;
        const bool fits = size <= sizeof m_text;
        if (fits)
            std::memcpy(m_text, text, size);
        m_quarter = fits ? instant / quarterHour : never;
        m_here = here;
        m_names[0] = ::tzname[0]; // the C library keeps one copy of each name
        m_names[1] = ::tzname[1];
        m_offset = offset;
    }
    long offset() const { return m_offset; }

private:
    static constexpr std::time_t quarterHour = 900; // clocks change at the beginning of one
    static constexpr std::time_t never = -1;

    static const char* zoneText()
    {
        const char* text = std::getenv("TZ");
        return text == nullptr ? "" : text;
    }

    std::time_t m_quarter = never;
    LocalTime m_here{};
    const char* m_names[2]{};
    char m_text[64]{};
    long m_offset = 0;
};

} // namespace

std::chrono::seconds localUtcOffsetAt(std::time_t instant, bool withDaylight)
{
    ::tzset(); // localtime_r alone need not notice a change of the zone
    const auto here = localTimeAt(instant);
    if (!here)
        return std::chrono::seconds(0);
    if (withDaylight)
        return std::chrono::seconds(here->offset);
    thread_local RememberedOffset remembered;
    if (!remembered.holds(instant, *here))
        remembered.remember(instant, *here, standardOffset(instant, *here));
    return std::chrono::seconds(remembered.offset());
}

std::chrono::seconds localUtcOffset(bool withDaylight)
{
    return localUtcOffsetAt(std::time(nullptr), withDaylight);
}

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
