#include "recognizer.h"

#include "anglereader.h"
#include "gridreader.h"
#include "typedtext.h"

#include <VLBase/coord/coordconversion.h>

#include <QString>

namespace vlbase::tool::coord {
namespace {

// No position needs more, and a recognizer need not look at a novel.
constexpr std::size_t longestText = 200;

/// The library's own texts, plain ones among them.
std::optional<Reading> readStrictly(std::string_view text, CoordFormat format)
{
    double longitude = 0;
    double latitude = 0;
    const QString typed = QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
    if (StringToCoord(typed, format, longitude, latitude) != CoordOk)
        return std::nullopt;
    return Reading{Coord(longitude, latitude), format, nullptr};
}

std::optional<Reading> readFreeAngles(std::string_view text)
{
    const auto pair = readAngles(text);
    if (!pair)
        return std::nullopt;
    return Reading{pair->position, pair->format,
                   pair->isOrderGuessed
                       ? "read as latitude, longitude; write N or S and E or W to be sure"
                       : nullptr};
}

/// A plain text. Those of SWEREF 99 are those of "Geo long", and mean the same.
std::optional<Reading> readPlain(std::string_view text)
{
    if (auto decimal = readStrictly(text, CoordFormat::GeoDecimal)) {
        // As many digits, and nothing between them.
        if (readStrictly(text, CoordFormat::GeoLong))
            decimal->doubt = "read as decimal degrees; for minutes and seconds say --from long";
        return decimal;
    }
    for (const CoordFormat format :
         {CoordFormat::QthMaidenhead, CoordFormat::GeoShort, CoordFormat::Utm, CoordFormat::Rt90}) {
        if (auto reading = readStrictly(text, format))
            return reading;
    }
    return std::nullopt;
}

} // namespace

std::optional<Reading> Recognizer::read(std::string_view typed)
{
    if (typed.size() > longestText || !tidy(typed, m_text) || m_text.empty())
        return std::nullopt;
    return m_format ? readAs(*m_format) : readAny();
}

std::optional<Reading> Recognizer::readAs(CoordFormat format) const
{
    std::optional<Reading> reading;
    switch (format) {
    case CoordFormat::GeoDecimal:
    case CoordFormat::GeoLong:
    case CoordFormat::GeoShort:
    case CoordFormat::Sweref99:
        reading = readFreeAngles(m_text);
        break;
    case CoordFormat::Utm:
        reading = readUtm(m_text);
        break;
    case CoordFormat::Mgrs:
        reading = readMgrs(m_text);
        break;
    case CoordFormat::Rt90:
        reading = readRt90(m_text, true);
        break;
    case CoordFormat::QthMaidenhead:
        break;
    }
    if (!reading)
        reading = readStrictly(m_text, format);
    if (reading)
        reading->format = format;
    return reading;
}

std::optional<Reading> Recognizer::readAny() const
{
    // What one of these reads, none of the others does: degrees are below 181, metres above, and
    // the letters differ.
    if (auto reading = readFreeAngles(m_text))
        return reading;
    if (auto reading = readUtm(m_text))
        return reading;
    if (auto reading = readMgrs(m_text))
        return reading;
    if (auto reading = readRt90(m_text, false))
        return reading;
    return readPlain(m_text);
}

} // namespace vlbase::tool::coord
