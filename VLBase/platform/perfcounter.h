#pragma once

#include <cstdint>

namespace vlbase::platform {

/// The system's finest clock, which only goes forward, in counts since some moment.
std::int64_t performanceCounter();

/// Counts of that clock in a second. Constant while the system runs.
std::int64_t performanceFrequency();

} // namespace vlbase::platform
