#pragma once

#include <string>

namespace vlbase::platform {

// Windows' texts are UTF-16, those of this folder's interfaces UTF-8. What is malformed becomes
// U+FFFD.

std::wstring toUtf16(const std::string& utf8);
std::string toUtf8(const std::wstring& utf16);

} // namespace vlbase::platform
