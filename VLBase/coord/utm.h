#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

/// \file
/// UTM on a reference ellipsoid of choice, by J. P. Snyder's series (Map Projections: A Working
/// Manual, 1987, pages 61 to 64), good to a centimetre inside a zone
/// and to 3 cm in the wide ones of Svalbard.
///
/// Angles are decimal degrees, grid values metres. Nothing is tested and nothing throws: garbage
/// gives garbage, and NaN gives NaN. Any thread may call both functions at any time.

/// Projects a position into its UTM zone.
/// \param ellipsoid row of the ellipsoid table, 1 to 23 (23 is WGS-84); any other row leaves the
///     outputs untouched
/// \param zone zone number, without a leading zero, and band letter ("32U"); the letter is "Z"
///     outside -80 to 84 degrees. A zone text that comes in with room for it is reused, so a
///     loop that keeps its variable allocates nothing.
VLBASE_EXPORT void LLtoUTM(int ellipsoid, double latitude, double longitude, double& northing,
                           double& easting, QString& zone);

/// The position of UTM grid values.
/// \param ellipsoid as above
/// \param zone zone number and band letter; a letter below "N" means the southern hemisphere
VLBASE_EXPORT void UTMtoLL(int ellipsoid, double northing, double easting, QString zone,
                           double& latitude, double& longitude);
