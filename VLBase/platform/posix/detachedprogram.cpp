#include "detachedprogram.h"

#include <VLBase/platform/lasterror.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <new>
#include <sched.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vlbase::platform {

namespace {

/// How the program begins: in a session of its own and so without a terminal, with nothing
/// behind its standard streams but the output asked for, no other descriptor, and no signal
/// blocked, ignored or handled.
class Beginning
{
public:
    explicit Beginning(int output)
    {
        ::posix_spawnattr_init(&attributes);
        ::posix_spawn_file_actions_init(&actions);

        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes, &signals);
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes, &signals);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK |
                                                    POSIX_SPAWN_SETSIGDEF);
        m_error = ::posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        for (const int stream : {1, 2}) {
            if (m_error == 0)
                m_error =
                    ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
        }
        if (m_error == 0 && output >= 0)
            m_error = ::posix_spawn_file_actions_adddup2(&actions, output, 1);
        if (m_error == 0)
            m_error = ::posix_spawn_file_actions_addclosefrom_np(&actions, 3);
    }
    Beginning(const Beginning&) = delete;
    Beginning& operator=(const Beginning&) = delete;
    ~Beginning()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }

    int error() const { return m_error; }

    posix_spawnattr_t attributes{};
    posix_spawn_file_actions_t actions{};

private:
    int m_error = 0;
};

struct Launch
{
    const Beginning& beginning;
    char* const* arguments;
    pid_t processId = 0;
    int error = 0;
};

int launch(void* data)
{
    auto& call = *static_cast<Launch*>(data);
    call.error = ::posix_spawnp(&call.processId, call.arguments[0], &call.beginning.actions,
                                &call.beginning.attributes, call.arguments, ::environ);
    return 0;
}

/// Has a helper process start the program, and end at once. The program is then the child of the
/// system's first process, which clears it away when it ends. A child of ours would disturb an
/// application that waits for any of its children, or handles SIGCHLD; the helper does not,
/// because it announces its end by no signal and so is waited for only by who asks for such.
///
/// The helper runs in this process's memory while the calling thread stands still, so it costs no
/// copy of that memory and hands over its result in it. No signal may run a handler in it.
int launchByHelper(Launch& call)
{
    constexpr std::size_t stackSize = 256 * 1024UL;
    const std::unique_ptr<char[]> stack(new (std::nothrow) char[stackSize]);
    if (!stack)
        return ENOMEM;
    sigset_t all;
    sigset_t before;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t helper = ::clone(launch, stack.get() + stackSize, CLONE_VM | CLONE_VFORK, &call);
    const int cloneError = helper < 0 ? errno : 0;
    if (helper > 0)
        ::waitpid(helper, nullptr, static_cast<int>(__WCLONE));
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return cloneError != 0 ? cloneError : call.error;
}

} // namespace

std::optional<int> startDetachedProgram(std::vector<std::string> words, int output)
{
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    const Beginning beginning(output);
    Launch call{beginning, pointers.data()};
    const int error = beginning.error() != 0 ? beginning.error() : launchByHelper(call);
    if (error != 0) {
        setLastError(static_cast<std::uint32_t>(error));
        return std::nullopt;
    }
    return call.processId;
}

} // namespace vlbase::platform
