#pragma once

#include <VLBase/platform/clocks.h>

#include <QtGlobal>

namespace vlbase {

/// Asks the time service of this machine, which may set the clock, to set it.
///
/// It listens on port 60123 of the loopback interface, takes one SystemTime in UTC and answers 4
/// bytes, both in the machine's byte order. The connection and the answer have 100 ms each.
/// Works in every thread, with or without an event loop.
/// \return the answer, 0 for success; -1 without one.
qint32 requestSystemTime(const platform::SystemTime& utc);

} // namespace vlbase
