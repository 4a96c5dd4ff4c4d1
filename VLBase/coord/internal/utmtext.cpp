#include "plaintexts.h"

#include <VLBase/coord/internal/degrees.h>
#include <VLBase/coord/internal/ellipsoidtable.h>
#include <VLBase/coord/internal/gridsquare.h>
#include <VLBase/coord/internal/utmseries.h>
#include <VLBase/coord/internal/utmzones.h>

#include <cmath>

namespace vlbase::coord {
namespace {

constexpr double southEnd = -80;
constexpr double northEnd = 84;

/// The rectangles of a zone and band: the band itself, and for "X" the line of 84 degrees, where
/// the exceptions of Svalbard end.
std::vector<GeoCell> cellsOf(int zone, char band)
{
    std::vector<GeoCell> cells;
    const double south = southernEdge(band).value_or(0);
    const double north = band == 'X' ? northEnd : south + 8;
    // What rounds to the equator from the south is written as band "N".
    const double lowest = band == 'N' ? -1e-5 : south;
    if (const auto span = zoneSpan(zone, south))
        cells.push_back({lowest, north, span->west, span->east});
    if (band == 'X') {
        const LongitudeSpan span = regularSpan(zone);
        cells.push_back({north, north, span.west, span.east});
    }
    return cells;
}

} // namespace

void writeUtm(GeoPoint position, TextBuffer& text)
{
    if (position.latitude < southEnd || position.latitude > northEnd) {
        text.put("#LATITUDE OUTSIDE UTM AREA");
        return;
    }
    const double longitude = normalizedLongitude(position.longitude);
    UtmZone zone = utmZoneOf(position.latitude, longitude);
    const GridPoint grid =
        UtmSeries::ofRow(wgs84Row)->forward({position.latitude, longitude}, zone.number);
    auto northing = static_cast<std::uint64_t>(
        std::llround(position.latitude < 0 ? grid.northing + southernNorthing : grid.northing));
    if (northing == static_cast<std::uint64_t>(southernNorthing)) {
        northing = 0;
        zone.band = 'N';
    }
    text.putDigits(static_cast<std::uint64_t>(zone.number), 2);
    text.put(zone.band);
    text.putDigits(static_cast<std::uint64_t>(std::llround(grid.easting)), 7);
    text.putDigits(northing, 7);
}

std::optional<GeoPoint> readUtm(const TextBuffer& text)
{
    PlainReader reader(text);
    const auto zone = reader.number(2);
    const char band = reader.character();
    const auto easting = reader.number(7);
    const auto northing = reader.number(7);
    if (!zone || !easting || !northing || !isLongitudeZone(static_cast<long>(*zone)) ||
        !southernEdge(band) || band == 'Y')
        return std::nullopt;

    const int number = static_cast<int>(*zone);
    const UtmSeries& series = *UtmSeries::ofRow(wgs84Row);
    const GridPoint grid = {static_cast<double>(*easting),
                            static_cast<double>(*northing) - (band < 'N' ? southernNorthing : 0)};
    const GridSquare square = {grid.easting - 0.5, grid.northing - 0.5, grid.easting + 0.5,
                               grid.northing + 0.5};
    const auto forward = [&](GeoPoint position) { return series.forward(position, number); };
    const auto accepts = [&](GeoPoint position) {
        if (!(std::abs(position.longitude) <= 180 && std::abs(position.latitude) <= 90))
            return false;
        TextBuffer again;
        writeUtm(position, again);
        return again == text;
    };
    return locate(forward, accepts, series.inverse(grid, number), square, grid,
                  cellsOf(number, band), 0.0005);
}

} // namespace vlbase::coord
