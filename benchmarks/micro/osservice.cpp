// What applications ask of the operating-system service all the time, beside the plain calls of
// the system that answer the same.

#include "goals.h"

#include <VLBase/os/velaos.h>

#include <QByteArray>

#include <benchmark/benchmark.h>
#include <ctime>
#include <string>
#include <sys/time.h>
#include <unistd.h>

namespace {

/// The local zone for the life of this object; the other benchmarks have UTC.
class Zone
{
public:
    explicit Zone(const char* name) { qputenv("TZ", name); }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;
    ~Zone() { qputenv("TZ", "UTC"); }
};

void stamp(benchmark::State& state)
{
    IVelaOS& os = VelaOS::Get();
    for (auto _ : state)
        benchmark::DoNotOptimize(os.GetTimestamp());
}
BENCHMARK(stamp);

void stampBySystem(benchmark::State& state)
{
    for (auto _ : state) {
        timeval now{};
        ::gettimeofday(&now, nullptr);
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(stampBySystem);

void threadId(benchmark::State& state)
{
    IVelaOS& os = VelaOS::Get();
    for (auto _ : state)
        benchmark::DoNotOptimize(os.GetCurrentThreadId());
}
BENCHMARK(threadId);

void threadIdBySystem(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(::gettid());
}
BENCHMARK(threadIdBySystem);

void utcOffset(benchmark::State& state, const char* zoneName, bool withDaylight)
{
    const Zone zone(zoneName);
    IVelaOS& os = VelaOS::Get();
    for (auto _ : state)
        benchmark::DoNotOptimize(os.GetTimezoneOffset(withDaylight));
}
BENCHMARK_CAPTURE(utcOffset, nowUtc, "UTC", true);
BENCHMARK_CAPTURE(utcOffset, nowBerlin, "Europe/Berlin", true);
BENCHMARK_CAPTURE(utcOffset, standardUtc, "UTC", false);
BENCHMARK_CAPTURE(utcOffset, standardBerlin, "Europe/Berlin", false);

void utcOffsetBySystem(benchmark::State& state, const char* zoneName)
{
    const Zone zone(zoneName);
    for (auto _ : state) {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        ::tzset();
        ::localtime_r(&now, &local);
        benchmark::DoNotOptimize(local.tm_gmtoff);
    }
}
BENCHMARK_CAPTURE(utcOffsetBySystem, utc, "UTC");
BENCHMARK_CAPTURE(utcOffsetBySystem, berlin, "Europe/Berlin");

bench::Goal besideSystem(const std::string& name, const std::string& ours, const std::string& peer)
{
    return bench::Goal(
        name, 1.5, [ours, peer](const bench::Medians& ns) { return ns.at(ours) / ns.at(peer); });
}

const bench::Goal goals[] = {
    besideSystem("GetTimestamp / gettimeofday", "stamp", "stampBySystem"),
    besideSystem("GetCurrentThreadId / gettid", "threadId", "threadIdBySystem"),
    besideSystem("GetTimezoneOffset(true), UTC / localtime_r", "utcOffset/nowUtc",
                 "utcOffsetBySystem/utc"),
    besideSystem("GetTimezoneOffset(true), Berlin / localtime_r", "utcOffset/nowBerlin",
                 "utcOffsetBySystem/berlin"),
    besideSystem("GetTimezoneOffset(false), UTC / localtime_r", "utcOffset/standardUtc",
                 "utcOffsetBySystem/utc"),
    besideSystem("GetTimezoneOffset(false), Berlin / localtime_r", "utcOffset/standardBerlin",
                 "utcOffsetBySystem/berlin"),
};

} // namespace
