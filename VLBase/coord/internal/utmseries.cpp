#include "utmseries.h"

#include <VLBase/coord/internal/ellipsoidtable.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace vlbase::coord {
namespace {

constexpr double centralScale = 0.9996;
constexpr double falseEasting = 500000;

// Shorter than pi/180, and its inverse.
constexpr double shortRadiansPerDegree = 0.017453292500000002;
constexpr double shortDegreesPerRadian = 57.29577957855229;

int zoneNumber(double longitude)
{
    const double sixths = (longitude + 180) / 6;
    return std::abs(sixths) < 1000 ? static_cast<int>(sixths) + 1 : 0;
}

char bandOf(double latitude)
{
    if (latitude >= 72 && latitude <= 84)
        return 'X';
    if (!(latitude >= -80 && latitude < 72))
        return 'Z';
    // A division by 8 is exact, so a latitude just below a border stays below it; but for the
    // smallest ones below the equator, which it would take to zero.
    const int eighth = static_cast<int>(std::floor(latitude / 8));
    return "CDEFGHJKLMNPQRSTUVW"[(latitude < 0 ? std::min(eighth, -1) : eighth) + 10];
}

std::vector<UtmSeries> makeSeries()
{
    std::vector<UtmSeries> made;
    for (int row = 1; const ReferenceEllipsoid* ellipsoid = findEllipsoid(row); ++row)
        made.emplace_back(ellipsoid->equatorialRadius, ellipsoid->eccentricitySquared);
    return made;
}

} // namespace

double normalizedLongitude(double longitude)
{
    return (longitude + 180) - std::trunc((longitude + 180) / 360) * 360 - 180;
}

UtmZone utmZoneOf(double latitude, double longitude)
{
    int number = zoneNumber(longitude);
    if (latitude >= 56 && latitude < 64 && longitude >= 3 && longitude < 12)
        number = 32;
    if (latitude >= 72 && latitude < 84 && longitude >= 0 && longitude < 42) {
        if (longitude < 9)
            number = 31;
        else if (longitude < 21)
            number = 33;
        else
            number = longitude < 33 ? 35 : 37;
    }
    return {number, bandOf(latitude)};
}

UtmSeries::UtmSeries(double equatorialRadius, double eccentricitySquared)
    : m_a(equatorialRadius)
    , m_e2(eccentricitySquared)
    , m_secondE2(eccentricitySquared / (1 - eccentricitySquared))
{
    const double e4 = m_e2 * m_e2;
    const double e6 = e4 * m_e2;
    m_arcRadius = m_a * (1 - m_e2 / 4 - 3 * e4 / 64 - 5 * e6 / 256);
    m_arc[0] = m_arcRadius;
    m_arc[1] = m_a * (3 * m_e2 / 8 + 3 * e4 / 32 + 45 * e6 / 1024);
    m_arc[2] = m_a * (15 * e4 / 256 + 45 * e6 / 1024);
    m_arc[3] = m_a * (35 * e6 / 3072);

    const double root = std::sqrt(1 - m_e2);
    const double e1 = (1 - root) / (1 + root);
    const double e1Squared = e1 * e1;
    m_footPoint[0] = 3 * e1 / 2 - 27 * e1Squared * e1 / 32;
    m_footPoint[1] = 21 * e1Squared / 16 - 55 * e1Squared * e1Squared / 32;
    m_footPoint[2] = 151 * e1Squared * e1 / 96;
}

const UtmSeries* UtmSeries::ofRow(int row)
{
    static const std::vector<UtmSeries> series = makeSeries();
    if (!findEllipsoid(row))
        return nullptr;
    return &series[static_cast<std::size_t>(row - 1)];
}

GridPoint UtmSeries::forward(GeoPoint degrees, int zone) const
{
    const double latitude = degrees.latitude * shortRadiansPerDegree;
    const double meridian = zone * 6 - 183;
    const double sine = std::sin(latitude);
    const double cosine = std::cos(latitude);
    const double tangent = sine / cosine;

    // Sines of the multiples from those of the latitude itself.
    const double sine2 = 2 * sine * cosine;
    const double cosine2 = (cosine - sine) * (cosine + sine);
    const double sine4 = 2 * sine2 * cosine2;
    const double sine6 = sine2 * (3 - 4 * sine2 * sine2);
    const double arc = m_arc[0] * latitude - m_arc[1] * sine2 + m_arc[2] * sine4 - m_arc[3] * sine6;

    const double radius = m_a / std::sqrt(1 - m_e2 * sine * sine);
    const double t = tangent * tangent;
    const double c = m_secondE2 * cosine * cosine;
    const double a = cosine * (degrees.longitude - meridian) * shortRadiansPerDegree;
    const double a2 = a * a;

    const double e3 = (1 - t + c) / 6;
    const double e5 = (5 - 18 * t + t * t + 72 * c - 58 * m_secondE2) / 120;
    const double n4 = (5 - t + 9 * c + 4 * c * c) / 24;
    const double n6 = (61 - 58 * t + t * t + 600 * c - 330 * m_secondE2) / 720;

    const double east = radius * a * (1 + a2 * (e3 + a2 * e5));
    const double north = arc + radius * tangent * a2 * (0.5 + a2 * (n4 + a2 * n6));
    return {centralScale * east + falseEasting, centralScale * north};
}

GeoPoint UtmSeries::inverse(GridPoint grid, int zone) const
{
    const double meridian = zone * 6 - 183;
    const double mu = grid.northing / centralScale / m_arcRadius;
    const double muSine = std::sin(mu);
    const double muCosine = std::cos(mu);
    const double muSine2 = 2 * muSine * muCosine;
    const double muCosine2 = (muCosine - muSine) * (muCosine + muSine);
    const double foot = mu + m_footPoint[0] * muSine2 + m_footPoint[1] * 2 * muSine2 * muCosine2 +
                        m_footPoint[2] * muSine2 * (3 - 4 * muSine2 * muSine2);

    const double sine = std::sin(foot);
    const double cosine = std::cos(foot);
    const double tangent = sine / cosine;
    const double w = 1 - m_e2 * sine * sine;
    const double radius = m_a / std::sqrt(w); // across the meridian
    const double t = tangent * tangent;
    const double c = m_secondE2 * cosine * cosine;
    const double radiusRatio = w / (1 - m_e2); // to the one along the meridian
    const double d = (grid.easting - falseEasting) / (radius * centralScale);
    const double d2 = d * d;

    const double p4 = (5 + 3 * t + 10 * c - 4 * c * c - 9 * m_secondE2) / 24;
    const double p6 = (61 + 90 * t + 298 * c + 45 * t * t - 252 * m_secondE2 - 3 * c * c) / 720;
    const double l3 = (1 + 2 * t + c) / 6;
    const double l5 = (5 - 2 * c + 28 * t - 3 * c * c + 8 * m_secondE2 + 24 * t * t) / 120;

    const double latitude = foot - tangent * radiusRatio * d2 * (0.5 - d2 * (p4 - d2 * p6));
    const double longitude = d * (1 - d2 * (l3 - d2 * l5)) / cosine;
    return {latitude * shortDegreesPerRadian, meridian + longitude * shortDegreesPerRadian};
}

} // namespace vlbase::coord
