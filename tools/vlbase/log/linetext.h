#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vlbase::tool::log {

/// Which characters a clean text must not have besides the control characters.
enum class Cleaning {
    ForFile,     ///< one line, valid UTF-8; a tab is a separator and stays
    ForTerminal, ///< also nothing that turns the direction of writing or breaks the line
};

/// Appends `text` with everything invisible made visible, so that one line of the log stays one
/// line and no terminal obeys it: control characters become their pictures (U+2400 to U+2421),
/// those of the range U+0080 to U+009F and what is no UTF-8 become U+FFFD.
void appendClean(std::string_view text, Cleaning cleaning, std::string& out);

/// Whether `appendClean` for a file would leave every byte as it is: ASCII, printable, tabs.
bool isPlain(std::string_view text);

/// The longest beginning of `text` that has at most `bytes` bytes and does not end inside a
/// character.
std::string_view cutToWholeCharacters(std::string_view text, std::size_t bytes);

} // namespace vlbase::tool::log
