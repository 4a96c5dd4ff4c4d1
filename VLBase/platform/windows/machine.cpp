#include "ownedhandle.h"
#include "utf16.h"

#include <VLBase/platform/lasterror.h>
#include <VLBase/platform/machine.h>

#include <algorithm>
#include <array>

// The others need <windows.h> before them.
// clang-format off
#include <windows.h>
#include <lmcons.h>
#include <sddl.h>
#include <objbase.h>
// clang-format on

namespace vlbase::platform {

std::string computerName()
{
    std::array<wchar_t, 2048> name{};
    auto length = static_cast<DWORD>(name.size());
    return ::GetComputerNameW(name.data(), &length) ? toUtf8(name.data()) : std::string();
}

std::string loginName()
{
    std::array<wchar_t, UNLEN + 1> name{};
    auto length = static_cast<DWORD>(name.size());
    return ::GetUserNameW(name.data(), &length) ? toUtf8(name.data()) : std::string();
}

std::string securityIdentifier(const std::string& account)
{
    if (account.empty())
        return {};
    alignas(SID) std::array<unsigned char, 256> identifier{};
    std::array<wchar_t, 257> domain{};
    auto identifierSize = static_cast<DWORD>(identifier.size());
    auto domainLength = static_cast<DWORD>(domain.size());
    SID_NAME_USE use{};
    if (!::LookupAccountNameW(nullptr, toUtf16(account).c_str(), identifier.data(), &identifierSize,
                              domain.data(), &domainLength, &use))
        return {};
    wchar_t* text = nullptr;
    if (!::ConvertSidToStringSidW(identifier.data(), &text))
        return {};
    std::string result = toUtf8(text);
    ::LocalFree(text);
    return result;
}

// A result of the room given or more is the room that would be needed.

std::string systemDirectory()
{
    std::array<wchar_t, MAX_PATH> path{};
    const UINT length = ::GetSystemDirectoryW(path.data(), MAX_PATH);
    return length < path.size() ? toUtf8({path.data(), length}) : std::string();
}

std::string temporaryDirectory()
{
    std::array<wchar_t, MAX_PATH> path{};
    const DWORD length = ::GetTempPathW(MAX_PATH, path.data());
    return length < path.size() ? toUtf8({path.data(), length}) : std::string();
}

const char* userDirectoryVariable()
{
    return "USERPROFILE";
}

std::optional<UniqueId> createUniqueId()
{
    GUID guid{};
    const HRESULT result = ::CoCreateGuid(&guid);
    if (FAILED(result)) {
        setLastError(static_cast<std::uint32_t>(result));
        return std::nullopt;
    }
    UniqueId id{static_cast<std::uint32_t>(guid.Data1), guid.Data2, guid.Data3, {}};
    std::copy(std::begin(guid.Data4), std::end(guid.Data4), id.data4.begin());
    return id;
}

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
