#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vlbase::logreading {

/// Finds a text in bytes, with or without regard to the case of the letters A to Z.
class TextFinder
{
public:
    /// \a text of any bytes; an empty one is found everywhere.
    explicit TextFinder(std::string_view text, bool ignoreCase);

    static constexpr std::size_t npos = std::string_view::npos;

    /// The first place at or behind \a from where the text begins; `npos` when there is none.
    std::size_t find(std::string_view in, std::size_t from = 0) const;
    bool isIn(std::string_view in) const { return find(in) != npos; }

private:
    bool isAt(const char* place) const;

    std::string m_text; // lower case where case is ignored
    std::string m_mask; // the bit that tells cases apart, for letters of which it is ignored
};

} // namespace vlbase::logreading
