#include "utf16.h"

#include <VLBase/platform/shellopen.h>

// The other needs <windows.h> before it.
// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

namespace vlbase::platform {

std::int64_t openForUser(const std::string& target)
{
    const HINSTANCE answer =
        ::ShellExecuteW(nullptr, L"open", toUtf16(target).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<std::intptr_t>(answer);
}

} // namespace vlbase::platform
