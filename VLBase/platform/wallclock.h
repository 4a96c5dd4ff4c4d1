#pragma once

#include <chrono>

namespace vlbase::platform {

/// The system's clock: the time since 1970-01-01 00:00 UTC.
std::chrono::milliseconds wallClock();

} // namespace vlbase::platform
