#include "utf16.h"

#include <VLBase/platform/directories.h>

#include <array>
#include <windows.h>

namespace vlbase::platform {

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

} // namespace vlbase::platform
