#pragma once

namespace vlbase::coord {

/// A row of the ellipsoid table of `LLtoUTM` and `UTMtoLL`.
struct ReferenceEllipsoid
{
    int id;
    const char* name;
    double equatorialRadius; // metres
    double eccentricitySquared;
};

constexpr int wgs84Row = 23;

/// The ellipsoid of a row; null for a row that is not 1 to 23.
const ReferenceEllipsoid* findEllipsoid(int row);

} // namespace vlbase::coord
