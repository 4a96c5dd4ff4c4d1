#include "ownedhandle.h"
#include "utf16.h"

#include <VLBase/platform/processes.h>

#include <array>

// The other needs <windows.h> before it.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

namespace vlbase::platform {

int currentThreadId()
{
    return static_cast<int>(::GetCurrentThreadId());
}

void alertableSleep(int milliseconds)
{
    ::SleepEx(static_cast<DWORD>(milliseconds), TRUE); // -1 is INFINITE
}

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

std::vector<int> processIds(std::size_t room)
{
    std::vector<DWORD> ids(room);
    DWORD size = 0;
    if (!::K32EnumProcesses(ids.data(), static_cast<DWORD>(room * sizeof(DWORD)), &size))
        return {};
    return {ids.begin(), ids.begin() + static_cast<std::ptrdiff_t>(size / sizeof(DWORD))};
}

std::string programName(int processId)
{
    const OwnedHandle process(::OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE,
                                            static_cast<DWORD>(processId)));
    HMODULE first = nullptr;
    DWORD needed = 0;
    if (!process || !::K32EnumProcessModules(process.get(), &first, sizeof first, &needed))
        return {};
    std::array<wchar_t, MAX_PATH> name{};
    const DWORD length = ::K32GetModuleBaseNameW(process.get(), first, name.data(), MAX_PATH);
    return toUtf8({name.data(), length});
}

bool isSameProgram(const std::string& one, const std::string& other)
{
    return ::lstrcmpiW(toUtf16(one).c_str(), toUtf16(other).c_str()) == 0;
}

int processIdOf(const _PROCESS_INFORMATION& process)
{
    return static_cast<int>(process.dwProcessId);
}

std::optional<int> startHiddenProgram(const std::string& program, const std::string& arguments)
{
    std::wstring commandLine = toUtf16(program + ' ' + arguments); // which the call may write to
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NEW_CONSOLE,
                          nullptr, nullptr, &startup, &started))
        return std::nullopt;
    ::CloseHandle(started.hThread);
    ::CloseHandle(started.hProcess);
    return static_cast<int>(started.dwProcessId);
}

} // namespace vlbase::platform
