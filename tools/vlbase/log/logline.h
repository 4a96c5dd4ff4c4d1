#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vlbase::tool::log {

enum class Level { Error, Warning, Event, Admin, Trace, Data };

/// All level words as they stand in a line, in the order of `Level`.
inline constexpr std::string_view levelWords[] = {"Error", "Warning", "Event",
                                                  "Admin", "Trace",   "Data"};

/// Exact, as a line has it; any case with `ignoreCase`.
std::optional<Level> levelOf(std::string_view word, bool ignoreCase = false);

/// One line of the log taken apart; the views point into its text.
///
///     100000  2024-05-17 11:42:07  UTC: 7200000000.000000  station  module  Error  a  b  c
struct LogLine
{
    int index = 0;                       ///< 100000 to 999998; 0 in a line without a number
    std::string_view time;               ///< "yyyy-MM-dd hh:mm:ss", UTC
    std::optional<std::int64_t> seconds; ///< the same since 1970; none when it is no time
    std::string_view zone;
    std::string_view station;
    std::string_view module;
    std::string_view level;
    std::vector<std::string_view> fields;
};

/// The number that a line begins with (six digits, 100000 to 999998, then a tab), else 0.
int lineIndex(std::string_view line);

/// Takes a line apart. `line` is reused to save its memory.
/// \return false for a text that has no six header fields with a number, or "------" in its
///         place, in front: somebody put it in as it is. `line` is empty then.
bool parseLogLine(std::string_view text, LogLine& line);

/// How many lines lie between two numbers that follow each other in a file, 0 for neighbours.
/// Numbers repeat after 900,000 lines: 999998 is followed by 100000, once more 100000, 100001.
std::int64_t linesBetween(int earlier, int later);

/// Whether a line of this number comes after one of the other: at most half a period later.
bool isLater(int index, int than);

/// The number before this one.
int previousIndex(int index);

} // namespace vlbase::tool::log
