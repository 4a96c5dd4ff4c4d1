#pragma once

#include <VLBase/coord/internal/points.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace vlbase::coord {

/// A square of a grid: metres, its edges belong to it.
struct GridSquare
{
    double west, south, east, north;

    GridPoint middle() const { return {(west + east) / 2, (south + north) / 2}; }
};

/// A rectangle of positions, its edges belong to it.
struct GeoCell
{
    double south, north, west, east;
};

/// The polygon cut to what lies in the cell. Each corner that is new lies exactly on its edge.
std::vector<GeoPoint> clipped(std::vector<GeoPoint> polygon, const GeoCell& cell);

/// A point inside a convex polygon that has at least one corner.
GeoPoint insideOf(const std::vector<GeoPoint>& polygon);

/// The position that `forward` carries to `target`, by Newton's method with the slopes at the
/// start, which are as good as constant over the metres that a series can be wrong.
/// \param forward from GeoPoint to GridPoint
/// \param tolerance metres
/// \return nothing when the steps do not settle.
template <class Forward>
std::optional<GeoPoint> solve(const Forward& forward, GeoPoint start, GridPoint target,
                              double tolerance)
{
    constexpr double probe = 1e-6; // degrees; about 0.1 m
    constexpr int maximalSteps = 12;

    GeoPoint position = start;
    GridPoint reached = forward(position);
    std::array<double, 4> slope = {}; // easting and northing by latitude, then by longitude
    for (int step = 0;; ++step) {
        const double east = target.easting - reached.easting;
        const double north = target.northing - reached.northing;
        if (std::abs(east) <= tolerance && std::abs(north) <= tolerance)
            return position;
        if (step == maximalSteps)
            return std::nullopt;
        if (step == 0) {
            const GridPoint up = forward({position.latitude + probe, position.longitude});
            const GridPoint right = forward({position.latitude, position.longitude + probe});
            slope = {(up.easting - reached.easting) / probe,
                     (up.northing - reached.northing) / probe,
                     (right.easting - reached.easting) / probe,
                     (right.northing - reached.northing) / probe};
        }
        const double determinant = slope[0] * slope[3] - slope[1] * slope[2];
        position.latitude += (east * slope[3] - north * slope[2]) / determinant;
        position.longitude += (north * slope[0] - east * slope[1]) / determinant;
        reached = forward(position);
    }
}

/// The square as a polygon of positions; nothing when a corner cannot be found.
template <class Forward>
std::optional<std::vector<GeoPoint>> outline(const Forward& forward, GeoPoint start,
                                             const GridSquare& square)
{
    // As near as doubles come: the last digit of a northing is 2e-9, and forward rounds a few
    // times.
    constexpr double tolerance = 2e-8;

    const GridPoint corners[] = {{square.west, square.south},
                                 {square.east, square.south},
                                 {square.east, square.north},
                                 {square.west, square.north}};
    std::vector<GeoPoint> polygon;
    for (const GridPoint& corner : corners) {
        const auto position = solve(forward, start, corner, tolerance);
        if (!position)
            return std::nullopt;
        polygon.push_back(*position);
    }
    return polygon;
}

/// A position for a square of the grid: where `wanted` lies, when `accepts` agrees to that,
/// otherwise a point that the square has in common with one of the cells, tried in order.
/// \param tolerance metres by which the position may miss `wanted`
template <class Forward, class Accepts, class Cells>
std::optional<GeoPoint> locate(const Forward& forward, const Accepts& accepts, GeoPoint start,
                               const GridSquare& square, GridPoint wanted, const Cells& cells,
                               double tolerance)
{
    const auto position = solve(forward, start, wanted, tolerance);
    if (!position)
        return std::nullopt;
    if (accepts(*position))
        return position;

    const auto polygon = outline(forward, *position, square);
    if (!polygon)
        return std::nullopt;
    for (const GeoCell& cell : cells) {
        const std::vector<GeoPoint> common = clipped(*polygon, cell);
        if (common.empty())
            continue;
        const GeoPoint inside = insideOf(common);
        if (accepts(inside))
            return inside;
    }
    return std::nullopt;
}

} // namespace vlbase::coord
