#include "transversemercator.h"

#include <VLBase/coord/internal/degrees.h>

#include <cmath>

namespace vlbase::coord {
namespace {

// Each step of the foot point leaves about a hundredth of the error. Whatever is not there
// after this many never will be: NaN, or a northing whose last digit is coarser than the limit.
constexpr int maximalSteps = 32;
constexpr double footPointLimit = 0.001; // metres

// Every projected position carries these two; the signs differ.
constexpr GridPoint halfCentimetres = {-0.005, 0.005};

/// An angle, in radians, with what is asked of it at every step.
struct Angle
{
    double value;
    double sine = std::sin(value);
    double cosine = std::cos(value);

    /// Adds the little that steps add: by series to the last digit, and cheaper than anew.
    void add(double step)
    {
        constexpr double little = 0.01;
        if (!(std::abs(step) < little)) {
            *this = Angle{value + step};
            return;
        }
        const double step2 = step * step;
        const double stepSine = step * (1 - step2 / 6 * (1 - step2 / 20));
        const double lack = step2 / 2 * (1 - step2 / 12 * (1 - step2 / 30)); // of its cosine to 1
        const double before = sine;
        value += step;
        sine += cosine * stepSine - sine * lack;
        cosine -= before * stepSine + cosine * lack;
    }
};

} // namespace

TransverseMercator::TransverseMercator(double majorAxis, double minorAxis, double originLatitude,
                                       GridPoint falseOrigin)
    : m_a(majorAxis)
    , m_e2((majorAxis * majorAxis - minorAxis * minorAxis) / (majorAxis * majorAxis))
    , m_originLatitude(originLatitude)
    , m_falseOrigin(falseOrigin)
{
    const double n = (majorAxis - minorAxis) / (majorAxis + minorAxis);
    const double n2 = n * n;
    const double n3 = n2 * n;
    // The published terms are products such as sin(p - o) cos(p + o), which is half of
    // sin(2p) - sin(2o): so one sine and one cosine of the latitude serve all of them.
    m_arc[0] = minorAxis * (1 + n + 1.25 * n2 + 1.25 * n3);
    m_arc[1] = minorAxis * 3 * (n + n2 + 0.875 * n3) / 2;
    m_arc[2] = minorAxis * 1.875 * (n2 + n3) / 2;
    m_arc[3] = minorAxis * (35.0 / 24.0) * n3 / 2;
    m_origin[0] = std::sin(2 * originLatitude);
    m_origin[1] = std::sin(4 * originLatitude);
    m_origin[2] = std::sin(6 * originLatitude);
}

double TransverseMercator::meridionalArc(double latitude, double sine, double cosine) const
{
    const double sine2 = 2 * sine * cosine;
    const double cosine2 = (cosine - sine) * (cosine + sine);
    const double sine4 = 2 * sine2 * cosine2;
    const double sine6 = sine2 * (3 - 4 * sine2 * sine2);
    return m_arc[0] * (latitude - m_originLatitude) - m_arc[1] * (sine2 - m_origin[0]) +
           m_arc[2] * (sine4 - m_origin[1]) - m_arc[3] * (sine6 - m_origin[2]);
}

GridPoint TransverseMercator::forward(GeoPoint degrees, double centralMeridian) const
{
    const double latitude = degrees.latitude * radiansPerDegree;
    const double sine = std::sin(latitude);
    const double cosine = std::cos(latitude);
    const double t = sine / cosine;
    const double t2 = t * t;

    const double w = 1 - m_e2 * sine * sine;
    const double nu = m_a / std::sqrt(w);
    const double nuByRho = w / (1 - m_e2);
    const double eta2 = nuByRho - 1;

    const double x = cosine * (degrees.longitude * radiansPerDegree - centralMeridian);
    const double x2 = x * x;

    const double n4 = (5 - t2 + 9 * eta2) / 24;
    const double n6 = (61 - 58 * t2 + t2 * t2) / 720;
    const double e3 = (nuByRho - t2) / 6;
    const double e5 = (5 - 18 * t2 + t2 * t2 + 14 * eta2 - 58 * t2 * eta2) / 120;

    const double northing = meridionalArc(latitude, sine, cosine) + m_falseOrigin.northing +
                            nu * t * x2 * (0.5 + x2 * (n4 + x2 * n6));
    const double easting = m_falseOrigin.easting + nu * x * (1 + x2 * (e3 + x2 * e5));
    return {easting + halfCentimetres.easting, northing + halfCentimetres.northing};
}

std::optional<GeoPoint> TransverseMercator::inverse(GridPoint grid, double centralMeridian) const
{
    const double arc = grid.northing - m_falseOrigin.northing;
    Angle foot{arc / m_a + m_originLatitude};
    for (int step = 0;; ++step) {
        const double rest = arc - meridionalArc(foot.value, foot.sine, foot.cosine);
        if (std::abs(rest) < footPointLimit)
            break;
        if (step == maximalSteps)
            return std::nullopt;
        foot.add(rest / m_a);
    }

    const auto [latitudeOfFoot, sine, cosine] = foot;
    const double w = 1 - m_e2 * sine * sine;
    const double nu = m_a / std::sqrt(w);
    const double nuByRho = w / (1 - m_e2);
    const double eta2 = nuByRho - 1;
    const double t = sine / cosine;
    const double t2 = t * t;
    const double t4 = t2 * t2;

    const double d = (grid.easting - m_falseOrigin.easting) / nu;
    const double d2 = d * d;
    const double p4 = (5 + 3 * t2 + eta2 - 9 * t2 * eta2) / 24;
    const double p6 = (61 + 90 * t2 + 45 * t4) / 720;
    const double l3 = (nuByRho + 2 * t2) / 6;
    const double l5 = (5 + 28 * t2 + 24 * t4) / 120;
    const double l7 = (61 + 662 * t2 + 1320 * t4 + 720 * t4 * t2) / 5040;

    const double latitude = latitudeOfFoot - t * nuByRho * d2 * (0.5 - d2 * (p4 - d2 * p6));
    const double longitude = centralMeridian + d / cosine * (1 - d2 * (l3 - d2 * (l5 - d2 * l7)));
    return GeoPoint{latitude / radiansPerDegree, longitude / radiansPerDegree};
}

} // namespace vlbase::coord
