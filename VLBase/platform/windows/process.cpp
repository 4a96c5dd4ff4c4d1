#include "ownedhandle.h"

#include <VLBase/platform/process.h>

#include <windows.h>

namespace vlbase::platform {

namespace {

OwnedHandle openProcess(int processId, DWORD access)
{
    if (processId <= 0) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return OwnedHandle(::OpenProcess(access, FALSE, static_cast<DWORD>(processId)));
}

} // namespace

bool terminateProcess(int processId)
{
    const OwnedHandle process = openProcess(processId, PROCESS_ALL_ACCESS);
    if (!process)
        return false;
    // As long as anybody holds a handle the number still opens what has already ended.
    if (::WaitForSingleObject(process.get(), 0) == WAIT_OBJECT_0) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return ::TerminateProcess(process.get(), 0) != FALSE;
}

bool isProcessIdle(int processId)
{
    constexpr DWORD limitMs = 50;
    const OwnedHandle process = openProcess(processId, PROCESS_QUERY_INFORMATION);
    if (!process || ::WaitForInputIdle(process.get(), limitMs) == 0)
        return true;
    // A limit that is over sets no code: then the one decides that the thread had before.
    return ::GetLastError() == ERROR_SUCCESS;
}

bool raisePriority()
{
    return ::SetPriorityClass(::GetCurrentProcess(), HIGH_PRIORITY_CLASS) != FALSE;
}

} // namespace vlbase::platform
