#pragma once

#include <chrono>

namespace vlbase::platform {

/// The local zone's offset from UTC now, positive east of Greenwich. Without \a withDaylight its
/// offset outside summer time. 0 when the system cannot tell.
std::chrono::seconds localUtcOffset(bool withDaylight);

} // namespace vlbase::platform
