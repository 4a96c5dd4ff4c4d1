#include "ownedhandle.h"
#include "utf16.h"

#include <VLBase/platform/processlist.h>

#include <array>

// The other needs <windows.h> before it.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

namespace vlbase::platform {

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

} // namespace vlbase::platform
