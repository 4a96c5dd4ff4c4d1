#pragma once

#include <VLBase/vlbase_export.h>

#include <cstdint>

namespace vlbase::platform {

/// The system's finest clock, which only goes forward, in counts since some moment.
VLBASE_EXPORT std::int64_t performanceCounter();

/// Counts of that clock in a second. Constant while the system runs.
VLBASE_EXPORT std::int64_t performanceFrequency();

} // namespace vlbase::platform
