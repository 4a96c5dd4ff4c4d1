#pragma once

#include <VLBase/coord/internal/points.h>

#include <optional>

namespace vlbase::coord {

/// The letters of MGRS, in the order of bands, columns and rows: no I, no O.
constexpr char gridLetters[] = "ABCDEFGHJKLMNPQRSTUVWXYZ";

/// Place of an upper-case letter in `gridLetters`; -1 for any other character.
int gridLetterIndex(char letter);

/// The UTM central meridian of a position, which lies within the whole-degree ranges.
long utmCentralMeridian(GeoPoint position);

/// The zone of a central meridian; 0 and 61 beside the date line.
constexpr long zoneOfMeridian(long centralMeridian)
{
    return (centralMeridian - 3) / 6 + 31;
}
constexpr long meridianOfZone(long zone)
{
    return zone * 6 - 183;
}

/// The band letter as grid references write it: "Y" from 80 to 88 degrees, "X" above.
char gridBand(double latitude);

/// The southern edge in degrees of a band "C" to "Y"; nothing for another letter.
std::optional<double> southernEdge(char band);

struct LongitudeSpan
{
    double west;
    double east;
};

/// The longitudes of a zone in the band that begins at `southernEdge`, by the rules of Norway
/// and Svalbard; nothing for a zone that the band does not have.
std::optional<LongitudeSpan> zoneSpan(long zone, double southernEdge);

/// The longitudes of a zone where there are no exceptions.
constexpr LongitudeSpan regularSpan(long zone)
{
    const auto west = static_cast<double>(zone * 6 - 186);
    return {west, west + 6};
}

} // namespace vlbase::coord
