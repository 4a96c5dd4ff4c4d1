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

// Four independent lanes, because one multiplication need not wait for another then.
class Lanes
{
public:
    explicit Lanes(std::size_t length)
        : m_lanes{length, 1, 2, 3}
    {
    }

    static constexpr std::size_t blockSize = 32;

    void mixBlock(const char* bytes)
    {
        for (std::size_t lane = 0; lane < 4; ++lane)
            m_lanes[lane] = mixed(m_lanes[lane], wordAt(bytes + 8 * lane));
    }

    std::uint64_t hash() const
    {
        const std::uint64_t all =
            mixed(mixed(m_lanes[0], m_lanes[1]), mixed(m_lanes[2], m_lanes[3]));
        return (all ^ all >> 32) * multiplier;
    }

private:
    std::uint64_t m_lanes[4];
};

} // namespace

std::uint64_t lineHash(std::string_view line)
{
    Lanes lanes(line.size());
    if (line.size() < Lanes::blockSize) {
        char padded[Lanes::blockSize] = {};
        line.copy(padded, line.size());
        lanes.mixBlock(padded);
        return lanes.hash();
    }
    // The last block reaches back into the one before it rather than being a partial one.
    const char* const last = line.data() + line.size() - Lanes::blockSize;
    for (const char* bytes = line.data(); bytes < last; bytes += Lanes::blockSize)
        lanes.mixBlock(bytes);
    lanes.mixBlock(last);
    return lanes.hash();
}

} // namespace vlbase::logging
