// Positions through projections, shifts and references, beside GeographicLib and PROJ.

#include "../micro/goals.h"

#include <VLBase/coord/merccoordtrans.h>
#include <VLBase/coord/utm.h>

#include <QString>

#include <GeographicLib/MGRS.hpp>
#include <GeographicLib/UTMUPS.hpp>
#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <memory>
#include <proj.h>
#include <random>
#include <string>

namespace {

struct Position
{
    double latitude;
    double longitude;
};

/// All in one zone, so that PROJ can do with one projection.
const std::array<Position, 1024>& positions()
{
    static const std::array<Position, 1024> made = [] {
        std::array<Position, 1024> array = {};
        std::mt19937_64 random(33);
        std::uniform_real_distribution<double> latitudes(0, 55);
        std::uniform_real_distribution<double> longitudes(12, 18);
        for (Position& position : array)
            position = {latitudes(random), longitudes(random)};
        return array;
    }();
    return made;
}

/// One turn is one position; they take turns themselves.
template <class Step> void eachPosition(benchmark::State& state, const Step& step)
{
    std::size_t next = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(step(positions()[next++ % positions().size()]));
}

class Proj
{
public:
    explicit Proj(const char* definition)
        : m_context(proj_context_create())
        , m_operation(proj_create(m_context, definition))
    {
    }
    ~Proj()
    {
        proj_destroy(m_operation);
        proj_context_destroy(m_context);
    }
    Proj(const Proj&) = delete;
    Proj& operator=(const Proj&) = delete;

    PJ_COORD forward(double x, double y) const
    {
        return proj_trans(m_operation, PJ_FWD, proj_coord(x, y, 0, 0));
    }
    PJ_COORD inverse(const PJ_COORD& coordinate) const
    {
        return proj_trans(m_operation, PJ_INV, coordinate);
    }

private:
    PJ_CONTEXT* m_context;
    PJ* m_operation;
};

void utmThereAndBack(benchmark::State& state)
{
    QString zone;
    eachPosition(state, [&zone](const Position& position) {
        double northing = 0;
        double easting = 0;
        Position back = {};
        LLtoUTM(23, position.latitude, position.longitude, northing, easting, zone);
        UTMtoLL(23, northing, easting, zone, back.latitude, back.longitude);
        return back.latitude + back.longitude;
    });
}
BENCHMARK(utmThereAndBack);

void projectionThereAndBack(benchmark::State& state)
{
    const CMercCoordTrans transform;
    eachPosition(state, [&transform](const Position& position) {
        double northing = 0;
        double easting = 0;
        Position back = {};
        transform.LL2TM(position.latitude, position.longitude, 4, 15, easting, northing);
        transform.TM2LL(easting, northing, 4, 15, back.latitude, back.longitude);
        return back.latitude + back.longitude;
    });
}
BENCHMARK(projectionThereAndBack);

void geographicLibThereAndBack(benchmark::State& state)
{
    eachPosition(state, [](const Position& position) {
        int zone = 0;
        bool isNorthern = false;
        double easting = 0;
        double northing = 0;
        Position back = {};
        GeographicLib::UTMUPS::Forward(position.latitude, position.longitude, zone, isNorthern,
                                       easting, northing);
        GeographicLib::UTMUPS::Reverse(zone, isNorthern, easting, northing, back.latitude,
                                       back.longitude);
        return back.latitude + back.longitude;
    });
}
BENCHMARK(geographicLibThereAndBack);

void projThereAndBack(benchmark::State& state)
{
    const Proj utm("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                   "+step +proj=utm +zone=33 +ellps=WGS84");
    eachPosition(state, [&utm](const Position& position) {
        const PJ_COORD back = utm.inverse(utm.forward(position.longitude, position.latitude));
        return back.xy.x + back.xy.y;
    });
}
BENCHMARK(projThereAndBack);

void mgrsText(benchmark::State& state)
{
    const CMercCoordTrans transform;
    eachPosition(state, [&transform](const Position& position) {
        return transform.LL2GR(position.latitude, position.longitude, 4).size();
    });
}
BENCHMARK(mgrsText);

void geographicLibMgrsText(benchmark::State& state)
{
    std::string text;
    eachPosition(state, [&text](const Position& position) {
        int zone = 0;
        bool isNorthern = false;
        double easting = 0;
        double northing = 0;
        GeographicLib::UTMUPS::Forward(position.latitude, position.longitude, zone, isNorthern,
                                       easting, northing);
        GeographicLib::MGRS::Forward(zone, isNorthern, easting, northing, position.latitude, 5,
                                     text);
        return text.size();
    });
}
BENCHMARK(geographicLibMgrsText);

void datumShift(benchmark::State& state)
{
    const CMercCoordTrans transform;
    eachPosition(state, [&transform](const Position& position) {
        Position local = {};
        transform.FromWGS84(position.latitude, position.longitude, 5, 0, local.latitude,
                            local.longitude);
        return local.latitude + local.longitude;
    });
}
BENCHMARK(datumShift);

void projDatumShift(benchmark::State& state)
{
    const Proj shift("+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                     "+step +proj=cart +ellps=WGS84 "
                     "+step +proj=helmert +x=-419.375 +y=-99.352 +z=-591.349 +rx=-0.850505 "
                     "+ry=-1.817198 +rz=7.862215 +s=0.995 +convention=position_vector "
                     "+step +inv +proj=cart +ellps=bessel "
                     "+step +proj=unitconvert +xy_in=rad +xy_out=deg");
    eachPosition(state, [&shift](const Position& position) {
        const PJ_COORD local = shift.forward(position.longitude, position.latitude);
        return local.xy.x + local.xy.y;
    });
}
BENCHMARK(projDatumShift);

double fasterPeer(const bench::Medians& ns)
{
    return std::min(ns.at("geographicLibThereAndBack"), ns.at("projThereAndBack"));
}

const bench::Goal goals[] = {
    bench::Goal("to UTM and back / the faster of both peers", 0.5,
                [](const bench::Medians& ns) { return ns.at("utmThereAndBack") / fasterPeer(ns); }),
    bench::Goal(
        "to a projection and back / the faster of both peers", 0.5,
        [](const bench::Medians& ns) { return ns.at("projectionThereAndBack") / fasterPeer(ns); }),
    bench::Goal("MGRS text / GeographicLib's", 0.5,
                [](const bench::Medians& ns) {
                    return ns.at("mgrsText") / ns.at("geographicLibMgrsText");
                }),
    bench::Goal(
        "seven-parameter shift / PROJ's", 1.0 / 3,
        [](const bench::Medians& ns) { return ns.at("datumShift") / ns.at("projDatumShift"); }),
};

} // namespace
