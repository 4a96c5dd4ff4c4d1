#pragma once

namespace vlbase::logging {

/// How an attempt to open the shared log ended.
enum class OpenResult : int {
    Created,  ///< a new log
    TookOver, ///< a log that was there; for an owner, one that the last owner left to its writers
    Busy,     ///< another owner is alive
    Failed    ///< damaged, foreign, or refused by the system; for all but owners, also absent
};

} // namespace vlbase::logging
