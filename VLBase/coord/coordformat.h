#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

/// The text formats in which users type and read positions. The values are stored by callers.
enum class CoordFormat : int {
    GeoDecimal = 0,   ///< "E012.345678 N12.345678"
    GeoLong = 1,      ///< "E012°34'56.78 N12°34'56.78"
    GeoShort = 2,     ///< "E012°34'56 N12°34'56"
    Utm = 3,          ///< "33U 0389834 5820160"
    Mgrs = 4,         ///< "33U-UU-89834-20160"
    Rt90 = 5,         ///< "X6580822.000 Y1628293.000"
    Sweref99 = 6,     ///< as GeoLong
    QthMaidenhead = 7 ///< "JO62qm"
};

/// The name under which the free conversion functions know the formats.
using TCoordFormat = CoordFormat;

/// The untranslated name of a format ("Geo Decimal"); empty for an unknown value.
VLBASE_EXPORT QString getCoordFormatName(CoordFormat format);

/// The same name translated in the context of `QCoreApplication`.
VLBASE_EXPORT QString getTranslatedCoordFormatName(CoordFormat format);
