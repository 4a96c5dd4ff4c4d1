#pragma once

#include "childprocess.h"
#include "transport.h"

#include <chrono>
#include <memory>
#include <string>

namespace bench {

/// What a line costs its sender before it is in the log.
enum class SharedLogLine {
    Ready, ///< the text exists; only the number is put in, as the peers' senders do nothing more
    Sent   ///< `CLogWriter::SendError` makes the line from its fields
};

/// A sender that finds its half of the log nearly full.
enum class FullBuffer {
    Wait, ///< waits for the owner, so that nothing is lost
    Lose  ///< pushes out the oldest lines, which the owner counts
};

/// The shared log of this library: writers, and an owner that judges and counts each line.
/// \param halfBytes size of each of the log's two halves
std::unique_ptr<Transport> makeSharedLog(const std::string& uniqueName, SharedLogLine line,
                                         FullBuffer whenFull, int halfBytes);

/// A viewer of the log of that name that empties its half every \p interval.
Process::Body drainingViewer(const std::string& uniqueName, std::chrono::milliseconds interval);

/// A viewer that stops itself by a signal once it is attached, outside the log's lock.
Process::Body stoppedViewer(const std::string& uniqueName);

} // namespace bench
