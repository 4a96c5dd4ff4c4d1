#pragma once

#include <QtGlobal>

#include <limits>

namespace vlbase {

/// What a step width of 0 is replaced by, in hertz.
constexpr double defaultSpacing = 10000.0;

/// How far `channel` lies above `origin`, as a signed 32-bit number.
inline double channelDistance(quint32 channel, quint32 origin)
{
    return static_cast<qint32>(channel - origin);
}

// The functions of <cmath> that round or compare are calls, each of which costs as much as all the
// rest of finding a channel. Hence the plain comparisons and conversions.

/// A number in the range of channels, signed or unsigned: the nearest that is, and 0 for NaN.
inline double withinChannels(double value)
{
    constexpr double lowest = std::numeric_limits<qint32>::min();
    constexpr double highest = std::numeric_limits<quint32>::max();
    if (value < lowest)
        return lowest;
    if (value > highest)
        return highest;
    return value == value ? value : 0.0;
}

/// The channel that a number lies in, cut towards 0. Negative ones wrap as the machine's arithmetic
/// does.
inline quint32 toChannel(double value)
{
    return static_cast<quint32>(static_cast<qint64>(withinChannels(value)));
}

/// The nearest channel, halves rounded up. Adding 0.5 first would round the number just below a
/// half up as well.
inline quint32 nearestChannel(double value)
{
    const double kept = withinChannels(value);
    const auto cut = static_cast<qint64>(kept);
    const qint64 below = static_cast<double>(cut) > kept ? cut - 1 : cut;
    return static_cast<quint32>(kept - static_cast<double>(below) >= 0.5 ? below + 1 : below);
}

/// Whether two closed intervals meet; the ends of each may come in either order, and an end that
/// is not a number meets nothing.
inline bool overlaps(double a, double b, double c, double d)
{
    const double low = a < b ? a : b;
    const double high = a < b ? b : a;
    const bool isOrdered = c <= d || d <= c; // false where one is not a number
    return isOrdered && low <= (c < d ? d : c) && (c < d ? c : d) <= high && a == a && b == b;
}

} // namespace vlbase
