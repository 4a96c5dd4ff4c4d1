#include "../processcontrol.h"

#include <windows.h>

namespace processcontrol {

namespace {

// The one call that stops all threads of a process at once is exported without a declaration.
bool callOnProcess(const char* function, qint64 processId)
{
    using Operation = LONG(NTAPI*)(HANDLE);
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    const auto operation =
        reinterpret_cast<Operation>(reinterpret_cast<void*>(GetProcAddress(ntdll, function)));
    const HANDLE process =
        OpenProcess(PROCESS_SUSPEND_RESUME, FALSE, static_cast<DWORD>(processId));
    if (!operation || !process)
        return false;
    const bool done = operation(process) >= 0;
    CloseHandle(process);
    return done;
}

} // namespace

bool suspend(qint64 processId)
{
    return callOnProcess("NtSuspendProcess", processId);
}

bool resume(qint64 processId)
{
    return callOnProcess("NtResumeProcess", processId);
}

} // namespace processcontrol
