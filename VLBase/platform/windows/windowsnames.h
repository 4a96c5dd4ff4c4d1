#pragma once

#include <string>

namespace vlbase::platform {

/// The wide form of an object's name, which is ASCII.
inline std::wstring wideName(const std::string& name)
{
    return std::wstring(name.begin(), name.end());
}

} // namespace vlbase::platform
