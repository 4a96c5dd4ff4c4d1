#pragma once

#include <VLBase/coord/coord.h>

#include <optional>
#include <string_view>

namespace vlbase::tool::coord {

/// A pair of angles and how it was written.
struct AnglePair
{
    Coord position;
    CoordFormat format = CoordFormat::GeoDecimal; ///< the one that it is most like
    bool isOrderGuessed = false;                  ///< latitude first for want of any hint
};

/// Reads two angles the way people write them: degrees with a fraction, or with minutes, or with
/// minutes and seconds; with or without their marks; letters before or after, or signs; in
/// either order where letters or magnitudes tell it.
/// \param text tidied
std::optional<AnglePair> readAngles(std::string_view text);

} // namespace vlbase::tool::coord
