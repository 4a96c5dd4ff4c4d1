#include "plaintexts.h"

#include <VLBase/coord/internal/datumshift.h>
#include <VLBase/coord/internal/datumtable.h>
#include <VLBase/coord/internal/gridsquare.h>
#include <VLBase/coord/internal/projectiontable.h>

#include <array>
#include <cmath>

namespace vlbase::coord {
namespace {

constexpr unsigned rt90Datum = 5;
constexpr unsigned rt90Projection = 5;

/// The area that the grid is meant for, with some sea around it.
constexpr GeoCell area = {54, 70, 10, 25};

bool isInArea(GeoPoint position)
{
    return position.latitude >= area.south && position.latitude <= area.north &&
           position.longitude >= area.west && position.longitude <= area.east;
}

GridPoint project(GeoPoint position)
{
    return findProjection(rt90Projection)
        ->forward(shiftFromWgs84(position, *findDatum(rt90Datum)), 0);
}

std::uint64_t millimetres(double metres)
{
    return static_cast<std::uint64_t>(std::llround(metres * 1000));
}

} // namespace

void writeRt90(GeoPoint position, TextBuffer& text)
{
    if (!isInArea(position)) {
        text.put("#OUTSIDE RT90 AREA");
        return;
    }
    const GridPoint grid = project(position);
    text.put('X');
    text.putDigits(millimetres(grid.northing), 10);
    text.put('Y');
    text.putDigits(millimetres(grid.easting), 10);
}

std::optional<GeoPoint> readRt90(const TextBuffer& text)
{
    PlainReader reader(text);
    const char x = reader.character();
    const auto northing = reader.number(10);
    const char y = reader.character();
    const auto easting = reader.number(10);
    if (x != 'X' || y != 'Y' || !northing || !easting)
        return std::nullopt;

    const GridPoint grid = {static_cast<double>(*easting) / 1000,
                            static_cast<double>(*northing) / 1000};
    const auto local = findProjection(rt90Projection)->inverse(grid, 0);
    if (!local)
        return std::nullopt;
    // The published way back ends centimetres beside, so the way there is followed backward.
    const GeoPoint start = shiftToWgs84(*local, *findDatum(rt90Datum));
    const GridSquare square = {grid.easting - 0.0005, grid.northing - 0.0005, grid.easting + 0.0005,
                               grid.northing + 0.0005};
    const auto accepts = [&](GeoPoint position) {
        TextBuffer again;
        writeRt90(position, again);
        return again == text;
    };
    const std::array<GeoCell, 1> cells = {area};
    return locate(project, accepts, start, square, grid, cells, 1e-6);
}

} // namespace vlbase::coord
