#include "nativeicon.h"

#include "utf16.h"

#include <windows.h>

namespace vlbase::platform {

NativeIcon::NativeIcon(const std::string& module, const std::string& resource)
{
    const HMODULE library = ::GetModuleHandleW(toUtf16(module).c_str());
    if (library == nullptr) // would stand for the system's own icons
        return;
    ::SetLastError(ERROR_SUCCESS); // A success leaves the code of an older failure.
    m_handle = ::LoadIconW(library, toUtf16(resource).c_str());
    m_isFound = ::GetLastError() == ERROR_SUCCESS;
}

NativeIcon::~NativeIcon()
{
    const DWORD error = ::GetLastError();
    ::DestroyIcon(m_handle);
    ::SetLastError(error);
}

} // namespace vlbase::platform
