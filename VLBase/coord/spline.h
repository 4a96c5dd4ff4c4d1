#pragma once

#include <VLBase/vlbase_export.h>

#include <vector>

/// \file
/// Interpolating cubic splines: tables of calibration, of antenna factors, of terrain.
///
/// A spline is kept as its knots, the values there, and the second derivatives there
/// ("curvatures"), from which each piece follows (C. de Boor, A Practical Guide to Splines, 2001,
/// chapter IV). `spline_cubic_set` makes the curvatures once, `spline_cubic_val` evaluates.
///
/// Any unit: a slope is in units of y by units of x. Nothing throws but what an allocation throws;
/// any thread may call both functions at any time.

/// What holds at one end of a spline.
struct SplineEnd
{
    enum Kind {
        Natural,   ///< the curvature is 0
        Slope,     ///< the first derivative is `value`
        Curvature, ///< the second derivative is `value`
        NotAKnot,  ///< the two pieces next to the end are one cubic
        Periodic   ///< value, slope and curvature go on at the other end; stands at both ends
    } kind = Natural;
    double value = 0.0; ///< of `Slope` and `Curvature`; not looked at for the others
};

/// What the spline functions return.
enum class SplineStatus : int {
    Ok,
    TooFewPoints,  ///< less than two
    SizesDiffer,   ///< the vectors are not of one length
    NotIncreasing, ///< a knot is not greater than the one before it
    NotFinite,     ///< a number that goes in, or one that would come out, is infinite or NaN
    EndsDiffer,    ///< `Periodic` at one end only, or with a last value that is not the first
    Outside        ///< the place lies outside the knots and extrapolation was refused
};

/// What a spline is at one place.
struct SplinePoint
{
    double value;
    double slope;     ///< first derivative
    double curvature; ///< second derivative
};

/// Lays a cubic spline through the points.
///
/// Two points suffice. `NotAKnot` needs four to mean what it says: with three and at both ends it
/// gives the parabola through them, with two the end has the slope of the line through them.
/// \param x knots, strictly increasing
/// \param y values at the knots
/// \param curvatures second derivatives at the knots, as many as there are; may be one of the
///     other vectors. Untouched unless the answer is `Ok`.
VLBASE_EXPORT SplineStatus spline_cubic_set(const std::vector<double>& x,
                                            const std::vector<double>& y, SplineEnd begin,
                                            SplineEnd end, std::vector<double>& curvatures);

/// Evaluates a spline that `spline_cubic_set` accepted; that the knots increase is not tested
/// again.
///
/// The values at the knots come back to the last digit. Evenly spaced knots cost no search.
/// \param curvatures as `spline_cubic_set` made them for `x` and `y`
/// \param point untouched unless the answer is `Ok`
/// \param extrapolate whether the end pieces, those of a periodic spline as well, go on outside the
///     knots; otherwise a place out there is answered by `Outside`
VLBASE_EXPORT SplineStatus spline_cubic_val(const std::vector<double>& x,
                                            const std::vector<double>& y,
                                            const std::vector<double>& curvatures, double at,
                                            SplinePoint& point, bool extrapolate = true);
