#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/process.h>

#include <cerrno>
#include <csignal>

namespace vlbase::platform {

bool terminateProcess(int processId)
{
    // 0 and below would name whole groups of processes.
    if (processId <= 0) {
        setLastError(ESRCH);
        return false;
    }
    if (::kill(processId, SIGKILL) == 0)
        return true;
    setLastError(static_cast<std::uint32_t>(errno));
    return false;
}

} // namespace vlbase::platform
