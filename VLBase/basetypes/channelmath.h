#pragma once

#include <QtGlobal>

#include <cmath>
#include <limits>

namespace vlbase {

/// What a step width of 0 is replaced by, in hertz.
constexpr double defaultSpacing = 10000.0;

/// How far `channel` lies above `origin`, as a signed 32-bit number.
inline double channelDistance(quint32 channel, quint32 origin)
{
    return static_cast<qint32>(channel - origin);
}

/// A whole number as a 32-bit channel. Negative ones wrap as the machine's arithmetic does; what
/// fits neither a signed nor an unsigned number becomes the nearest that does, NaN becomes 0.
inline quint32 toChannel(double whole)
{
    if (std::isnan(whole))
        return 0;
    constexpr double lowest = std::numeric_limits<qint32>::min();
    constexpr double highest = std::numeric_limits<quint32>::max();
    const double clamped = whole < lowest ? lowest : whole > highest ? highest : whole;
    return static_cast<quint32>(static_cast<qint64>(clamped));
}

/// The nearest integer, halves rounded up. Adding 0.5 first would round the number just below a
/// half up as well.
inline double roundHalfUp(double value)
{
    const double below = std::floor(value);
    return value - below >= 0.5 ? below + 1.0 : below;
}

/// Whether two closed intervals meet; the ends of each may come in either order, and an end that
/// is not a number meets nothing.
inline bool overlaps(double a, double b, double c, double d)
{
    if (std::isnan(a) || std::isnan(b) || std::isnan(c) || std::isnan(d))
        return false;
    return std::fmin(a, b) <= std::fmax(c, d) && std::fmin(c, d) <= std::fmax(a, b);
}

} // namespace vlbase
