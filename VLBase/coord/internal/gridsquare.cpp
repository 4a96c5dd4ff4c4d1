#include "gridsquare.h"

#include <utility>

namespace vlbase::coord {
namespace {

/// Sutherland and Hodgman's step: what lies on one side of a line of equal latitude or longitude.
/// \param side 1 to keep what lies above the edge, -1 below
std::vector<GeoPoint> cut(const std::vector<GeoPoint>& polygon, double GeoPoint::*axis, double edge,
                          double side)
{
    double GeoPoint::*other =
        axis == &GeoPoint::latitude ? &GeoPoint::longitude : &GeoPoint::latitude;
    std::vector<GeoPoint> kept;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const GeoPoint& from = polygon[i];
        const GeoPoint& to = polygon[(i + 1) % polygon.size()];
        const double before = (from.*axis - edge) * side;
        const double after = (to.*axis - edge) * side;
        if (before >= 0)
            kept.push_back(from);
        if ((before < 0 && after > 0) || (before > 0 && after < 0)) {
            GeoPoint crossing;
            crossing.*axis = edge;
            crossing.*other = from.*other + (to.*other - from.*other) * before / (before - after);
            kept.push_back(crossing);
        }
    }
    return kept;
}

} // namespace

std::vector<GeoPoint> clipped(std::vector<GeoPoint> polygon, const GeoCell& cell)
{
    polygon = cut(polygon, &GeoPoint::latitude, cell.south, 1);
    polygon = cut(polygon, &GeoPoint::latitude, cell.north, -1);
    polygon = cut(polygon, &GeoPoint::longitude, cell.west, 1);
    return cut(polygon, &GeoPoint::longitude, cell.east, -1);
}

GeoPoint insideOf(const std::vector<GeoPoint>& polygon)
{
    // From the first corner, so that corners of equal latitude keep it to the last bit.
    GeoPoint sum;
    for (const GeoPoint& corner : polygon) {
        sum.latitude += corner.latitude - polygon.front().latitude;
        sum.longitude += corner.longitude - polygon.front().longitude;
    }
    const auto count = static_cast<double>(polygon.size());
    return {polygon.front().latitude + sum.latitude / count,
            polygon.front().longitude + sum.longitude / count};
}

} // namespace vlbase::coord
