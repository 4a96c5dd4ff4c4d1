#pragma once

#include <QtGlobal>

#include <cmath>

/// Whether a value lies within a tolerance of another; tells it when not.
inline bool isNear(double value, double expected, double tolerance)
{
    if (std::abs(value - expected) <= tolerance)
        return true;
    qWarning("%.10f is not within %g of %.10f", value, tolerance, expected);
    return false;
}

/// Metres between two positions that are near each other, also across the date line.
inline double metresApart(double latitude, double longitude, double otherLatitude,
                          double otherLongitude)
{
    const double north = (latitude - otherLatitude) * 111700;
    const double east = std::remainder(longitude - otherLongitude, 360) * 111400 *
                        std::cos(latitude * 3.141592653589793 / 180);
    return std::hypot(north, east);
}
