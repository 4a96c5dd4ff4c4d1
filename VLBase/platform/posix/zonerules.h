#pragma once

#include <VLBase/vlbase_export.h>

#include <chrono>
#include <ctime>

namespace vlbase::platform {

/// localUtcOffset() at any instant.
VLBASE_EXPORT std::chrono::seconds localUtcOffsetAt(std::time_t instant, bool withDaylight);

} // namespace vlbase::platform
