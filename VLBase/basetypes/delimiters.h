#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vlbase::basetypes {

/// The set of characters at which a tokenizer cuts. `Unit` is an unsigned character type.
template <typename Unit> class Delimiters
{
public:
    /// \param units must stay as long as the set is used.
    Delimiters(const Unit* units, std::size_t count)
        : m_units(units)
        , m_count(count)
    {
        // A single one is compared with, which is faster.
        for (std::size_t i = 0; i < count && count > 1; ++i) {
            if (units[i] < asciiCount)
                m_ascii[units[i] >> 6] |= std::uint64_t{1} << (units[i] & 63);
            else
                m_onlyAscii = false;
        }
    }

    bool contains(Unit unit) const
    {
        if (m_count == 1)
            return unit == m_units[0];
        if (unit < asciiCount)
            return (m_ascii[unit >> 6] >> (unit & 63) & 1) != 0;
        return !m_onlyAscii && containsRare(unit);
    }

    /// The first delimiter of a range, or its end.
    const Unit* find(const Unit* from, const Unit* end) const
    {
        if (m_count == 1)
            return std::find(from, end, m_units[0]);
        return std::find_if(from, end, [this](Unit unit) { return contains(unit); });
    }

private:
    static constexpr Unit asciiCount = 128;

    bool containsRare(Unit unit) const
    {
        return std::find(m_units, m_units + m_count, unit) != m_units + m_count;
    }

    const Unit* m_units;
    std::size_t m_count;
    std::uint64_t m_ascii[2] = {0, 0};
    bool m_onlyAscii = true;
};

/// One step of a tokenizer: skips one delimiter, then takes all that is none.
/// \return the start of the token; `position` is left behind its end.
template <typename Unit>
const Unit* takeToken(const Unit*& position, const Unit* end, const Delimiters<Unit>& delimiters)
{
    // One only, also of a run: each further one ends an empty token.
    const Unit* start = delimiters.contains(*position) ? position + 1 : position;
    position = delimiters.find(start, end);
    return start;
}

} // namespace vlbase::basetypes
