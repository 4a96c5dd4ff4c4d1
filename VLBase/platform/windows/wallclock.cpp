#include <VLBase/platform/wallclock.h>

#include <sys/timeb.h>

namespace vlbase::platform {

std::chrono::milliseconds wallClock()
{
    struct __timeb64 now
    {
    };
    ::_ftime64(&now);
    return std::chrono::seconds(now.time) + std::chrono::milliseconds(now.millitm);
}

} // namespace vlbase::platform
