#include <VLBase/platform/process.h>

#include <windows.h>

namespace vlbase::platform {

bool terminateProcess(int processId)
{
    if (processId <= 0) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    const HANDLE process = ::OpenProcess(PROCESS_ALL_ACCESS, FALSE, static_cast<DWORD>(processId));
    if (process == nullptr)
        return false;
    const bool terminated = ::TerminateProcess(process, 0) != FALSE;
    const DWORD error = ::GetLastError();
    ::CloseHandle(process);
    ::SetLastError(error);
    return terminated;
}

} // namespace vlbase::platform
