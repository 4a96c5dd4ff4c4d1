#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <sys/types.h>

namespace bench {

/// What a process tells about the step that it has just finished. `finishedNs` is a time of the
/// monotonic clock, which is the same in all processes.
struct Report
{
    std::int64_t finishedNs = 0;
    std::int64_t cpuNs = 0; ///< processor time of this process so far
    std::uint64_t received = 0;
    std::uint64_t missing = 0;
    std::uint64_t bad = 0;
    std::uint64_t reportedLost = 0;
};

std::int64_t monotonicNs();

/// The child's side of the conversation.
class Parent
{
public:
    explicit Parent(int fd)
        : m_fd(fd)
    {
    }

    /// Reports a finished step with the present times and waits for the start of the next one.
    /// Ends the process when the parent is gone.
    void finishStep(Report report = {}) const;
    /// Whether the start of the next step is already there.
    bool nextStepStarted() const;

private:
    int m_fd;
};

/// A child process that walks through the steps of a run together with its siblings. Ends it by
/// its id, and waits for it, at the latest in the destructor.
class Process
{
public:
    using Body = std::function<void(const Parent&)>;

    /// Runs \p body in a child process, which ends with it.
    explicit Process(const Body& body);
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// The report of the step under way; false when the child died or the time is over.
    bool awaitStep(Report& report, std::chrono::seconds patience);
    /// Lets the child begin its next step.
    void startStep();
    /// Waits until the child has stopped itself with SIGSTOP.
    bool awaitStop();
    /// Lets a stopped child go on.
    void resume();
    /// Waits until the child has ended; true when it ended by itself and in good order.
    bool awaitEnd();

private:
    pid_t m_pid = -1;
    int m_fd = -1;
};

} // namespace bench
