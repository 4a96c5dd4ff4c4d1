#include "utf16.h"

#include <VLBase/platform/identity.h>

#include <array>

// The others need <windows.h> before them.
// clang-format off
#include <windows.h>
#include <lmcons.h>
#include <sddl.h>
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

} // namespace vlbase::platform
