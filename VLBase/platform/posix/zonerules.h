#pragma once

#include <chrono>
#include <ctime>

namespace vlbase::platform {

/// localUtcOffset() at any instant.
std::chrono::seconds localUtcOffsetAt(std::time_t instant, bool withDaylight);

} // namespace vlbase::platform
