#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Length of every line that is carried, without its terminator: what a usual error report is.
inline constexpr std::size_t lineLength = 135;

/// Writers are told apart by three digits.
inline constexpr int maxWriters = 999;

/// A decimal number of eight digits that counts in place, so that neither the making nor the
/// checking of a line costs a conversion.
class Counter
{
public:
    static constexpr std::size_t width = 8;

    const char* digits() const { return m_digits.data(); }
    void increment();
    /// \param digits at least `width` of them
    void assign(const char* digits);

private:
    std::array<char, width> m_digits{'0', '0', '0', '0', '0', '0', '0', '0'};
};

/// The last field: the writer's digits, a blank and a `Counter`.
inline constexpr std::size_t tailLength = 4 + Counter::width;

/// The event field before the last one. It is the same in every line and checked on receipt.
inline constexpr std::string_view detail = "signal above the limit of the converter";

/// The lines of one writer: log lines whose last field is the writer's digits, a blank and
/// the number of the line.
class LineMaker
{
public:
    /// \param writer 0 to maxWriters - 1
    explicit LineMaker(int writer);

    const std::string& line() const { return m_line; }
    /// The six digits in front of the line, for a log that numbers its lines.
    char* index() { return m_line.data(); }
    /// The last field alone.
    std::string_view tail() const;

    void next();

private:
    std::string m_line;
    Counter m_counter;
};

/// What a receiver saw. Lines of one writer have to arrive in the order of their numbers.
class Tally
{
public:
    explicit Tally(int writers)
        : m_expected(static_cast<std::size_t>(writers))
    {
    }

    void take(std::string_view line);

    std::uint64_t received() const { return m_received; }
    /// Numbers that were passed over.
    std::uint64_t missing() const { return m_missing; }
    /// Lines of a wrong length or content, repeated lines and lines out of order.
    std::uint64_t bad() const { return m_bad; }

private:
    std::vector<Counter> m_expected;
    std::uint64_t m_received = 0;
    std::uint64_t m_missing = 0;
    std::uint64_t m_bad = 0;
};

} // namespace bench
