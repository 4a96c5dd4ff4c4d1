#include "merccoordtrans.h"

#include <VLBase/coord/internal/datumshift.h>
#include <VLBase/coord/internal/datumtable.h>
#include <VLBase/coord/internal/degrees.h>
#include <VLBase/coord/internal/gridreference.h>
#include <VLBase/coord/internal/projectiontable.h>
#include <VLBase/coord/internal/rt90gon.h>
#include <VLBase/coord/internal/rt90zones.h>
#include <VLBase/coord/internal/utmzones.h>

#include <cstddef>

using namespace vlbase::coord;

namespace {

constexpr double refused = -1.0;

bool isPosition(double latitude, double longitude)
{
    return isWholeLatitude(wholeDegrees(latitude)) && isWholeLongitude(wholeDegrees(longitude));
}

/// Moves a position by one of the two shifts of a datum; false, with the position as it was, where
/// that is refused.
bool shift(GeoPoint (*shifted)(GeoPoint, const Datum&), int code, long zoneArgument,
           double& latitude, double& longitude)
{
    const Datum* datum = findDatum(codeOf(code));
    if (!datum || !isPosition(latitude, longitude))
        return false;
    if (datum->code == 4 && !isWholeLongitude(zoneArgument))
        return false;
    const GeoPoint position = shifted({latitude, longitude}, *datum);
    latitude = position.latitude;
    longitude = position.longitude;
    return true;
}

} // namespace

double CMercCoordTrans::LL2TM(bool wantEasting, double latitude, double longitude, int projection,
                              long centralMeridian) const
{
    double easting = refused;
    double northing = refused;
    LL2TM(latitude, longitude, projection, centralMeridian, easting, northing);
    return wantEasting ? easting : northing;
}

bool CMercCoordTrans::LL2TM(double latitude, double longitude, int projection, long centralMeridian,
                            double& easting, double& northing) const
{
    const unsigned code = codeOf(projection);
    const Projection* row = findProjection(code);
    if (!row || !isPosition(latitude, longitude))
        return false;
    if ((code == 3 || code == 4) && !isWholeLongitude(centralMeridian))
        return false;
    const GridPoint grid = row->forward({latitude, longitude}, centralMeridian);
    easting = grid.easting;
    northing = grid.northing;
    return true;
}

double CMercCoordTrans::TM2LL(bool wantLatitude, double easting, double northing, int projection,
                              long centralMeridian) const
{
    double latitude = refused;
    double longitude = refused;
    TM2LL(easting, northing, projection, centralMeridian, latitude, longitude);
    return wantLatitude ? latitude : longitude;
}

bool CMercCoordTrans::TM2LL(double easting, double northing, int projection, long centralMeridian,
                            double& latitude, double& longitude) const
{
    const unsigned code = codeOf(projection);
    const Projection* row = findProjection(code);
    if (!row || code > lastInvertibleCode)
        return false;
    const auto position = row->inverse({easting, northing}, centralMeridian);
    if (!position)
        return false;
    latitude = position->latitude;
    longitude = position->longitude;
    return true;
}

double CMercCoordTrans::FromWGS84(bool wantLatitude, double latitude, double longitude, int datum,
                                  long zoneArgument) const
{
    if (!shift(shiftFromWgs84, datum, zoneArgument, latitude, longitude))
        return refused;
    return wantLatitude ? latitude : longitude;
}

bool CMercCoordTrans::FromWGS84(double latitude, double longitude, int datum, long zoneArgument,
                                double& localLatitude, double& localLongitude) const
{
    if (!shift(shiftFromWgs84, datum, zoneArgument, latitude, longitude))
        return false;
    localLatitude = latitude;
    localLongitude = longitude;
    return true;
}

double CMercCoordTrans::ToWGS84(bool wantLatitude, double latitude, double longitude, int datum,
                                long zoneArgument) const
{
    if (!shift(shiftToWgs84, datum, zoneArgument, latitude, longitude))
        return refused;
    return wantLatitude ? latitude : longitude;
}

bool CMercCoordTrans::ToWGS84(double latitude, double longitude, int datum, long zoneArgument,
                              double& globalLatitude, double& globalLongitude) const
{
    if (!shift(shiftToWgs84, datum, zoneArgument, latitude, longitude))
        return false;
    globalLatitude = latitude;
    globalLongitude = longitude;
    return true;
}

long CMercCoordTrans::UTMCM(double latitude, double longitude) const
{
    return isPosition(latitude, longitude) ? utmCentralMeridian({latitude, longitude}) : -1;
}

long CMercCoordTrans::UTMLongZone(double latitude, double longitude) const
{
    if (!isPosition(latitude, longitude))
        return -1;
    return zoneOfMeridian(utmCentralMeridian({latitude, longitude}));
}

bool CMercCoordTrans::convertRt90gon(double longitude, double latitude, double& x, double& y) const
{
    const auto grid = projectRt90Gon({latitude, longitude});
    if (!grid)
        return false;
    x = grid->northing;
    y = grid->easting;
    return true;
}

QString CMercCoordTrans::LL2GR(double latitude, double longitude, int projection) const
{
    const GridAnswer answer = gridReferenceOf({latitude, longitude}, projection);
    if (answer.refusal)
        return QString::fromLatin1(answer.refusal);
    TextBuffer text;
    writeGridReference(answer.reference, text);
    return text.toString();
}

double CMercCoordTrans::GR2LL(bool wantLatitude, QString gridReference, int projection) const
{
    double latitude = refused;
    double longitude = refused;
    GR2LL(gridReference, projection, latitude, longitude);
    return wantLatitude ? latitude : longitude;
}

bool CMercCoordTrans::GR2LL(const QString& gridReference, int projection, double& latitude,
                            double& longitude) const
{
    const auto reference = parseGridReference(gridReference, projection);
    if (!reference)
        return false;
    const auto position = positionOf(*reference);
    if (!position)
        return false;
    latitude = position->latitude;
    longitude = position->longitude;
    return true;
}

long CMercCoordTrans::UTMCMfromLongZone(long zone) const
{
    return ValidLongZone(zone) ? meridianOfZone(zone) : -1;
}

QString CMercCoordTrans::UTMLatZone(double latitude) const
{
    if (!ValidLat(wholeDegrees(latitude)))
        return QLatin1String(invalidLatitude);
    return QString(QLatin1Char(gridBand(latitude)));
}

bool CMercCoordTrans::ValidLat(long latitude) const
{
    return isWholeLatitude(latitude);
}

bool CMercCoordTrans::ValidLong(long longitude) const
{
    return isWholeLongitude(longitude);
}

bool CMercCoordTrans::ValidLongZone(long zone) const
{
    return isLongitudeZone(zone);
}

double CMercCoordTrans::GetRT90param(int index, double& centralMeridian, double& scale,
                                     double& falseNorthing, double& falseEasting) const
{
    constexpr int zeroGon = 3;
    const bool isZone = index >= 0 && index < static_cast<int>(rt90Zones.size());
    const Rt90Zone& zone = rt90Zones[static_cast<std::size_t>(isZone ? index : zeroGon)];
    centralMeridian = zone.centralMeridian;
    scale = zone.scale;
    falseNorthing = zone.falseNorthing;
    falseEasting = zone.falseEasting;
    return 1.0;
}

double CMercCoordTrans::Deg(QString band) const
{
    if (band.size() != 1)
        return refused;
    return southernEdge(band.front().toLatin1()).value_or(refused);
}
