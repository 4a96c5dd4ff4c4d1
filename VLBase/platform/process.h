#pragma once

namespace vlbase::platform {

// Identifiers of 0 and below name no process here.

/// Ends a process at once, with exit code 0 where the caller may choose it. False for one that has
/// ended already, even if the system still keeps its entry.
bool terminateProcess(int processId);

/// Whether a process has nothing to do: on Windows one that waits for its user's input, or begins
/// to within 50 ms; on Linux one that sleeps for 50 ms. True also for one that cannot be looked at.
bool isProcessIdle(int processId);

/// Puts all threads of this process before those of ordinary programs.
bool raisePriority();

} // namespace vlbase::platform
