#pragma once

#include <VLBase/coord/internal/points.h>

#include <optional>

namespace vlbase::coord {

/// A position in the RT90 zone of its longitude by the Gauss-Krueger series in the conformal
/// latitude; nothing for longitudes outside 11 to below 24.1 degrees.
std::optional<GridPoint> projectRt90Gon(GeoPoint degrees);

} // namespace vlbase::coord
