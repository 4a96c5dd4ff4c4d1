#include "projectiontable.h"

#include <VLBase/coord/internal/degrees.h>
#include <VLBase/coord/internal/rt90zones.h>

#include <cstddef>
#include <vector>

namespace vlbase::coord {
namespace {

struct Row
{
    double majorAxis; // both axes in metres, multiplied by the central scale factor
    double minorAxis;
    double originLatitude;  // radians
    double centralMeridian; // radians
    double falseNorthing;
    double falseEasting;
};

constexpr double ofCaller = -1000;

constexpr Row rows[] = {
    // 1: British National Grid
    {6375020.480988971, 6353722.490487913, 0.8552113334772207, -0.034906585039886556, -100000,
     400000},
    // 2: Irish Grid
    {6377563.395906615, 6356256.9612075, 0.9337511498169654, -0.13962634015954623, 250000, 200000},
    // 3: UTM on International 1924
    {6375836.6448, 6354369.181221601, 0, ofCaller, 0, 500000},
    // 4: UTM on WGS 84
    {6375585.745200001, 6354209.61327432, 0, ofCaller, 0, 500000},
    // 5: RT90 2.5 gon V on Bessel 1841
    {6377397.154171, 6356078.961955, 0, 0.2759064962924623, 0, 1500000},
    // 6, 7: Gauss-Boaga, west and east
    {6375836.6448, 6354369.181221601, 0, 0.1570796326794895, 0, 1500000},
    {6375836.6448, 6354369.181221601, 0, 0.2617993877991492, 0, 2520000},
    // 8: International 1924 about 27 degrees east
    {6378388, 6356911.946, 0, 0.4712388980384685, 0, 500000},
    // 9: Hong Kong 1980. The meridian is in degrees, taken for radians: known wrong and kept,
    // because grid values made elsewhere agree with it.
    {6378388, 6356911.946, 0.3894201839928796, 114.178556, 819069.8, 836694.05},
    // 10, 11: UTM on Clarke 1880 and Clarke 1866
    {6375697.845342, 6353972.264052001, 0, ofCaller, 0, 500000},
    {6375655.117440001, 6354041.16648, 0, ofCaller, 0, 500000},
    // 12: RT90 2.5 gon V with the shift inside
    {6377432.933728615, 6356114.622128441, 0, 0.27587162849212904, -667.711, 1500064.274},
};

// Codes 13 to 18 mix the axes of two ellipsoids and take the flattening of GRS 80 for a
// latitude. Both are known wrong and kept for the same reason as above.
constexpr double majorAxisGrs80 = 6378137.0;
constexpr double minorAxisBessel = 6356078.961955;
constexpr double flatteningAsLatitude = 0.003352810681182319;

std::vector<Projection> makeProjections()
{
    std::vector<Projection> made;
    for (const Row& row : rows) {
        const TransverseMercator series(row.majorAxis, row.minorAxis, row.originLatitude,
                                        {row.falseEasting, row.falseNorthing});
        if (row.centralMeridian == ofCaller)
            made.emplace_back(series, std::nullopt);
        else
            made.emplace_back(series, row.centralMeridian);
    }
    for (const Rt90Zone& zone : rt90Zones) {
        const TransverseMercator series(zone.scale * majorAxisGrs80, zone.scale * minorAxisBessel,
                                        flatteningAsLatitude,
                                        {zone.falseEasting, zone.falseNorthing});
        made.emplace_back(series, zone.centralMeridian * radiansPerDegree);
    }
    return made;
}

} // namespace

Projection::Projection(const TransverseMercator& series, std::optional<double> centralMeridian)
    : m_series(series)
    , m_centralMeridian(centralMeridian)
{
}

double Projection::meridian(long callersMeridian) const
{
    return m_centralMeridian ? *m_centralMeridian
                             : static_cast<double>(callersMeridian) * radiansPerDegree;
}

const Projection* findProjection(unsigned code)
{
    static const std::vector<Projection> projections = makeProjections();
    if (code < 1 || code > projections.size())
        return nullptr;
    return &projections[code - 1];
}

} // namespace vlbase::coord
