#pragma once

#include <VLBase/logging/logline.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vlbase::logreading {

/// The fields of a line by which it is shown, filtered and counted; views into its text.
struct LineFields
{
    bool isLogLine = false; ///< false: any text, which is `event[2]` then, all else is empty
    int number = 0;         ///< 100000 to 999998; 0 in a line without one
    std::optional<std::int64_t> seconds; ///< UTC since 1970
    std::string_view station;
    std::string_view module;
    std::string_view level;
    /// field1 to field3. The third one has all that follows the second, tabs included, so that
    /// nothing of a line is out of reach.
    std::array<std::string_view, 3> event;
};

/// Takes a line apart, with or without its line end. \a scratch is reused to save its memory.
LineFields fieldsOf(std::string_view text, logging::LogLine& scratch);

/// The beginning of a line, for who needs no more of it: as `parseLogLine` has it.
struct LineHead
{
    int number = 0;
    std::string_view time;
    std::string_view sender; ///< station, module and level with the tabs between them
};

/// \return nothing for a text that is no line of a log.
std::optional<LineHead> headOf(std::string_view text);

/// The line without its line feed and a carriage return before that.
std::string_view withoutLineEnd(std::string_view text);

} // namespace vlbase::logreading
