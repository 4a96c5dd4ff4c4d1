#include "utf16.h"

#include <VLBase/platform/hiddenprogram.h>

#include <windows.h>

namespace vlbase::platform {

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
