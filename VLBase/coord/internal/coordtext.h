#pragma once

#include <VLBase/coord/coordformat.h>
#include <VLBase/coord/internal/degrees.h>
#include <VLBase/coord/internal/points.h>
#include <VLBase/coord/internal/textbuffer.h>

#include <QStringView>

#include <optional>

namespace vlbase::coord {

/// The plain text of a position on WGS 84, or a refusal that begins with "#". An unknown format
/// is treated as "Geo long".
void writePlain(CoordFormat format, GeoPoint position, TextBuffer& text);

/// Pours the plain text that `writePlain` made into the format's display mask.
QString formatted(CoordFormat format, const TextBuffer& plain);

/// Reads what `writePlain` and `formatted` write, in any case of letters.
/// \return nothing for any other text, and for one that names no position.
std::optional<GeoPoint> readText(CoordFormat format, QStringView text);

} // namespace vlbase::coord
