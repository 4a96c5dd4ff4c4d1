#pragma once

#include <VLBase/coord/internal/points.h>

namespace vlbase::coord {

/// What UTM adds to the northings of the southern half.
constexpr double southernNorthing = 10000000;

/// Zone and band that UTM gives to a position.
struct UtmZone
{
    int number = 0;
    char band = 'Z';
};

/// The longitude brought to -180 to below 180 (for longitudes from -180 on).
double normalizedLongitude(double longitude);

/// \param longitude a normalized one
/// \return number 0 for what no zone number fits, such as NaN; band "Z" outside -80 to 84.
UtmZone utmZoneOf(double latitude, double longitude);

/// J. P. Snyder's series on the rows of the ellipsoid table (Map Projections: A Working Manual,
/// 1987, pages 61 to 64). Northings are negative south of the equator.
class UtmSeries
{
public:
    UtmSeries(double equatorialRadius, double eccentricitySquared);

    /// The series of a row of the ellipsoid table; null for a row that it does not have.
    static const UtmSeries* ofRow(int row);

    /// \param longitude a normalized one
    GridPoint forward(GeoPoint degrees, int zone) const;
    GeoPoint inverse(GridPoint grid, int zone) const;

private:
    double m_a;
    double m_e2;
    double m_secondE2;
    double m_arc[4];       // factors of the meridional arc, in metres
    double m_arcRadius;    // metres per radian of the rectifying latitude
    double m_footPoint[3]; // factors of the foot point's latitude
};

} // namespace vlbase::coord
