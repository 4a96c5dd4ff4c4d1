#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vlbase::logging {

// Line numbers have six digits: 100000 to 999998. The counter in the header runs on to 999999,
// for which 100000 is given out, and then gives out 100000 again. So a period has 900,000
// numbers, the first of them twice. A slot counts them from 0; a position counts all numbers
// since the log was made, and its slot is what is left after whole periods.
inline constexpr std::int32_t firstNumber = 100000;
inline constexpr std::int32_t turningNumber = 999999;
inline constexpr std::uint64_t numberPeriod = 900000;

/// Position of the first number of a new log, whose counter begins with 100000.
inline constexpr std::uint64_t firstPosition = 1;

/// Slot of the number that is given out while the counter shows \a counter.
inline std::optional<std::uint64_t> slotOfCounter(std::int64_t counter)
{
    if (counter < firstNumber || counter > turningNumber)
        return std::nullopt;
    return counter == turningNumber ? 0 : static_cast<std::uint64_t>(counter - firstNumber + 1);
}

/// The slots that a number may stand in: one, or two for 100000.
class NumberSlots
{
public:
    explicit NumberSlots(std::int32_t number)
        : m_slots{static_cast<std::uint64_t>(number - firstNumber + 1), 0}
        , m_count(number == firstNumber ? 2 : 1)
    {
    }
    const std::uint64_t* begin() const { return m_slots.data(); }
    const std::uint64_t* end() const { return m_slots.data() + m_count; }

private:
    std::array<std::uint64_t, 2> m_slots;
    std::size_t m_count;
};

/// The first position at or after \a from that has the slot.
inline std::uint64_t positionFrom(std::uint64_t from, std::uint64_t slot)
{
    return from + (slot + numberPeriod - from % numberPeriod) % numberPeriod;
}

/// The number that a line begins with: six digits and a tab.
inline std::optional<std::int32_t> numberOfLine(std::string_view line)
{
    if (line.size() < 7 || line[6] != '\t')
        return std::nullopt;
    std::int32_t number = 0;
    for (std::size_t i = 0; i < 6; ++i) {
        if (line[i] < '0' || line[i] > '9')
            return std::nullopt;
        number = number * 10 + (line[i] - '0');
    }
    if (number < firstNumber || number >= turningNumber)
        return std::nullopt;
    return number;
}

} // namespace vlbase::logging
