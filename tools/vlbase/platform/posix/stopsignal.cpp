#include "tools/vlbase/platform/stopsignal.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <poll.h>
#include <unistd.h>

namespace vlbase::tool::platform {
namespace {

std::atomic<bool> isRequested{false};
std::atomic<int> wakeUp{-1};
int wakeUpReader = -1;

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "a signal handler uses them");

void onSignal(int)
{
    const int saved = errno;
    StopSignal::request();
    errno = saved;
}

} // namespace

StopSignal::StopSignal()
{
    // Never closed: another thread may be about to write to it.
    int ends[2];
    if (wakeUp < 0 && pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
        wakeUpReader = ends[0];
        wakeUp = ends[1];
    }
    // Not restarted: a write that waits for a stopped terminal has to come back. Reset: the
    // second signal of a kind ends the program.
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaction(number, &action, nullptr);
}

StopSignal::~StopSignal()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, SIG_DFL);
}

bool StopSignal::requested()
{
    return isRequested;
}

void StopSignal::request()
{
    isRequested = true;
    const int writer = wakeUp;
    if (writer >= 0) {
        const char byte = 0;
        [[maybe_unused]] const ssize_t put = write(writer, &byte, 1);
    }
}

bool StopSignal::wait(std::chrono::microseconds time) const
{
    if (isRequested)
        return true;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec limit = {};
    limit.tv_sec = static_cast<time_t>(seconds.count());
    limit.tv_nsec = static_cast<long>(std::chrono::nanoseconds(time - seconds).count());
    pollfd ready = {wakeUpReader, POLLIN, 0};
    ppoll(&ready, 1, &limit, nullptr);
    return isRequested;
}

} // namespace vlbase::tool::platform
