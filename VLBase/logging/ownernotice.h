#pragma once

#include <VLBase/logging/logline.h>
#include <VLBase/vlbase_export.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vlbase::logging {

/// A line that an owner writes into its file by itself: that lines were lost there, or that a log
/// begins. Such lines have the form of all others, with
/// "------" for a number, so no take-over mistakes them for a line of the log:
///
///     ------  time  zone  station  vlbase log own  Warning  3 lines lost   100006-100008  WHY
///     ------  time  zone  station  vlbase log own  Event    log begins     100000
struct OwnerNotice
{
    enum class Kind { LinesLost, LogBegins };

    Kind kind = Kind::LinesLost;
    std::uint64_t count = 0; ///< lines lost
    int first = 0;           ///< number of the first line lost, or of the first line to come
    int last = 0;            ///< number of the last line lost
};

/// The notice with its line end, dated now, for an owner on the host \a station.
VLBASE_EXPORT std::string noticeLine(const OwnerNotice& notice, const std::string& station);

/// Reads a notice back; nothing for any other line.
VLBASE_EXPORT std::optional<OwnerNotice> parseNotice(const LogLine& line);

/// For a log that was just created: its first line is still to come.
VLBASE_EXPORT OwnerNotice noticeOfBegin();

/// For \a count lines, 1 at least, of which the last one had the number \a last.
VLBASE_EXPORT OwnerNotice noticeOfLost(std::uint64_t count, int last);

} // namespace vlbase::logging
