#pragma once

#include <VLBase/vlbase_export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vlbase::logging {

/// What a line tells: the writers have one function for each.
enum class LogLevel { Error, Warning, Event, Admin, Trace, Data };

/// All level words as they stand in a line, in the order of `LogLevel`.
inline constexpr std::string_view levelWords[] = {"Error", "Warning", "Event",
                                                  "Admin", "Trace",   "Data"};

/// The level of a word, written exactly as a line has it; in any case of letters with
/// \a ignoreCase. Nothing for any other word.
VLBASE_EXPORT std::optional<LogLevel> levelOf(std::string_view word, bool ignoreCase = false);

/// One line of the log taken apart; the views point into its text. See `CLogWriter` for what the
/// fields are.
///
///     100000  2024-05-17 11:42:07  UTC: 7200000000.000000  station  module  Error  a  b  c
struct LogLine
{
    int index = 0;                       ///< 100000 to 999998; 0 in a line without a number
    std::string_view time;               ///< "yyyy-MM-dd hh:mm:ss", UTC
    std::optional<std::int64_t> seconds; ///< the same since 1970; none when it is no time
    std::string_view zone;               ///< "UTC: " and the local zone's offset in microseconds
    std::string_view station;
    std::string_view module;
    std::string_view level;               ///< one of `levelWords`, from writers of this library
    std::vector<std::string_view> fields; ///< the event's own
};

/// Takes the first line off \a lines, in which each ends in a zero byte: as a `LogOwner` and a
/// `CLiveLogReader` have them. The last one may lack its end.
/// \return the line without its zero byte
VLBASE_EXPORT std::string_view takeLine(std::string_view& lines);

/// The number that a line begins with (six digits, 100000 to 999998, then a tab), else 0.
VLBASE_EXPORT int lineIndex(std::string_view line);

/// Takes a line apart, without its line end or zero byte. \a line is reused to save its memory.
/// \return false for a text that has no six header fields with a number, or "------" in its
///     place, in front: somebody put it in as it is. \a line is empty then.
VLBASE_EXPORT bool parseLogLine(std::string_view text, LogLine& line);

/// How many lines lie between two numbers that follow each other in a file, 0 for neighbours.
/// Numbers repeat after 900,000 lines: 999998 is followed by 100000, once more 100000, 100001.
/// Both are such numbers.
VLBASE_EXPORT std::int64_t linesBetween(int earlier, int later);

/// Whether a line of this number comes after one of the other: at most half a period later.
VLBASE_EXPORT bool isLater(int index, int than);

/// The number before this one.
VLBASE_EXPORT int previousIndex(int index);

} // namespace vlbase::logging
