#pragma once

#include <array>

namespace vlbase::coord {

/// Parameters of Gauss-Krueger on GRS 80 that stand in for one zone of RT90, shift included.
struct Rt90Zone
{
    double centralMeridian; // degrees
    double scale;
    double falseNorthing;
    double falseEasting;
};

/// From west to east, as Lantmaeteriet publishes them for each zone.
constexpr std::array<Rt90Zone, 6> rt90Zones = {{
    {11.30625, 1.000006, -667.282, 1500025.141},         // 7.5 gon V
    {13.55626667, 1.0000058, -667.13, 1500044.695},      // 5 gon V
    {15.80628333, 1.00000561024, -667.711, 1500064.274}, // 2.5 gon V
    {18.0563, 1.0000054, -668.844, 1500083.521},         // 0 gon
    {20.30631667, 1.0000052, -670.706, 1500102.765},     // 2.5 gon O
    {22.55633333, 1.0000049, -672.557, 1500121.846},     // 5 gon O
}};

} // namespace vlbase::coord
