#pragma once

#include <VLBase/coord/internal/points.h>

namespace vlbase::coord {

struct Datum;

/// A position of height 0 on WGS 84 as one on the local datum.
GeoPoint shiftFromWgs84(GeoPoint degrees, const Datum& datum);

/// A position on the local datum as one on WGS 84.
GeoPoint shiftToWgs84(GeoPoint degrees, const Datum& datum);

} // namespace vlbase::coord
