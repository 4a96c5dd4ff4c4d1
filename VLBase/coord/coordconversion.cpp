#include "coordconversion.h"

#include <VLBase/coord/internal/coordtext.h>
#include <VLBase/coord/internal/degrees.h>
#include <VLBase/coord/internal/ellipsoidtable.h>
#include <VLBase/coord/internal/formattable.h>
#include <VLBase/coord/internal/utmseries.h>
#include <VLBase/coord/internal/utmzones.h>

#include <algorithm>
#include <cmath>

using namespace vlbase::coord;

namespace {

CoordStatus statusOfRefusal(const TextBuffer& refusal)
{
    if (refusal.view() == QLatin1String(invalidLatitude))
        return CoordInvalidLatitude;
    if (refusal.view() == QLatin1String(invalidLongitude))
        return CoordInvalidLongitude;
    return CoordOutsideArea;
}

/// One or two digits and the letter of a band; number 0 for any other text.
UtmZone readZone(const QString& text)
{
    const qsizetype digits = text.size() - 1;
    if (digits < 1 || digits > 2)
        return {};
    UtmZone zone;
    for (qsizetype i = 0; i < digits; ++i) {
        if (text[i] < u'0' || text[i] > u'9')
            return {};
        zone.number = zone.number * 10 + text[i].unicode() - u'0';
    }
    zone.band = text.back().toUpper().toLatin1();
    // "Y" belongs to grid references only.
    if (!isLongitudeZone(zone.number) || !southernEdge(zone.band) || zone.band == 'Y')
        return {};
    return zone;
}

/// Whether a position belongs to a zone, give or take the metre that values beside a border may
/// have been rounded by.
bool isIn(const UtmZone& zone, GeoPoint position)
{
    constexpr double metre = 1e-5; // degrees
    if (!(std::abs(position.latitude) <= 90 && std::abs(position.longitude) <= 360))
        return false;
    // On the line of 84 degrees itself the zones are those without exceptions.
    constexpr double line = 84;
    const bool isOnLine = std::abs(position.latitude - line) <= metre;
    const double latitudes[] = {position.latitude - metre, position.latitude + metre,
                                isOnLine ? line : position.latitude};
    const double reach = metre / std::cos(position.latitude * radiansPerDegree);
    const double longitudes[] = {position.longitude - reach, position.longitude + reach};
    for (const double latitude : latitudes) {
        for (const double longitude : longitudes) {
            const UtmZone found = utmZoneOf(latitude, normalizedLongitude(longitude));
            if (found.number == zone.number && found.band == zone.band)
                return true;
        }
    }
    return false;
}

} // namespace

int CoordToString(double longitude, double latitude, TCoordFormat format, QString& text)
{
    if (!findFormat(format))
        return CoordUnknownFormat;
    TextBuffer plain;
    writePlain(format, {latitude, longitude}, plain);
    if (plain.isRefusal())
        return statusOfRefusal(plain);
    text = formatted(format, plain);
    return CoordOk;
}

int CoordToRT90String(double longitude, double latitude, QString& text)
{
    return CoordToString(longitude, latitude, CoordFormat::Rt90, text);
}

int CoordToSWEREF99String(double longitude, double latitude, QString& text)
{
    return CoordToString(longitude, latitude, CoordFormat::Sweref99, text);
}

int StringToCoord(const QString& text, TCoordFormat format, double& longitude, double& latitude)
{
    if (!findFormat(format))
        return CoordUnknownFormat;
    const auto position = readText(format, text);
    if (!position)
        return CoordMalformedText;
    longitude = position->longitude;
    latitude = position->latitude;
    return CoordOk;
}

int GEO_to_UTM(double longitude, double latitude, QString& zone, double& easting, double& northing)
{
    if (!(std::abs(latitude) <= 90))
        return CoordInvalidLatitude;
    if (!(std::abs(longitude) <= 180))
        return CoordInvalidLongitude;
    if (latitude < -80 || latitude > 84)
        return CoordOutsideArea;
    const double normalized = normalizedLongitude(longitude);
    const UtmZone found = utmZoneOf(latitude, normalized);
    const GridPoint grid =
        UtmSeries::ofRow(wgs84Row)->forward({latitude, normalized}, found.number);
    zone.resize(3);
    zone[0] = QChar(u'0' + found.number / 10);
    zone[1] = QChar(u'0' + found.number % 10);
    zone[2] = QLatin1Char(found.band);
    easting = grid.easting;
    northing = latitude < 0 ? grid.northing + southernNorthing : grid.northing;
    return CoordOk;
}

int UTM_to_GEO(const QString& zone, double easting, double northing, double& longitude,
               double& latitude)
{
    const UtmZone typed = readZone(zone);
    if (typed.number == 0)
        return CoordMalformedText;
    const double raw = typed.band < 'N' ? northing - southernNorthing : northing;
    const GeoPoint position = UtmSeries::ofRow(wgs84Row)->inverse({easting, raw}, typed.number);
    if (!isIn(typed, position))
        return CoordOutsideArea;
    longitude = std::clamp(position.longitude, -180.0, 180.0);
    latitude = position.latitude;
    return CoordOk;
}
