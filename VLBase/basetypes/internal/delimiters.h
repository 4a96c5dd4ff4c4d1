#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vlbase::basetypes {

/// The one character at which a tokenizer cuts, which is the usual case.
template <typename Unit> class Delimiter
{
public:
    explicit Delimiter(Unit unit)
        : m_unit(unit)
    {
    }

    bool contains(Unit unit) const { return unit == m_unit; }

    /// The first delimiter of a range, or its end. Fields are short: an unrolled loop takes longer.
    const Unit* find(const Unit* from, const Unit* end) const
    {
        while (from != end && *from != m_unit)
            ++from;
        return from;
    }

private:
    Unit m_unit;
};

/// The set of characters at which a tokenizer cuts. `Unit` is an unsigned character type.
template <typename Unit> class Delimiters
{
public:
    /// \param units must stay as long as the set is used.
    Delimiters(const Unit* units, std::size_t count)
        : m_units(units)
        , m_count(count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            if (units[i] < asciiCount)
                m_ascii[units[i] >> 6] |= std::uint64_t{1} << (units[i] & 63);
            else
                m_onlyAscii = false;
        }
    }

    bool contains(Unit unit) const
    {
        if (unit < asciiCount)
            return (m_ascii[unit >> 6] >> (unit & 63) & 1) != 0;
        return !m_onlyAscii && containsRare(unit);
    }

    /// The first delimiter of a range, or its end.
    const Unit* find(const Unit* from, const Unit* end) const
    {
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
template <typename Unit, typename Set>
const Unit* takeToken(const Unit*& position, const Unit* end, const Set& delimiters)
{
    // One only, also of a run: each further one ends an empty token.
    const Unit* start = delimiters.contains(*position) ? position + 1 : position;
    position = delimiters.find(start, end);
    return start;
}

template <typename Unit>
const Unit* takeToken(const Unit*& position, const Unit* end, const Unit* delimiters,
                      std::size_t count)
{
    if (count == 1)
        return takeToken(position, end, Delimiter<Unit>(*delimiters));
    return takeToken(position, end, Delimiters<Unit>(delimiters, count));
}

} // namespace vlbase::basetypes
