#include "detachedprogram.h"
#include "procfs.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/processes.h>

#include <QString>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

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

namespace {

std::string baseName(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::string contentUpTo(const std::string& path, char end)
{
    std::ifstream file(path, std::ios::binary);
    std::string content;
    std::getline(file, content, end);
    return content;
}

/// What everyone may read of anyone's process. The name that the kernel keeps is cut at 15
/// characters; the first argument has it whole, but a program may have written there what it
/// likes, so it counts only as the continuation of the former. A thread of the kernel has none.
std::string publicName(const std::string& folder)
{
    const std::string kept = contentUpTo(folder + "comm", '\n');
    const std::string called = baseName(contentUpTo(folder + "cmdline", '\0'));
    return called.empty() || called.compare(0, kept.size(), kept) == 0 ? called : kept;
}

} // namespace

std::vector<int> processIds(std::size_t)
{
    return numbersInFolder("/proc");
}

std::string programName(int processId)
{
    const std::string folder = "/proc/" + std::to_string(processId) + '/';
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink((folder + "exe").c_str(), target.data(), target.size());
    if (length < 0)
        return errno == EACCES ? publicName(folder) : std::string();

    std::string name = baseName({target.data(), static_cast<std::size_t>(length)});
    // So does the kernel mark one whose file was replaced or removed meanwhile.
    const std::string mark = " (deleted)";
    if (name.size() > mark.size() &&
        name.compare(name.size() - mark.size(), mark.size(), mark) == 0)
        name.resize(name.size() - mark.size());
    return name;
}

bool isSameProgram(const std::string& one, const std::string& other)
{
    return QString::fromStdString(one).compare(QString::fromStdString(other),
                                               Qt::CaseInsensitive) == 0;
}

int processIdOf(const _PROCESS_INFORMATION& process)
{
    // Two handles stand before it.
    std::uint32_t id = 0;
    std::memcpy(&id, reinterpret_cast<const char*>(&process) + 2 * sizeof(void*), sizeof id);
    return static_cast<int>(id);
}

namespace {

/// Words between blanks; double quotes hold a word together and are not part of it.
std::vector<std::string> splitAtBlanks(const std::string& text)
{
    std::vector<std::string> words;
    bool isInWord = false;
    bool isQuoted = false;
    for (const char character : text) {
        const bool isBlank = !isQuoted && (character == ' ' || character == '\t');
        if (!isBlank && !isInWord)
            words.emplace_back();
        isInWord = !isBlank;
        if (character == '"')
            isQuoted = !isQuoted;
        else if (!isBlank)
            words.back() += character;
    }
    return words;
}

std::string withoutQuotes(const std::string& text)
{
    const bool isQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

} // namespace

std::optional<int> startHiddenProgram(const std::string& program, const std::string& arguments)
{
    std::vector<std::string> words = splitAtBlanks(arguments);
    words.insert(words.begin(), withoutQuotes(program));
    return startDetachedProgram(std::move(words));
}

} // namespace vlbase::platform
