#include "ownedhandle.h"

#include <VLBase/platform/shutdown.h>

#include <windows.h>

namespace vlbase::platform {

namespace {

bool enableShutdownPrivilege()
{
    HANDLE opened = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &opened))
        return false;
    const OwnedHandle token(opened);
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    if (!::LookupPrivilegeValueW(nullptr, L"SeShutdownPrivilege", &wanted.Privileges[0].Luid))
        return false;
    ::AdjustTokenPrivileges(token.get(), FALSE, &wanted, 0, nullptr, nullptr);
    return ::GetLastError() == ERROR_SUCCESS; // the call succeeds also when nothing was granted
}

} // namespace

bool endSystem(SystemEnd end)
{
    constexpr DWORD waitMs = 2000; // in which other threads of this process can finish
    if (!enableShutdownPrivilege())
        return false;
    ::SleepEx(waitMs, TRUE);
    const UINT kind = end == SystemEnd::PowerOff ? EWX_SHUTDOWN : EWX_REBOOT;
    return ::ExitWindowsEx(kind | EWX_FORCE, SHTDN_REASON_FLAG_PLANNED) != FALSE;
}

} // namespace vlbase::platform
