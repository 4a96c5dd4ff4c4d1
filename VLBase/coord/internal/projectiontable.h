#pragma once

#include <VLBase/coord/internal/transversemercator.h>

#include <optional>

namespace vlbase::coord {

/// A row of the projection table.
class Projection
{
public:
    /// \param centralMeridian radians; nothing when the caller chooses it
    Projection(const TransverseMercator& series, std::optional<double> centralMeridian);

    /// \param callersMeridian whole degrees
    GridPoint forward(GeoPoint degrees, long callersMeridian) const
    {
        return m_series.forward(degrees, meridian(callersMeridian));
    }
    std::optional<GeoPoint> inverse(GridPoint grid, long callersMeridian) const
    {
        return m_series.inverse(grid, meridian(callersMeridian));
    }

private:
    double meridian(long callersMeridian) const;

    TransverseMercator m_series;
    std::optional<double> m_centralMeridian;
};

constexpr unsigned firstRt90ZoneCode = 13;
constexpr unsigned lastInvertibleCode = 12;

/// The projection of a code; null for a code that is not 1 to 18.
const Projection* findProjection(unsigned code);

/// Whether the code is one of UTM's, on which MGRS references are made.
constexpr bool isUtmCode(unsigned code)
{
    return code == 3 || code == 4 || code == 10 || code == 11;
}

} // namespace vlbase::coord
