#pragma once

#include <QString>

namespace vlbase::tool::band {

/// The band plan as an SVG picture: an overview over all frequencies, and for each pair of bands a
/// panel of its own in which every channel is a bar that tells its number and frequency.
QString planPicture();

} // namespace vlbase::tool::band
