#include "utm.h"

#include <VLBase/coord/internal/textbuffer.h>
#include <VLBase/coord/internal/utmseries.h>

#include <cstdlib>

using namespace vlbase::coord;

namespace {

/// The number as printf writes it, and the band; into the room that the text has.
void writeZone(const UtmZone& zone, QString& text)
{
    TextBuffer buffer;
    const auto magnitude = static_cast<unsigned>(std::abs(zone.number));
    if (zone.number < 0)
        buffer.put('-');
    buffer.putDigits(magnitude, magnitude < 10 ? 1 : magnitude < 100 ? 2 : 3);
    buffer.put(zone.band);

    text.resize(static_cast<qsizetype>(buffer.size()));
    QChar* characters = text.data();
    for (std::size_t i = 0; i < buffer.size(); ++i)
        characters[i] = QLatin1Char(buffer[i]);
}

struct TypedZone
{
    int number = 0;
    bool isSouthern = false;
};

TypedZone readZone(const QString& text)
{
    constexpr int limit = 100000; // far beyond any zone, far below an overflow

    TypedZone zone;
    const QChar* character = text.begin();
    while (character != text.end() && character->isSpace())
        ++character;
    for (; character != text.end() && *character >= u'0' && *character <= u'9'; ++character) {
        if (zone.number < limit)
            zone.number = zone.number * 10 + character->unicode() - u'0';
    }
    zone.isSouthern = character != text.end() && *character >= u'A' && *character < u'N';
    return zone;
}

} // namespace

void LLtoUTM(int ellipsoid, double latitude, double longitude, double& northing, double& easting,
             QString& zone)
{
    const UtmSeries* series = UtmSeries::ofRow(ellipsoid);
    if (!series)
        return;
    const double normalized = normalizedLongitude(longitude);
    const UtmZone found = utmZoneOf(latitude, normalized);
    const GridPoint grid = series->forward({latitude, normalized}, found.number);
    northing = latitude < 0 ? grid.northing + southernNorthing : grid.northing;
    easting = grid.easting;
    writeZone(found, zone);
}

void UTMtoLL(int ellipsoid, double northing, double easting, QString zone, double& latitude,
             double& longitude)
{
    const UtmSeries* series = UtmSeries::ofRow(ellipsoid);
    if (!series)
        return;
    const TypedZone typed = readZone(zone);
    const double raw = typed.isSouthern ? northing - southernNorthing : northing;
    const GeoPoint position = series->inverse({easting, raw}, typed.number);
    latitude = position.latitude;
    longitude = position.longitude;
}
