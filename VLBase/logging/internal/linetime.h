#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vlbase::logging {

/// The date, time and zone fields of a line, made anew only when the second has changed. Never
/// allocates; small enough to be one per thread.
class LineTime
{
public:
    /// Makes the text of the present second.
    void update();

    /// "2024-05-17 11:42:07", a tab, "UTC: 7200000000.000000".
    std::string_view text() const { return {m_text, m_length}; }

private:
    std::int64_t m_second = -1;
    std::size_t m_length = 0;
    char m_text[80] = {};
};

} // namespace vlbase::logging
