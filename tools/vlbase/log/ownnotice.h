#pragma once

#include "logline.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vlbase::tool::log {

/// Lines that the owner writes into its file by itself. They have the form of all others, with
/// "------" for a number, so no take-over mistakes them for a line of the log:
///
///     ------  time  zone  station  vlbase log own  Warning  3 lines lost   100006-100008  WHY
///     ------  time  zone  station  vlbase log own  Event    log begins     100000
struct OwnNotice
{
    enum class Kind { LinesLost, LogBegins };

    Kind kind = Kind::LinesLost;
    std::uint64_t count = 0; ///< lines lost
    int first = 0;           ///< number of the first line lost, or of the first line to come
    int last = 0;            ///< number of the last line lost
};

/// The notice with its line end, dated now.
std::string noticeLine(const OwnNotice& notice, const std::string& station);

/// Reads a notice back; nothing for any other line.
std::optional<OwnNotice> parseNotice(const LogLine& line);

/// The numbers of the `count` lines up to `last`.
OwnNotice noticeOfLost(std::uint64_t count, int last);

} // namespace vlbase::tool::log
