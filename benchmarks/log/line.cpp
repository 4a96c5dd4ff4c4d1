#include "line.h"

#include <algorithm>
#include <charconv>

namespace bench {

namespace {

constexpr std::string_view head = "100000\t2026-03-01 12:00:00\tUTC: 0.000000\tstation-07\t"
                                  "receiver\tError\tinput saturated\t";

static_assert(head.size() + detail.size() + 1 + tailLength == lineLength);

constexpr std::size_t writerWidth = tailLength - 1 - Counter::width;

std::uint64_t valueOf(std::string_view digits)
{
    std::uint64_t value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

} // namespace

void Counter::increment()
{
    for (auto digit = m_digits.rbegin(); digit != m_digits.rend(); ++digit) {
        if (*digit != '9') {
            ++*digit;
            return;
        }
        *digit = '0';
    }
}

void Counter::assign(const char* digits)
{
    std::copy_n(digits, width, m_digits.begin());
}

LineMaker::LineMaker(int writer)
    : m_line(head)
{
    const std::string digits = std::to_string(writer);
    m_line.append(detail).append(1, '\t').append(writerWidth - digits.size(), '0').append(digits);
    m_line.append(1, ' ').append(m_counter.digits(), Counter::width);
}

std::string_view LineMaker::tail() const
{
    return std::string_view(m_line).substr(lineLength - tailLength);
}

void LineMaker::next()
{
    m_counter.increment();
    std::copy_n(m_counter.digits(), Counter::width, m_line.end() - Counter::width);
}

void Tally::take(std::string_view line)
{
    ++m_received;
    if (line.size() != lineLength) {
        ++m_bad;
        return;
    }
    const std::string_view tail = line.substr(lineLength - tailLength);
    const auto writer = static_cast<std::size_t>(valueOf(tail.substr(0, writerWidth)));
    if (writer >= m_expected.size() ||
        line.substr(lineLength - tailLength - 1 - detail.size(), detail.size()) != detail) {
        ++m_bad;
        return;
    }
    Counter& expected = m_expected[writer];
    const std::string_view number = tail.substr(writerWidth + 1);
    if (number != std::string_view(expected.digits(), Counter::width)) {
        const std::uint64_t due = valueOf({expected.digits(), Counter::width});
        const std::uint64_t got = valueOf(number);
        if (got < due) {
            ++m_bad;
            return;
        }
        m_missing += got - due;
        expected.assign(number.data());
    }
    expected.increment();
}

} // namespace bench
