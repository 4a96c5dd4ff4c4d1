#pragma once

#include "childprocess.h"
#include "transport.h"

#include <cstdint>
#include <optional>

namespace bench {

struct RaceSetup
{
    int writers = 1;
    std::uint64_t lines = 0; ///< of all writers together, in the timed step
    /// One more process that attaches before the writers, finishes one step and then does its
    /// work until the next step starts.
    Process::Body bystander = {};
    bool bystanderStops = false; ///< it stops itself (SIGSTOP) instead
};

struct RaceResult
{
    double seconds = 0;          ///< from the common start until the last line was received
    double writerSeconds = 0;    ///< from the common start until the last call returned
    double writerCpuSeconds = 0; ///< processor time of all writers in the timed step
    std::uint64_t lines = 0;     ///< lines sent, the untimed ones included
    std::uint64_t received = 0;
    std::uint64_t missing = 0;
    std::uint64_t bad = 0;
    std::uint64_t reportedLost = 0;
    std::uint64_t timedLines = 0;

    double linesPerSecond() const { return static_cast<double>(timedLines) / seconds; }
    bool complete() const { return received == lines && missing == 0 && bad == 0; }
};

/// Runs one transport once: receiver and writers attach, send a tenth of the lines untimed, start
/// together and are timed until the last line is where it belongs. All lines are checked.
/// \return nothing when a process died or hung; what happened is on standard error
std::optional<RaceResult> runRace(Transport& transport, const RaceSetup& setup);

} // namespace bench
