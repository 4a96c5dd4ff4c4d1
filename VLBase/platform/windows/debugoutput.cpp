#include <VLBase/platform/debugoutput.h>

#include <windows.h>

namespace vlbase::platform {

void writeToDebugger(const std::wstring& text)
{
    const DWORD error = ::GetLastError();
    ::OutputDebugStringW(text.c_str());
    ::SetLastError(error);
}

} // namespace vlbase::platform
