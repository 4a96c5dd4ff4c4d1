#pragma once

#include <VLBase/coord/coordformat.h>

#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace vlbase::tool::coord {

constexpr std::array<CoordFormat, 8> allFormats = {
    CoordFormat::GeoDecimal, CoordFormat::GeoLong,      CoordFormat::GeoShort,
    CoordFormat::Utm,        CoordFormat::Mgrs,         CoordFormat::Rt90,
    CoordFormat::Sweref99,   CoordFormat::QthMaidenhead};

/// The word for a format on the command line and in JSON: "decimal".
QLatin1String formatKey(CoordFormat format);

/// The words of all formats.
QStringList formatKeys();

/// The format of a word, or of the name that user interfaces show ("Geo Decimal"), in any case.
std::optional<CoordFormat> formatOfKey(const QString& word);

} // namespace vlbase::tool::coord
