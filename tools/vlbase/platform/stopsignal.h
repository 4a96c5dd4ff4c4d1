#pragma once

#include <chrono>

namespace vlbase::tool::platform {

/// Turns the system's wish that the program ends (Ctrl-C, SIGTERM, a console that closes) into
/// something that a loop asks for. There is one at a time; it lives in main's thread.
///
/// Where the system ends the program as soon as it was told (a closing Windows console), the
/// wish is held up until this object is destroyed, so that the last lines are saved.
/// A second Ctrl-C ends the program at once; other wishes may come as often as they like, since a
/// terminal that closes sends several. One that the program was started to ignore stays ignored.
class StopSignal
{
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    /// Any thread.
    static bool requested();
    /// Any thread.
    static void request();

    /// Sleeps until the time is over or the stop is requested.
    /// \return whether it is requested.
    bool wait(std::chrono::microseconds time) const;
};

} // namespace vlbase::tool::platform
