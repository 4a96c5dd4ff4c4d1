#include <VLBase/platform/perfcounter.h>

#include <time.h>

namespace vlbase::platform {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

} // namespace

std::int64_t performanceCounter()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * nanosecondsPerSecond + now.tv_nsec;
}

std::int64_t performanceFrequency()
{
    return nanosecondsPerSecond;
}

} // namespace vlbase::platform
