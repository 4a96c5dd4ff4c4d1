#pragma once

#include <cmath>
#include <limits>

namespace vlbase::coord {

/// The last digits differ from pi/180. Grid values made elsewhere depend on this one.
constexpr double radiansPerDegree = 0.017453292519943278;

/// Degrees truncated toward zero. NaN and what no range of degrees can contain become the
/// smallest number, which every range test refuses.
inline long wholeDegrees(double degrees)
{
    if (!(std::abs(degrees) < 1000))
        return std::numeric_limits<long>::min();
    return static_cast<long>(degrees);
}

constexpr bool isWholeLatitude(long degrees)
{
    return -90 <= degrees && degrees <= 90;
}
constexpr bool isWholeLongitude(long degrees)
{
    return -180 <= degrees && degrees <= 180;
}
constexpr bool isLongitudeZone(long zone)
{
    return 1 <= zone && zone <= 60;
}

/// What a grid reference or a text is instead when the position is none.
inline constexpr char invalidLatitude[] = "#INVALID LATITUDE";
inline constexpr char invalidLongitude[] = "#INVALID LONGITUDE";

/// The magnitude of a code, defined for the smallest integer too.
constexpr unsigned codeOf(int signedCode)
{
    const auto bits = static_cast<unsigned>(signedCode);
    return signedCode < 0 ? 0U - bits : bits;
}

} // namespace vlbase::coord
