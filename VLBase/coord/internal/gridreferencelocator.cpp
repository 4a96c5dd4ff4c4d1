#include "gridreference.h"

#include <VLBase/coord/internal/degrees.h>
#include <VLBase/coord/internal/gridsquare.h>
#include <VLBase/coord/internal/projectiontable.h>
#include <VLBase/coord/internal/utmzones.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace vlbase::coord {
namespace {

constexpr double tolerance = 0.0005; // metres

/// The south-west corner of a 100 km square, in metres.
struct Corner
{
    int easting;
    int northing;
};

// Positions below are moved ones: what the grid sees.

bool namesSameSquare(const GridReference& made, const GridReference& asked)
{
    return made.zone == asked.zone && made.band == asked.band && made.first == asked.first &&
           made.second == asked.second && made.easting / asked.step == asked.easting / asked.step &&
           made.northing / asked.step == asked.northing / asked.step;
}

bool isReferenceOf(const GridReference& reference, GeoPoint moved)
{
    const int projection = static_cast<int>(reference.code);
    const GridAnswer answer =
        gridReferenceOf(unnudged(moved), reference.alternative ? -projection : projection);
    return !answer.refusal && namesSameSquare(answer.reference, reference);
}

/// Where the projection carries what lies in a square `size` metres wide. Rounding moves each
/// square half a metre to the south-west.
GridSquare squareAt(double easting, double northing, double size)
{
    return {easting - 0.5, northing - 0.5, easting + size - 0.5, northing + size - 0.5};
}

/// The starting point, tidied of the half centimetres that only the forward direction has.
std::optional<GeoPoint> roughPosition(const Projection& projection, GridPoint grid, long meridian)
{
    return projection.inverse({grid.easting + 0.005, grid.northing - 0.005}, meridian);
}

// --- National grids

std::optional<Corner> britishCorner(char letter)
{
    for (int north = 0; north < 3; ++north) {
        for (int east = 0; east < 2; ++east) {
            if (britishLetters[north][east] == letter)
                return Corner{east * 500000, north * 500000};
        }
    }
    return std::nullopt;
}

/// The 100 km square inside a 500 km square.
std::optional<Corner> nationalCorner(char letter)
{
    for (int east = 0; east < 5; ++east) {
        for (int north = 0; north < 5; ++north) {
            if (nationalLetters[10 * east + north] == letter)
                return Corner{east * 100000, north * 100000};
        }
    }
    return std::nullopt;
}

std::optional<GeoPoint> nationalPosition(const GridReference& reference)
{
    const auto outer =
        reference.kind == GridKind::British ? britishCorner(reference.first) : Corner{0, 0};
    const auto inner = nationalCorner(reference.second);
    if (!outer || !inner)
        return std::nullopt;

    const double easting = outer->easting + inner->easting + reference.easting;
    const double northing = outer->northing + inner->northing + reference.northing;
    GridSquare square = squareAt(easting, northing, 1);
    // The grid's own edges: truncation takes more than a metre to easting 0, and nothing negative
    // comes to northing 0.
    if (easting == 0)
        square.west = -1.5;
    if (northing == 0)
        square.south = 0;

    const Projection& projection = *findProjection(reference.code);
    const auto forward = [&](GeoPoint moved) { return projection.forward(moved, 0); };
    const auto accepts = [&](GeoPoint moved) { return isReferenceOf(reference, moved); };
    const auto start = roughPosition(projection, square.middle(), 0);
    if (!start)
        return std::nullopt;
    const std::array<GeoCell, 1> everywhere = {{{-90, 90, -180, 180}}};
    return locate(forward, accepts, *start, square, square.middle(), everywhere, tolerance);
}

// --- MGRS

/// The 100 km digit of the easting, 1 to 8, or nothing for a column of another zone.
std::optional<int> columnDigit(const GridReference& reference)
{
    const int digit = gridLetterIndex(reference.first) - (reference.zone - 1) % 3 * 8 + 1;
    if (digit < 1 || digit > 8)
        return std::nullopt;
    return digit;
}

/// The northing of the row's southern edge modulo 2,000 km.
std::optional<int> rowNorthing(const GridReference& reference)
{
    int row = gridLetterIndex(reference.second);
    if (row < 0 || row >= 20)
        return std::nullopt;
    if (reference.zone % 2 == 0)
        row += 15;
    if (reference.alternative)
        row += 10;
    return row % 20 * 100000;
}

/// The multiple of 2,000 km that brings a northing nearest to the middle of a band; a band is
/// less than 1,000 km high.
double northingInBand(double northing, double bandMiddle, const Projection& projection,
                      long meridian)
{
    const GridPoint middle =
        projection.forward({bandMiddle, static_cast<double>(meridian)}, meridian);
    return northing + std::round((middle.northing - northing) / 2000000) * 2000000;
}

std::optional<GeoPoint> militaryPosition(const GridReference& reference)
{
    const auto column = columnDigit(reference);
    const auto row = rowNorthing(reference);
    const auto south = southernEdge(reference.band);
    if (!column || !row || !south)
        return std::nullopt;
    const auto span = zoneSpan(reference.zone, *south);
    if (!span)
        return std::nullopt;

    const Projection& projection = *findProjection(reference.code);
    const GeoPoint southWest = nudged({-80, -180});
    const double north = reference.band == 'Y' ? nudged({84, 0}).latitude : *south + 8;
    const double middleLatitude = (*south + north) / 2;
    // The one of the zone as it is in this band, which the exceptions make other than usual.
    const long meridian = utmCentralMeridian({middleLatitude, (span->west + span->east) / 2});

    const double easting = *column * 100000.0 + reference.easting;
    const double northing = northingInBand(static_cast<double>(*row + reference.northing),
                                           middleLatitude, projection, meridian);
    const auto start = roughPosition(projection, {easting, northing}, meridian);
    if (!start)
        return std::nullopt;

    const GridSquare square = squareAt(easting, northing, reference.step);
    const auto forward = [&](GeoPoint moved) { return projection.forward(moved, meridian); };
    const auto accepts = [&](GeoPoint moved) { return isReferenceOf(reference, moved); };
    const auto acceptsOnGlobe = [&](GeoPoint moved) {
        return moved.longitude >= southWest.longitude && accepts(moved);
    };
    GeoCell cell = {std::max(*south, southWest.latitude), north,
                    std::max(span->west, southWest.longitude), span->east};
    const std::array<GeoCell, 1> onGlobe = {cell};
    auto found =
        locate(forward, acceptsOnGlobe, *start, square, {easting, northing}, onGlobe, tolerance);
    if (!found && reference.zone == 1) {
        // Longitudes that were given as slightly less than -180 have references too.
        cell.east = cell.west;
        cell.west = -180;
        const std::array<GeoCell, 1> beside = {cell};
        found = locate(forward, accepts, *start, square, {easting, northing}, beside, tolerance);
    }
    return found;
}

} // namespace

std::optional<GeoPoint> positionOf(const GridReference& reference)
{
    std::optional<GeoPoint> moved;
    if (reference.kind != GridKind::Mgrs) {
        moved = nationalPosition(reference);
    } else {
        moved = militaryPosition(reference);
        if (!moved && reference.band == 'X') {
            // From 80 degrees the grid writes "Y"; people write "X".
            GridReference northernmost = reference;
            northernmost.band = 'Y';
            moved = militaryPosition(northernmost);
        }
    }
    if (!moved)
        return std::nullopt;
    return unnudged(*moved);
}

} // namespace vlbase::coord
