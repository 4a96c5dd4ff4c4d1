#pragma once

namespace vlbase::platform {

/// The system's identifier of the calling thread.
int currentThreadId();

/// Sleeps until the time is over or something queued for the thread has run meanwhile.
/// \a milliseconds of -1 waits for the latter only.
void alertableSleep(int milliseconds);

} // namespace vlbase::platform
