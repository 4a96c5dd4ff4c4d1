#pragma once

#include <VLBase/coord/coordformat.h>

#include <QString>

#include <array>

namespace vlbase::coord {

/// What the library knows of a text format.
struct FormatRow
{
    const char* name;
    QString displayMask;
    const char* printFormat;
    QString inputMask;
    QString expression;
};

constexpr std::array<CoordFormat, 8> allFormats = {
    CoordFormat::GeoDecimal, CoordFormat::GeoLong,      CoordFormat::GeoShort,
    CoordFormat::Utm,        CoordFormat::Mgrs,         CoordFormat::Rt90,
    CoordFormat::Sweref99,   CoordFormat::QthMaidenhead};

/// The row of a format; null for an unknown value.
const FormatRow* findFormat(CoordFormat format);

/// The row of a format; that of "Geo long" for an unknown value.
const FormatRow& formatOrGeoLong(CoordFormat format);

} // namespace vlbase::coord
