#pragma once

#include <VLBase/coord/coord.h>

#include <optional>
#include <string>
#include <string_view>

namespace vlbase::tool::coord {

/// A text that was understood.
struct Reading
{
    Coord position;
    CoordFormat format = CoordFormat::GeoDecimal;
    const char* doubt = nullptr; ///< what else the text could mean, and what to write instead
};

/// Understands texts of positions, formatted as the library writes them or as people do.
/// One object reads any number of texts, one after the other, and keeps its memory.
class Recognizer
{
public:
    /// \param format the only one to be read; nothing for any
    explicit Recognizer(std::optional<CoordFormat> format = std::nullopt)
        : m_format(format)
    {
    }

    /// \param typed UTF-8
    std::optional<Reading> read(std::string_view typed);

private:
    std::optional<Reading> readAs(CoordFormat format) const;
    std::optional<Reading> readAny() const;

    std::optional<CoordFormat> m_format;
    std::string m_text;
};

} // namespace vlbase::tool::coord
