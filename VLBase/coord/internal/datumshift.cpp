#include "datumshift.h"

#include <VLBase/coord/internal/datumtable.h>
#include <VLBase/coord/internal/degrees.h>

#include <cmath>

namespace vlbase::coord {
namespace {

// A few digits short of pi. Longitudes beyond 90 degrees have carried its error for long.
constexpr double halfTurn = 3.14159265358979;

struct Cartesian
{
    double x, y, z;
};

Cartesian toCartesian(GeoPoint degrees, double height, const Ellipsoid& ellipsoid)
{
    const double latitude = degrees.latitude * radiansPerDegree;
    const double longitude = degrees.longitude * radiansPerDegree;
    const double sine = std::sin(latitude);
    const double nu = ellipsoid.a / std::sqrt(1 - ellipsoid.e2 * sine * sine);
    const double radius = (nu + height) * std::cos(latitude);
    return {radius * std::cos(longitude), radius * std::sin(longitude),
            (nu * ellipsoid.oneMinusE2 + height) * sine};
}

Cartesian shifted(const Cartesian& p, const Shift& s)
{
    const double scale = 1 + s.scalePpm / 1000000;
    return {scale * (p.x - s.rz * p.y + s.ry * p.z) + s.dX,
            scale * (s.rz * p.x + p.y - s.rx * p.z) + s.dY,
            scale * (s.rx * p.y - s.ry * p.x + p.z) + s.dZ};
}

/// The arc tangent knows half of the circle; the other half follows from where the point came
/// from, which a shift of some hundred metres does not change.
double longitudeNear(double original, const Cartesian& p)
{
    double longitude = std::atan(p.y / p.x);
    if (std::abs(original) > 90)
        longitude = halfTurn - std::abs(longitude);
    if (original < 0 && longitude > 0)
        longitude = -longitude;
    return longitude;
}

/// B. R. Bowring's formula of 1976 without iteration: exact to nanometres near the ground.
double latitudeOf(const Cartesian& p, const Ellipsoid& ellipsoid)
{
    const double radius = std::sqrt(p.x * p.x + p.y * p.y);
    // Sine and cosine of the parametric latitude, straight from its tangent.
    const double opposite = p.z * ellipsoid.a;
    const double adjacent = radius * ellipsoid.b;
    const double hypotenuse = std::sqrt(opposite * opposite + adjacent * adjacent);
    const double sine = opposite / hypotenuse;
    const double cosine = adjacent / hypotenuse;
    return std::atan((p.z + ellipsoid.secondE2 * ellipsoid.b * sine * sine * sine) /
                     (radius - ellipsoid.e2 * ellipsoid.a * cosine * cosine * cosine));
}

GeoPoint shiftBetween(GeoPoint degrees, double height, const Ellipsoid& from, const Shift& shift,
                      const Ellipsoid& to)
{
    const Cartesian moved = shifted(toCartesian(degrees, height, from), shift);
    return {latitudeOf(moved, to) / radiansPerDegree,
            longitudeNear(degrees.longitude, moved) / radiansPerDegree};
}

} // namespace

GeoPoint shiftFromWgs84(GeoPoint degrees, const Datum& datum)
{
    return shiftBetween(degrees, 0, wgs84Source, datum.fromWgs84, datum.ellipsoid);
}

GeoPoint shiftToWgs84(GeoPoint degrees, const Datum& datum)
{
    return shiftBetween(degrees, datum.heightToWgs84, datum.ellipsoid, datum.toWgs84, wgs84Target);
}

} // namespace vlbase::coord
