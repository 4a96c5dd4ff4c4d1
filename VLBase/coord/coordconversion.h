#pragma once

#include <VLBase/coord/coordformat.h>
#include <VLBase/vlbase_export.h>

#include <QString>

/// \file
/// Conversions between a position as a bare pair of doubles (WGS 84 degrees, longitude first) and
/// its texts. They return `CoordOk` or why not, and leave their outputs untouched then. Nothing
/// throws; any thread may call them at any time.

/// What the conversions return.
enum CoordStatus : int {
    CoordOk = 0,
    CoordInvalidLatitude = 1,  ///< outside -90 to 90, or NaN
    CoordInvalidLongitude = 2, ///< outside -180 to 180, or NaN; for MGRS 180 east as well
    CoordOutsideArea = 3,      ///< the format cannot express the position, see `Coord::GetText`
    CoordMalformedText = 4,    ///< not a text of the format, or one that names no position
    CoordUnknownFormat = 5     ///< no enumerator of `TCoordFormat`
};

/// Writes a position as the user sees it (`Coord::GetString`).
VLBASE_EXPORT int CoordToString(double longitude, double latitude, TCoordFormat format,
                                QString& text);

/// The same for RT90: "X6580822.000 Y1628293.000", northing before easting.
VLBASE_EXPORT int CoordToRT90String(double longitude, double latitude, QString& text);

/// The same for SWEREF 99: "E018°03'29.80 N59°19'46.40".
VLBASE_EXPORT int CoordToSWEREF99String(double longitude, double latitude, QString& text);

/// Reads a text as `Coord::SetText` does.
VLBASE_EXPORT int StringToCoord(const QString& text, TCoordFormat format, double& longitude,
                                double& latitude);

/// UTM on WGS 84, latitudes -80 to 84.
/// \param zone two digits and the band letter ("05Q")
VLBASE_EXPORT int GEO_to_UTM(double longitude, double latitude, QString& zone, double& easting,
                             double& northing);

/// The position of UTM grid values.
/// \param zone one or two digits and the band letter, in any case
/// \return `CoordMalformedText` for another zone text; `CoordOutsideArea` for values that lie more
///     than a metre or so outside the named zone and band.
VLBASE_EXPORT int UTM_to_GEO(const QString& zone, double easting, double northing,
                             double& longitude, double& latitude);
