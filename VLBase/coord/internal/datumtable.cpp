#include "datumtable.h"

namespace vlbase::coord {
namespace {

constexpr Ellipsoid ellipsoid(double a, double b)
{
    const double e2 = (a * a - b * b) / (a * a);
    return {a, b, e2, 1 - e2, (a * a - b * b) / (b * b)};
}

constexpr Shift inverse(const Shift& s)
{
    return {-s.dX, -s.dY, -s.dZ, -s.rx, -s.ry, -s.rz, -s.scalePpm};
}

constexpr Datum datum(int code, const Ellipsoid& local, const Shift& fromWgs84)
{
    return {code, local, fromWgs84, inverse(fromWgs84), 0};
}

constexpr Ellipsoid airy = ellipsoid(6377563.396, 6356256.91);
constexpr Ellipsoid modifiedAiry = ellipsoid(6377340.189, 6356034.5);
constexpr Ellipsoid bessel1841 = ellipsoid(6377397.154171, 6356078.961955);
constexpr Ellipsoid international1924 = ellipsoid(6378388.0, 6356911.946);
constexpr Ellipsoid clarke1880 = ellipsoid(6378249.145, 6356514.87);
constexpr Ellipsoid clarke1866 = ellipsoid(6378206.4, 6356583.8);
// One digit too many in the axis; kept, because stored positions were shifted with it.
constexpr Ellipsoid hugeClarke1866 = ellipsoid(66378206.4, 6356583.8);

constexpr Shift none = {};
constexpr Shift toRt90 = {
    -419.375, -99.352, -591.349, -4.1233364846193e-6, -8.810025937507574e-6, 3.811698543136257e-5,
    0.995};
// Not the exact inverse of the set above: centimetres apart, as published.
constexpr Shift fromRt90 = {
    419.383, 99.333, 591.345, 4.1228516713935955e-6, 8.810510750733279e-6, -3.811698543136257e-5,
    -0.995};
constexpr Shift italy = {225, 65, -9, 0, 0, 0, 0};
constexpr Shift datum8 = {
    89.611, 104.626, 118.241, -2.0478510653770635e-5, -1.2023367997478972e-6, 4.130608683004872e-6,
    -1.1};
constexpr Shift datum99 = {89.5, 93.8, 123.1, 0, 0, 7.563086320994836e-7, -1.2};

// Code 3 is not there: it is refused, although code 9 has the same ellipsoid.
constexpr Datum datums[] = {
    datum(1, airy, {-375, 111, -431, 0, 0, 0, 0}),
    datum(2, modifiedAiry, {-506, 122, -611, 0, 0, 0, 0}),
    datum(4, ellipsoid(6378137.0, 6356752.3142), none),
    {5, bessel1841, toRt90, fromRt90, 0},
    datum(6, international1924, italy),
    datum(7, international1924, italy),
    datum(8, international1924, datum8),
    datum(9, international1924, none),
    datum(10, clarke1880, none),
    datum(11, hugeClarke1866, none),
    {12, ellipsoid(6378137.0, 6356752.3141), toRt90, fromRt90, 0},
    {99, international1924, datum99, inverse(datum99), 73},
    datum(101, clarke1866, {0, -125, -194, 0, 0, 0, 0}),
    datum(102, clarke1866, {8, -160, -176, 0, 0, 0, 0}),
    datum(201, clarke1880, {142, 96, 293, 0, 0, 0, 0}),
    datum(301, clarke1866, {133, 77, 51, 0, 0, 0, 0}),
    datum(302, clarke1866, {133, 79, 72, 0, 0, 0, 0}),
};

constexpr Ellipsoid makeWgs84Source()
{
    // The eccentricity is not quite that of the axes; both are kept as they were published.
    Ellipsoid wgs84 = ellipsoid(6378137.0, 6356752.3142);
    wgs84.e2 = 0.006694380004260827;
    wgs84.oneMinusE2 = 0.9933056199957392;
    return wgs84;
}

} // namespace

constexpr Ellipsoid wgs84Source = makeWgs84Source();
constexpr Ellipsoid wgs84Target = ellipsoid(6378137.0, 6356752.3142);

const Datum* findDatum(unsigned code)
{
    for (const Datum& datum : datums) {
        if (static_cast<unsigned>(datum.code) == code)
            return &datum;
    }
    return nullptr;
}

} // namespace vlbase::coord
