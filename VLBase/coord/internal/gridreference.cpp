#include "gridreference.h"

#include <VLBase/coord/internal/degrees.h>
#include <VLBase/coord/internal/projectiontable.h>
#include <VLBase/coord/internal/utmzones.h>

#include <cstdlib>

namespace vlbase::coord {
namespace {

constexpr long long metresPerSquare = 100000;

/// Grid values in whole metres; a northing south of the equator counts from 10,000 km.
struct Metres
{
    long long easting;
    long long northing;
};

Metres wholeMetres(const GridPoint& grid)
{
    const double northing = grid.northing < 0 ? grid.northing + 10000000 : grid.northing;
    // Cut off toward zero, as references have always been made.
    // NOLINTNEXTLINE(bugprone-incorrect-roundings)
    return {static_cast<long long>(grid.easting + 0.5), static_cast<long long>(northing + 0.5)};
}

void setDigits(GridReference& reference, const Metres& metres)
{
    reference.easting = static_cast<int>(metres.easting % metresPerSquare);
    reference.northing = static_cast<int>(metres.northing % metresPerSquare);
}

GridAnswer nationalReference(GridReference reference, GeoPoint position)
{
    const bool british = reference.kind == GridKind::British;
    const GridAnswer outside = {british ? "#OUTSIDE BRITISH GRID AREA" : "#OUTSIDE IRISH GRID AREA",
                                {}};
    if (!isWholeLatitude(wholeDegrees(position.latitude)) ||
        !isWholeLongitude(wholeDegrees(position.longitude)))
        return outside;

    const Metres metres = wholeMetres(findProjection(reference.code)->forward(position, 0));
    const auto [easting, northing] = metres;
    const long long eastEnd = british ? 1000000 : 500000;
    const long long northEnd = british ? 1500000 : 500000;
    if (easting < 0 || northing < 0 || easting >= eastEnd || northing >= northEnd)
        return outside;

    if (british)
        reference.first = britishLetters[northing / 500000][easting / 500000];
    reference.second =
        nationalLetters[10 * (easting / metresPerSquare) + northing / metresPerSquare % 10];
    setDigits(reference, metres);
    return {nullptr, reference};
}

GridAnswer militaryReference(GridReference reference, GeoPoint position)
{
    if (!isWholeLongitude(wholeDegrees(position.longitude)))
        return {invalidLongitude, {}};
    const long meridian = utmCentralMeridian(position);
    const long zone = zoneOfMeridian(meridian);
    if (!isLongitudeZone(zone))
        return {invalidLongitude, {}};

    const Metres metres = wholeMetres(findProjection(reference.code)->forward(position, meridian));
    long long row = metres.northing / metresPerSquare % 20;
    if (zone % 2 == 0)
        row += 5;
    if (reference.alternative)
        row += 10;
    const long long set = (zone - 1) % 3;

    reference.zone = static_cast<int>(zone);
    reference.band = gridBand(position.latitude);
    reference.first = gridLetters[set * 8 + metres.easting / metresPerSquare - 1];
    reference.second = gridLetters[row % 20];
    setDigits(reference, metres);
    return {nullptr, reference};
}

} // namespace

std::optional<GridKind> gridKindOf(unsigned code)
{
    if (code == 1)
        return GridKind::British;
    if (code == 2)
        return GridKind::Irish;
    if (isUtmCode(code))
        return GridKind::Mgrs;
    return std::nullopt;
}

GridAnswer gridReferenceOf(GeoPoint position, int projection)
{
    if (!isWholeLatitude(wholeDegrees(position.latitude)))
        return {invalidLatitude, {}};
    if (!isWholeLongitude(wholeDegrees(position.longitude)))
        return {invalidLongitude, {}};
    GridReference reference;
    reference.code = codeOf(projection);
    const auto kind = gridKindOf(reference.code);
    if (!kind)
        return {"Invalid", {}};
    reference.kind = *kind;
    if (*kind != GridKind::Mgrs)
        return nationalReference(reference, nudged(position));
    if (position.latitude < -80 || position.latitude >= 84)
        return {"#LATITUDE OUTSIDE MGRS AREA", {}};
    reference.alternative = projection < 0;
    return militaryReference(reference, nudged(position));
}

void writeGridReference(const GridReference& reference, TextBuffer& text)
{
    if (reference.zone > 0) {
        text.putDigits(static_cast<unsigned>(reference.zone), reference.zone < 10 ? 1 : 2);
        text.put(reference.band);
    }
    if (reference.first)
        text.put(reference.first);
    text.put(reference.second);
    text.putDigits(static_cast<unsigned>(reference.easting), 5);
    text.putDigits(static_cast<unsigned>(reference.northing), 5);
}

} // namespace vlbase::coord
