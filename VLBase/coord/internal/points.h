#pragma once

namespace vlbase::coord {

/// A position on some datum, in degrees.
struct GeoPoint
{
    double latitude = 0;
    double longitude = 0;
};

/// A position on some grid, in metres.
struct GridPoint
{
    double easting = 0;
    double northing = 0;
};

} // namespace vlbase::coord
