#include "procfs.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/process.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <sys/resource.h>
#include <thread>

namespace vlbase::platform {

namespace {

struct Activity
{
    bool hasEnded = false; // and stays until its parent has asked how
    bool isAsleep = false;
    unsigned long long ticks = 0; // processor time of all threads, in 1/100 s
};

/// None for a process that is gone or cannot be looked at.
std::optional<Activity> activityOf(int processId)
{
    std::ifstream file("/proc/" + std::to_string(processId) + "/stat");
    std::string line;
    std::getline(file, line);
    // The program's name stands in brackets and may hold any character, brackets too.
    const std::size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos)
        return std::nullopt;
    std::istringstream fields(line.substr(nameEnd + 1));
    char state = 0;
    fields >> state;
    std::string skipped;
    for (int i = 0; i < 10; ++i)
        fields >> skipped;
    unsigned long long inProgram = 0;
    unsigned long long inKernel = 0;
    fields >> inProgram >> inKernel;
    for (int i = 0; i < 4; ++i)
        fields >> skipped;
    int threads = 0;
    fields >> threads;
    if (!fields)
        return std::nullopt;
    // The state is that of the first thread, which may end before others.
    const bool hasEnded = (state == 'Z' || state == 'X') && threads <= 1;
    return Activity{hasEnded, state == 'S', inProgram + inKernel};
}

/// Linux has a priority for each thread, which new ones inherit.
bool raiseThread(id_t threadId)
{
    constexpr int high = -10; // halfway to the greatest, -20
    errno = 0;
    const int now = ::getpriority(PRIO_PROCESS, threadId);
    if (errno == 0 && now <= high)
        return true;
    if (errno == 0 && ::setpriority(PRIO_PROCESS, threadId, high) == 0)
        return true;
    if (errno == ESRCH) // it has ended meanwhile
        return true;
    setLastError(static_cast<std::uint32_t>(errno));
    return false;
}

} // namespace

bool terminateProcess(int processId)
{
    // 0 and below would name whole groups of processes.
    if (processId <= 0) {
        setLastError(ESRCH);
        return false;
    }
    if (const auto activity = activityOf(processId); activity && activity->hasEnded) {
        setLastError(ESRCH);
        return false;
    }
    if (::kill(processId, SIGKILL) == 0)
        return true;
    setLastError(static_cast<std::uint32_t>(errno));
    return false;
}

/// Nobody can see from outside what a process waits for. One that sleeps for 50 ms and has used no
/// processor time that counts, in whatever thread, has nothing to do.
bool isProcessIdle(int processId)
{
    using namespace std::chrono_literals;
    constexpr auto limit = 50ms;
    constexpr auto step = 10ms;

    const auto before = activityOf(processId);
    auto now = before;
    for (auto passed = 0ms; now && now->isAsleep && now->ticks == before->ticks; passed += step) {
        if (passed >= limit)
            return true;
        std::this_thread::sleep_for(step);
        now = activityOf(processId);
    }
    const bool isGone = !now || now->hasEnded;
    setLastError(static_cast<std::uint32_t>(isGone ? ESRCH : EBUSY));
    return isGone;
}

bool raisePriority()
{
    // A thread that was not raised yet may start another meanwhile, hence once more until there
    // was no new one.
    std::set<int> raised;
    for (bool foundNew = true; foundNew;) {
        foundNew = false;
        for (const int threadId : numbersInFolder("/proc/self/task")) {
            if (!raised.insert(threadId).second)
                continue;
            if (!raiseThread(static_cast<id_t>(threadId)))
                return false;
            foundNew = true;
        }
    }
    return true;
}

} // namespace vlbase::platform
