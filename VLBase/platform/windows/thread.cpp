#include <VLBase/platform/thread.h>

#include <windows.h>

namespace vlbase::platform {

int currentThreadId()
{
    return static_cast<int>(::GetCurrentThreadId());
}

void alertableSleep(int milliseconds)
{
    ::SleepEx(static_cast<DWORD>(milliseconds), TRUE); // -1 is INFINITE
}

} // namespace vlbase::platform
