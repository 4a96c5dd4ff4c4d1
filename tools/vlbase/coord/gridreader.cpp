#include "gridreader.h"

#include <VLBase/coord/coordconversion.h>
#include <VLBase/coord/merccoordtrans.h>
#include <VLBase/coord/utm.h>

#include <QString>

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace vlbase::tool::coord {
namespace {

constexpr int wgs84Row = 23;

QString toQString(std::string_view text)
{
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

/// Takes what is asked for from the front of a text.
class Front
{
public:
    explicit Front(std::string_view text)
        : m_rest(text)
    {
    }

    bool atEnd()
    {
        skipBlanks();
        return m_rest.empty();
    }

    std::optional<char> letter()
    {
        skipBlanks();
        if (m_rest.empty() || m_rest.front() < 'A' || m_rest.front() > 'Z')
            return std::nullopt;
        const char found = m_rest.front();
        m_rest.remove_prefix(1);
        return found;
    }

    std::optional<double> metres()
    {
        skipBlanks();
        if (m_rest.empty() || m_rest.front() < '0' || m_rest.front() > '9')
            return std::nullopt;
        double value = 0;
        const char* end = m_rest.data() + m_rest.size();
        const auto [rest, fault] =
            std::from_chars(m_rest.data(), end, value, std::chars_format::fixed);
        if (fault != std::errc())
            return std::nullopt;
        m_rest.remove_prefix(static_cast<std::size_t>(rest - m_rest.data()));
        return value;
    }

    std::string_view digits()
    {
        skipBlanks();
        const std::size_t count = std::min(m_rest.find_first_not_of("0123456789"), m_rest.size());
        const std::string_view found = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return found;
    }

private:
    void skipBlanks()
    {
        while (!m_rest.empty() && m_rest.front() == ' ')
            m_rest.remove_prefix(1);
    }

    std::string_view m_rest;
};

struct UtmText
{
    QString zone; // number and letter
    double easting = 0;
    double northing = 0;
};

std::optional<UtmText> splitUtm(std::string_view text)
{
    Front front(text);
    const std::string_view zone = front.digits();
    const auto letter = front.letter();
    const auto easting = front.metres();
    const auto northing = front.metres();
    if (zone.empty() || zone.size() > 2 || !letter || !easting || !northing || !front.atEnd())
        return std::nullopt;
    return UtmText{toQString(zone) + QLatin1Char(*letter), *easting, *northing};
}

std::optional<Coord> positionInBand(const UtmText& utm)
{
    double longitude = 0;
    double latitude = 0;
    if (UTM_to_GEO(utm.zone, utm.easting, utm.northing, longitude, latitude) != CoordOk)
        return std::nullopt;
    return Coord(longitude, latitude);
}

/// The position when the letter, N or S, means a hemisphere instead of a band.
std::optional<Coord> positionInHemisphere(const UtmText& utm)
{
    UtmText banded = utm;
    double latitude = 0;
    double longitude = 0;
    banded.zone.back() = utm.zone.back() == u'S' ? u'M' : u'N';
    UTMtoLL(wgs84Row, utm.northing, utm.easting, banded.zone, latitude, longitude);
    // The band that this latitude has; the conversion refuses another zone or hemisphere then.
    QString zone;
    double easting = 0;
    double northing = 0;
    if (GEO_to_UTM(longitude, latitude, zone, easting, northing) != CoordOk)
        return std::nullopt;
    banded.zone.back() = zone.back();
    if ((zone.back() < u'N') != (utm.zone.back() == u'S'))
        return std::nullopt;
    return positionInBand(banded);
}

} // namespace

std::optional<Reading> readUtm(std::string_view text)
{
    const auto utm = splitUtm(text);
    if (!utm)
        return std::nullopt;
    const bool mayBeHemisphere = utm->zone.back() == u'N' || utm->zone.back() == u'S';
    const auto inBand = positionInBand(*utm);
    const auto inHemisphere = mayBeHemisphere ? positionInHemisphere(*utm) : std::nullopt;
    if (inBand) {
        const bool isDoubtful = inHemisphere && *inHemisphere != *inBand;
        return Reading{*inBand, CoordFormat::Utm,
                       isDoubtful ? "S read as the band from 32 to 40 degrees north; for the "
                                    "southern hemisphere write the band's letter"
                                  : nullptr};
    }
    if (!inHemisphere)
        return std::nullopt;
    return Reading{*inHemisphere, CoordFormat::Utm,
                   utm->zone.back() == u'S' ? "S read as the southern hemisphere, not as a band"
                                            : "N read as the northern hemisphere, not as a band"};
}

std::optional<Reading> readMgrs(std::string_view text)
{
    constexpr int mgrsOnWgs84 = 4;
    double latitude = 0;
    double longitude = 0;
    if (!CMercCoordTrans().GR2LL(toQString(text), mgrsOnWgs84, latitude, longitude))
        return std::nullopt;
    const Coord position(longitude, latitude);
    if (!position.IsValid())
        return std::nullopt;
    return Reading{position, CoordFormat::Mgrs, nullptr};
}

std::optional<Reading> readRt90(std::string_view text, bool lettersMayLack)
{
    Front front(text);
    const auto x = front.letter();
    const auto northing = front.metres();
    const auto y = front.letter();
    const auto easting = front.metres();
    const bool hasLetters = x == 'X' && y == 'Y';
    const bool lacksLetters = !x && !y && lettersMayLack;
    if (!(hasLetters || lacksLetters) || !northing || !easting || !front.atEnd() ||
        !(*northing < 1e7) || !(*easting < 1e7))
        return std::nullopt;

    // Through the library's own text: it knows the area and the way back.
    const QString formatted = QString::asprintf("X%011.3f Y%011.3f", *northing, *easting);
    double longitude = 0;
    double latitude = 0;
    if (StringToCoord(formatted, CoordFormat::Rt90, longitude, latitude) != CoordOk)
        return std::nullopt;
    return Reading{Coord(longitude, latitude), CoordFormat::Rt90, nullptr};
}

} // namespace vlbase::tool::coord
