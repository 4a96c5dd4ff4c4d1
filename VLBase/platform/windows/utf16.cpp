#include "utf16.h"

#include <windows.h>

namespace vlbase::platform {

std::wstring toUtf16(const std::string& utf8)
{
    const int length = static_cast<int>(utf8.size());
    const int needed = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring utf16(static_cast<std::size_t>(needed), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, utf16.data(), needed);
    return utf16;
}

std::string toUtf8(const std::wstring& utf16)
{
    const int length = static_cast<int>(utf16.size());
    const int needed =
        ::WideCharToMultiByte(CP_UTF8, 0, utf16.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(needed), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, utf16.data(), length, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

} // namespace vlbase::platform
