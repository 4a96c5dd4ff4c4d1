#pragma once

#include "logseries.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace vlbase::logreading {

/// What a log holds, counted. Lines that are none of a log count with empty names.
struct Statistics
{
    std::int64_t lines = 0;
    std::map<std::string, std::int64_t> byLevel;
    std::map<std::string, std::int64_t> byStation;
    std::map<std::string, std::int64_t> byModule;
    std::map<std::int64_t, std::int64_t> byMinute; ///< minutes since 1970, UTC
    std::optional<std::int64_t> first;             ///< the earliest time, seconds since 1970
    std::optional<std::int64_t> last;              ///< the latest
    std::uint64_t lost = 0;                        ///< lines that are missing, in all of the log

    /// Adds the lines of a view that the filter lets through, and what is missing in the view.
    void add(const LogView& view, const Filter& filter);

private:
    void addLosses(const LogView& view);
};

} // namespace vlbase::logreading
