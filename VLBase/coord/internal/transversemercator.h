#pragma once

#include <VLBase/coord/internal/points.h>

#include <optional>

namespace vlbase::coord {

/// The transverse Mercator projection as a series in the third flattening n, in the form that
/// the Ordnance Survey publishes ("A guide to coordinate systems in Great Britain", annex C).
///
/// One object stands for an ellipsoid, already multiplied by the central scale factor, and an
/// origin. It keeps what does not depend on the position.
class TransverseMercator
{
public:
    /// \param majorAxis,minorAxis metres
    /// \param originLatitude radians
    TransverseMercator(double majorAxis, double minorAxis, double originLatitude,
                       GridPoint falseOrigin);

    /// \param centralMeridian radians
    GridPoint forward(GeoPoint degrees, double centralMeridian) const;

    /// \return nothing when the latitude of the northing's foot point does not settle.
    std::optional<GeoPoint> inverse(GridPoint grid, double centralMeridian) const;

private:
    double meridionalArc(double latitude, double sine, double cosine) const;

    double m_a;
    double m_e2; // first eccentricity, squared
    double m_originLatitude;
    GridPoint m_falseOrigin;
    double m_arc[4];    // factors of the arc's terms, in metres
    double m_origin[3]; // sines of 2, 4 and 6 times the latitude of origin
};

} // namespace vlbase::coord
