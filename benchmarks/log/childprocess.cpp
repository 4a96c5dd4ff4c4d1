#include "childprocess.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace bench {

namespace {

std::int64_t nanoseconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

[[noreturn]] void runChild(const Process::Body& body, int fd)
{
    std::signal(SIGINT, SIG_IGN); // the parent hears it too and lets the run come to its end
#ifdef __linux__
    prctl(PR_SET_PDEATHSIG, SIGKILL); // a sender may be blocked where it never sees the socket
#endif
    // The peers throw; no exception may unwind into the parent's part of the stack.
    try {
        body(Parent(fd));
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS);
}

} // namespace

std::int64_t monotonicNs()
{
    return nanoseconds(CLOCK_MONOTONIC);
}

void Parent::finishStep(Report report) const
{
    report.finishedNs = monotonicNs();
    report.cpuNs = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
    char go = 0;
    if (::write(m_fd, &report, sizeof report) != ssize_t{sizeof report} ||
        ::read(m_fd, &go, 1) != 1)
        _exit(EXIT_FAILURE);
}

bool Parent::nextStepStarted() const
{
    pollfd waiting{m_fd, POLLIN, 0};
    return ::poll(&waiting, 1, 0) != 0;
}

Process::Process(const Body& body)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        std::perror("socketpair");
        std::exit(EXIT_FAILURE);
    }
    std::fflush(nullptr);
    m_pid = ::fork();
    if (m_pid == 0) {
        ::close(ends[0]);
        runChild(body, ends[1]);
    }
    if (m_pid < 0)
        std::perror("fork"); // the missing report then ends the run
    ::close(ends[1]);
    m_fd = ends[0];
}

Process::~Process()
{
    if (m_pid > 0) {
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
    }
    if (m_fd >= 0)
        ::close(m_fd);
}

bool Process::awaitStep(Report& report, std::chrono::seconds patience)
{
    pollfd waiting{m_fd, POLLIN, 0};
    const auto limit = static_cast<int>(std::chrono::milliseconds(patience).count());
    int ready = ::poll(&waiting, 1, limit);
    while (ready < 0 && errno == EINTR)
        ready = ::poll(&waiting, 1, limit);
    if (ready != 1)
        return false;
    return ::read(m_fd, &report, sizeof report) == ssize_t{sizeof report};
}

void Process::startStep()
{
    const char go = 1;
    // A child that died meanwhile is noticed when its report is awaited.
    [[maybe_unused]] const auto sent = ::send(m_fd, &go, 1, MSG_NOSIGNAL);
}

bool Process::awaitStop()
{
    int status = 0;
    return ::waitpid(m_pid, &status, WUNTRACED) == m_pid && WIFSTOPPED(status);
}

void Process::resume()
{
    ::kill(m_pid, SIGCONT);
}

bool Process::awaitEnd()
{
    int status = 0;
    const bool reaped = ::waitpid(m_pid, &status, 0) == m_pid;
    m_pid = -1;
    return reaped && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

} // namespace bench
