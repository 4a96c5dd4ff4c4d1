#pragma once

namespace vlbase::coord {

/// An ellipsoid of revolution with the constants that a datum shift needs.
struct Ellipsoid
{
    double a;          // semi-major axis, metres
    double b;          // semi-minor axis, metres
    double e2;         // (a^2 - b^2) / a^2
    double oneMinusE2; // 1 - e2
    double secondE2;   // (a^2 - b^2) / b^2
};

/// A seven-parameter transformation of Earth-centred coordinates.
struct Shift
{
    double dX, dY, dZ; // metres
    double rx, ry, rz; // radians
    double scalePpm;
};

struct Datum
{
    int code;
    Ellipsoid ellipsoid;
    Shift fromWgs84;
    Shift toWgs84;
    double heightToWgs84; // metres above the local ellipsoid that `toWgs84` assumes
};

/// The datum of a code; null for a code without one.
const Datum* findDatum(unsigned code);

/// WGS 84 as the source of a shift and as its target.
extern const Ellipsoid wgs84Source;
extern const Ellipsoid wgs84Target;

} // namespace vlbase::coord
