#include "x11display.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/sounds.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <linux/kd.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

namespace vlbase::platform {

namespace {

constexpr auto toneDuration = std::chrono::milliseconds(100);

/// The controlling terminal. Nothing that is done to it waits, also when the user has stopped it,
/// nor stops this process when that runs in the background.
class Terminal
{
public:
    Terminal()
        : m_descriptor(::open("/dev/tty", O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY))
    {
        sigset_t stopping;
        ::sigemptyset(&stopping);
        ::sigaddset(&stopping, SIGTTOU);
        ::pthread_sigmask(SIG_BLOCK, &stopping, &m_before);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;
    ~Terminal()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
        ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

    /// Only a console has it.
    bool startTone() const
    {
        constexpr unsigned long clockHz = 1193180; // of the timer that makes it
        constexpr unsigned long frequencyHz = 443;
        constexpr unsigned long durationMs = toneDuration.count();
        return ::ioctl(m_descriptor, KDMKTONE, durationMs << 16 | clockHz / frequencyHz) == 0;
    }

    bool ringBell() const { return ::write(m_descriptor, "\a", 1) == 1; }

private:
    int m_descriptor;
    sigset_t m_before{};
};

bool ringDisplayBell()
{
    const auto display = X11Display::open(toneDuration / 2); // for the connection, and the rest
    if (!display)
        return false;
    xcb_bell(display->connection(), 0); // as loud as the user has set it
    display->sync();
    return true;
}

} // namespace

void playMessageSound()
{
    if (!Terminal().ringBell() && !ringDisplayBell())
        setLastErrorNotSupported();
}

void playTone()
{
    const auto end = std::chrono::steady_clock::now() + toneDuration;
    const Terminal terminal;
    if (terminal.startTone() || terminal.ringBell() || ringDisplayBell())
        std::this_thread::sleep_until(end);
    else
        setLastErrorNotSupported();
}

int startTone()
{
    pthread_t thread{};
    const auto play = [](void*) -> void* {
        playTone();
        return nullptr;
    };
    if (const int error = ::pthread_create(&thread, nullptr, play, nullptr)) {
        setLastError(static_cast<std::uint32_t>(error));
        return -1;
    }
    ::pthread_detach(thread);
    return static_cast<int>(thread & INT_MAX);
}

} // namespace vlbase::platform
