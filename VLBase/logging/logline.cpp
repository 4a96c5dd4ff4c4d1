#include "logline.h"

#include <VLBase/logging/internal/lineindex.h>

#include <algorithm>
#include <iterator>

namespace vlbase::logging {
namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

/// Days since 1970-01-01 in the Gregorian calendar (Howard Hinnant, "chrono-Compatible Low-LogLevel
/// Date Algorithms", days_from_civil).
std::int64_t daysSince1970(int year, int month, int day)
{
    const int y = month <= 2 ? year - 1 : year;
    const int era = y / 400;
    const int yearOfEra = y - era * 400;
    const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return std::int64_t{era} * 146097 + dayOfEra - 719468;
}

int daysOf(int year, int month)
{
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && isLeap ? 29 : days[month - 1];
}

std::optional<std::int64_t> secondsOf(std::string_view time)
{
    constexpr std::string_view form = "dddd-dd-dd dd:dd:dd";
    if (time.size() != form.size())
        return std::nullopt;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == 'd' ? !isDigit(time[i]) : time[i] != form[i])
            return std::nullopt;
    }
    const auto pair = [&](std::size_t i) { return (time[i] - '0') * 10 + (time[i + 1] - '0'); };
    const int year = pair(0) * 100 + pair(2);
    const int month = pair(5);
    const int day = pair(8);
    const int hour = pair(11);
    const int minute = pair(14);
    const int second = pair(17);
    if (month < 1 || month > 12 || day < 1 || day > daysOf(year, month) || hour > 23 ||
        minute > 59 || second > 60)
        return std::nullopt;
    return ((daysSince1970(year, month, day) * 24 + hour) * 60 + minute) * 60 + second;
}

std::string_view takeField(std::string_view& rest)
{
    const std::size_t tab = rest.find('\t');
    const std::string_view field = rest.substr(0, tab);
    rest.remove_prefix(tab == std::string_view::npos ? rest.size() : tab + 1);
    return field;
}

} // namespace

std::optional<LogLevel> levelOf(std::string_view word, bool ignoreCase)
{
    for (std::size_t i = 0; i < std::size(levelWords); ++i) {
        if (word == levelWords[i] || (ignoreCase && sameIgnoringCase(word, levelWords[i])))
            return static_cast<LogLevel>(i);
    }
    return std::nullopt;
}

std::string_view takeLine(std::string_view& lines)
{
    const std::size_t length = std::min(lines.find('\0'), lines.size());
    const std::string_view line = lines.substr(0, length);
    lines.remove_prefix(std::min(length + 1, lines.size()));
    return line;
}

int lineIndex(std::string_view line)
{
    return numberOfLine(line).value_or(0);
}

bool parseLogLine(std::string_view text, LogLine& line)
{
    constexpr std::ptrdiff_t tabsOfHeader = 5;
    line.fields.clear();
    const int index = lineIndex(text);
    const bool isOurs = index != 0 || text.substr(0, 7) == "------\t";
    if (!isOurs || std::count(text.begin(), text.end(), '\t') < tabsOfHeader) {
        line = LogLine();
        return false;
    }
    std::string_view rest = text.substr(7);
    line.index = index;
    line.time = takeField(rest);
    line.seconds = secondsOf(line.time);
    line.zone = takeField(rest);
    line.station = takeField(rest);
    line.module = takeField(rest);
    const bool hasFields = rest.find('\t') != std::string_view::npos;
    line.level = takeField(rest);
    while (hasFields) {
        const bool isLast = rest.find('\t') == std::string_view::npos;
        line.fields.push_back(takeField(rest));
        if (isLast)
            break;
    }
    return true;
}

std::int64_t linesBetween(int earlier, int later)
{
    // The number that comes twice in a row; counted on from, it is the second of the two.
    if (earlier == firstNumber && later == firstNumber)
        return 0;
    const std::uint64_t next = *NumberSlots(earlier).begin() + 1;
    std::uint64_t nearest = next + numberPeriod;
    for (const std::uint64_t slot : NumberSlots(later))
        nearest = std::min(nearest, positionFrom(next, slot));
    return static_cast<std::int64_t>(nearest - next);
}

bool isLater(int index, int than)
{
    return linesBetween(than, index) <= static_cast<std::int64_t>(numberPeriod / 2);
}

int previousIndex(int index)
{
    return index <= firstNumber ? turningNumber - 1 : index - 1;
}

} // namespace vlbase::logging
