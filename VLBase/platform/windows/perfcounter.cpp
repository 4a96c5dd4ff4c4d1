#include <VLBase/platform/perfcounter.h>

#include <windows.h>

namespace vlbase::platform {

std::int64_t performanceCounter()
{
    LARGE_INTEGER counter{};
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
}

std::int64_t performanceFrequency()
{
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

} // namespace vlbase::platform
