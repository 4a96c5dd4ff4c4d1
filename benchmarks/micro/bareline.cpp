// The floor under a ready line: what any log pays whose lines survive their writer.

#include "goals.h"

#include <benchmark/benchmark.h>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <pthread.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t halfBytes = 1 << 20;
constexpr std::size_t lineLength = 135;
constexpr int linesPerRound = 3500; // as between two drains of `readyLine`

/// A robust mutex taken and released, two copies of the line, and a hash.
class BareLog
{
public:
    BareLog()
        : m_halves{std::vector<char>(halfBytes), std::vector<char>(halfBytes)}
    {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
        pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        pthread_mutex_init(&m_mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    ~BareLog() { pthread_mutex_destroy(&m_mutex); }
    BareLog(const BareLog&) = delete;
    BareLog& operator=(const BareLog&) = delete;

    void add(const std::string& line)
    {
        pthread_mutex_lock(&m_mutex);
        benchmark::DoNotOptimize(std::hash<std::string_view>()(line));
        for (std::vector<char>& half : m_halves)
            std::memcpy(half.data() + m_fill, line.c_str(), line.size() + 1);
        m_fill += line.size() + 1;
        pthread_mutex_unlock(&m_mutex);
    }
    void clear() { m_fill = 0; }

private:
    pthread_mutex_t m_mutex;
    std::vector<char> m_halves[2];
    std::size_t m_fill = 0;
};

void bareLine(benchmark::State& state)
{
    BareLog log;
    std::string line = "100000\t";
    line.resize(lineLength, 'x');
    int inRound = 0;
    for (auto _ : state) {
        std::to_chars(line.data(), line.data() + 6, 100000 + inRound);
        log.add(line);
        benchmark::ClobberMemory();
        if (++inRound == linesPerRound) {
            log.clear();
            inRound = 0;
        }
    }
}
BENCHMARK(bareLine);

const bench::Goal bareGoal("ready line / the bare floor", 1.5, [](const bench::Medians& ns) {
    return ns.at("readyLine") / ns.at("bareLine");
});

} // namespace
