#include "tools/vlbase/platform/stopsignal.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vlbase::tool::platform {
namespace {

std::atomic<bool> isRequested{false};
std::atomic<int> wakeUp{-1};
int wakeUpReader = -1;

static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "a signal handler uses them");

struct Wish
{
    int signal;
    int flags;               // of our handler
    struct sigaction before; // what stood there
    bool isOurs;             // false: it came ignored
};

// Not restarted: a write that waits for a stopped terminal has to come back.
std::array<Wish, 3> wishes = {{{SIGINT, static_cast<int>(SA_RESETHAND), {}, false},
                               {SIGTERM, 0, {}, false},
                               {SIGHUP, 0, {}, false}}};

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
    for (Wish& wish : wishes) {
        sigaction(wish.signal, nullptr, &wish.before);
        wish.isOurs = wish.before.sa_handler != SIG_IGN;
        if (!wish.isOurs)
            continue;
        struct sigaction action = {};
        action.sa_handler = onSignal;
        action.sa_flags = wish.flags;
        sigaction(wish.signal, &action, nullptr);
    }
}

StopSignal::~StopSignal()
{
    for (const Wish& wish : wishes) {
        // A program that ends as it was told to must not get another end from being told again.
        const bool mayComeAgain = isRequested && wish.signal != SIGINT;
        if (wish.isOurs && !mayComeAgain)
            sigaction(wish.signal, &wish.before, nullptr);
    }
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
