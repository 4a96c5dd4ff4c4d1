#include <VLBase/platform/thread.h>

#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace vlbase::platform {

int currentThreadId()
{
    // Asked each time: a remembered one would be wrong in a forked child.
    return static_cast<int>(::syscall(SYS_gettid));
}

void alertableSleep(int milliseconds)
{
    if (milliseconds < 0) {
        ::pause();
        return;
    }
    // Not continued after a signal: that is what makes the sleep alertable.
    const timespec time{milliseconds / 1000, milliseconds % 1000 * 1000000L};
    ::clock_nanosleep(CLOCK_MONOTONIC, 0, &time, nullptr);
}

} // namespace vlbase::platform
