#pragma once

#include <VLBase/vlbase_export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace vlbase::logging {

/// Which characters a clean text must not have besides the control characters.
enum class Cleaning {
    ForFile,     ///< one line, valid UTF-8; a tab is a separator and stays
    ForTerminal, ///< also nothing that turns the direction of writing or breaks the line
};

/// Appends \a text, of any bytes, with everything invisible made visible, so that one line of the
/// log stays one line and no terminal obeys it: control characters become their pictures (U+2400 to
/// U+2421), those of the range U+0080 to U+009F and what is no UTF-8 become U+FFFD.
VLBASE_EXPORT void appendClean(std::string_view text, Cleaning cleaning, std::string& out);

/// Whether `appendClean` for a file would leave every byte as it is: ASCII, printable, tabs.
VLBASE_EXPORT bool isPlain(std::string_view text);

/// The longest beginning of \a text that has at most \a bytes bytes and does not end inside a
/// character.
VLBASE_EXPORT std::string_view cutToWholeCharacters(std::string_view text, std::size_t bytes);

} // namespace vlbase::logging
