#include "linehash.h"

#include <cstddef>
#include <cstring>

namespace vlbase::logging {

namespace {

// Odd, with about half of the bits set.
constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15u;

std::uint64_t wordAt(const char* bytes)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

std::uint64_t rotated(std::uint64_t value, int bits)
{
    return value << bits | value >> (64 - bits);
}

// A product carries differences upwards only; the rotation brings them down again.
std::uint64_t mixed(std::uint64_t state, std::uint64_t word)
{
    return (rotated(state, 29) ^ word) * multiplier;
}

} // namespace

// Four independent lanes, because one multiplication need not wait for another then.
std::uint64_t lineHash(std::string_view line)
{
    std::uint64_t lanes[4] = {line.size(), 1, 2, 3};
    const char* bytes = line.data();
    std::size_t rest = line.size();
    for (; rest >= 32; rest -= 32, bytes += 32) {
        for (std::size_t lane = 0; lane < 4; ++lane)
            lanes[lane] = mixed(lanes[lane], wordAt(bytes + 8 * lane));
    }
    for (std::size_t lane = 0; rest >= 8; ++lane, rest -= 8, bytes += 8)
        lanes[lane] = mixed(lanes[lane], wordAt(bytes));
    std::uint64_t last = 0;
    if (rest > 0)
        std::memcpy(&last, bytes, rest);
    lanes[3] = mixed(lanes[3], last);
    const std::uint64_t hash = mixed(mixed(lanes[0], lanes[1]), mixed(lanes[2], lanes[3]));
    return (hash ^ hash >> 32) * multiplier;
}

} // namespace vlbase::logging
