#pragma once

#include <VLBase/vlbase_export.h>

#include <QString>

/// Numbered map projections, datum shifts and lettered grid references.
///
/// Angles are decimal degrees, latitude positive north, longitude positive east; grid values are
/// metres. A projection is a code from 1 to 18 whose sign is ignored:
///
/// | code | projection |
/// |---|---|
/// | 1, 2 | British National Grid, Irish Grid |
/// | 3, 4, 10, 11 | UTM on International 1924, WGS 84, Clarke 1880, Clarke 1866 |
/// | 5, 12 | RT90 2.5 gon V on Bessel 1841 |
/// | 6, 7 | Gauss-Boaga west and east |
/// | 8, 9 | International 1924 about 27 east; Hong Kong 1980 |
/// | 13 to 18 | the six RT90 zones from west to east, forward only |
///
/// Where degrees are tested, they are tested truncated toward zero: 90.7 counts as 90. NaN,
/// infinities and other codes are refused. A refusal is the value -1.0 (or false), which can
/// also be a legitimate result: the forms that return a bool tell the two apart, and cost half
/// as much where both values are wanted.
///
/// Everything is a pure function of its arguments: any thread may call it at any time, and
/// nothing throws.
class VLBASE_EXPORT CMercCoordTrans
{
public:
    /// Projects a position. The series is good to a millimetre within 3 degrees of the central
    /// meridian. The easting is 5 mm less and the northing 5 mm more than the projection says.
    /// \param wantEasting true for the easting, false for the northing
    /// \param centralMeridian whole degrees, used by codes 3, 4, 10 and 11 only; codes 3 and 4
    ///     refuse one outside -180 to 180
    double LL2TM(bool wantEasting, double latitude, double longitude, int projection,
                 long centralMeridian) const;

    /// Both grid values of a position from one evaluation.
    /// \return false for a refusal; the outputs are untouched then.
    bool LL2TM(double latitude, double longitude, int projection, long centralMeridian,
               double& easting, double& northing) const;

    /// The position of a grid value, good to a millimetre near the central meridian; codes 1 to
    /// 12. It knows nothing of the 5 mm that `LL2TM` adds. Grid values are not tested; a
    /// northing for which the series does not settle is refused.
    /// \param wantLatitude true for the latitude, false for the longitude
    double TM2LL(bool wantLatitude, double easting, double northing, int projection,
                 long centralMeridian) const;

    /// Both angles of a grid value from one evaluation.
    /// \return false for a refusal; the outputs are untouched then.
    bool TM2LL(double easting, double northing, int projection, long centralMeridian,
               double& latitude, double& longitude) const;

    /// Shifts a WGS 84 position of height 0 to a local datum by seven parameters.
    /// \param datum the code of a parameter set, its sign ignored: 1 on Airy, 2 on modified Airy,
    ///     4 on WGS 84 (no shift), 5 and 12 the Swedish one of RT90, 6 to 9 and 99 on International
    ///     1924, 10 and 201 on Clarke 1880, 11, 101, 102, 301 and 302 on Clarke 1866
    /// \param zoneArgument datum 4 refuses one outside -180 to 180; others do not use it
    double FromWGS84(bool wantLatitude, double latitude, double longitude, int datum,
                     long zoneArgument) const;

    /// Both angles from one evaluation.
    /// \return false for a refusal; the outputs are untouched then.
    bool FromWGS84(double latitude, double longitude, int datum, long zoneArgument,
                   double& localLatitude, double& localLongitude) const;

    /// Shifts a position on a local datum to WGS 84; parameters as of `FromWGS84`. It is not its
    /// exact inverse: datums 5 and 12 have a parameter set of their own for this direction
    /// (centimetres apart), and datum 99 assumes a height of 73 m.
    double ToWGS84(bool wantLatitude, double latitude, double longitude, int datum,
                   long zoneArgument) const;

    /// Both angles from one evaluation.
    /// \return false for a refusal; the outputs are untouched then.
    bool ToWGS84(double latitude, double longitude, int datum, long zoneArgument,
                 double& globalLatitude, double& globalLongitude) const;

    /// Central meridian of the UTM zone of a position, in degrees, with the exceptions of
    /// Norway and Svalbard; -1 for a refusal. A longitude that is a negative multiple of 6
    /// belongs to the zone west of it, and 180 east to a zone 61 that does not exist.
    long UTMCM(double latitude, double longitude) const;

    /// UTM zone number of a position by the same rules; -1 for a refusal.
    long UTMLongZone(double latitude, double longitude) const;

    /// Converts a WGS 84 position to the RT90 zone that its longitude selects, 11 to below 24.1
    /// degrees east. The latitude is not tested. Computed with pi as 3.14159.
    /// \param x northing
    /// \param y easting
    /// \return false outside those longitudes; the outputs are untouched then.
    bool convertRt90gon(double longitude, double latitude, double& x, double& y) const;

    /// The lettered grid reference of a position, to one metre.
    ///
    /// The position is first moved by a millionth of a degree north and a hundred-thousandth
    /// east. MGRS references have no blanks and no leading zero ("31UDQ4825211932"); they name
    /// the band from 80 degrees north on "Y".
    /// \param projection 1 British, 2 Irish, 3, 4, 10, 11 MGRS; a negative MGRS code selects the
    ///     alternative lettering of the rows
    /// \return the reference, or one of "#INVALID LATITUDE", "#INVALID LONGITUDE", "#LATITUDE
    ///     OUTSIDE MGRS AREA", "#OUTSIDE BRITISH GRID AREA", "#OUTSIDE IRISH GRID AREA";
    ///     "Invalid" for any other code.
    QString LL2GR(double latitude, double longitude, int projection) const;

    /// The position of a grid reference, such that `LL2GR` gives the reference again.
    ///
    /// Letters in any case; blanks, tabs and hyphens between the pieces do not matter. There are
    /// 2 to 10 digits, half of them easting; fewer than 10 stand for the south-west corner of
    /// their square. Where that corner lies across the border of its zone or band, the answer
    /// is another point of the square on the right side. "X" is read for "Y" too.
    /// \param wantLatitude true for the latitude, false for the longitude
    /// \return -1.0 for a text that does not parse or names a square that the grid does not have.
    double GR2LL(bool wantLatitude, QString gridReference, int projection) const;

    /// Both angles of a grid reference from one evaluation.
    /// \return false for a refusal; the outputs are untouched then.
    bool GR2LL(const QString& gridReference, int projection, double& latitude,
               double& longitude) const;

private:
    long UTMCMfromLongZone(long zone) const;
    QString UTMLatZone(double latitude) const;
    bool ValidLat(long latitude) const;
    bool ValidLong(long longitude) const;
    bool ValidLongZone(long zone) const;
    double GetRT90param(int index, double& centralMeridian, double& scale, double& falseNorthing,
                        double& falseEasting) const;
    /// The southern edge of the latitude band that a letter names; -1.0 for any other text.
    double Deg(QString band) const;
};
