// A spline through 10,000 knots beside a bare Horner evaluation of a piece that is known.

#include "goals.h"

#include <VLBase/coord/spline.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr std::size_t knots = 10000;

struct Table
{
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> curvatures;
};

Table evenTable()
{
    Table table;
    for (std::size_t i = 0; i < knots; ++i) {
        table.x.push_back(0.001 * static_cast<double>(i));
        table.y.push_back(std::sin(table.x.back()));
    }
    spline_cubic_set(table.x, table.y, {}, {}, table.curvatures);
    return table;
}

Table unevenTable()
{
    Table table = evenTable();
    for (double& x : table.x)
        x = std::exp(x);
    spline_cubic_set(table.x, table.y, {}, {}, table.curvatures);
    return table;
}

std::vector<double> places(const Table& table)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> within(table.x.front(), table.x.back());
    std::vector<double> result(4096);
    std::generate(result.begin(), result.end(), [&] { return within(random); });
    return result;
}

void evaluate(benchmark::State& state, const Table& table)
{
    const std::vector<double> at = places(table);
    SplinePoint point = {};
    std::size_t next = 0;
    for (auto _ : state) {
        spline_cubic_val(table.x, table.y, table.curvatures, at[next++ % at.size()], point);
        benchmark::DoNotOptimize(point);
    }
}

void splineSet(benchmark::State& state)
{
    Table table = evenTable();
    for (auto _ : state)
        benchmark::DoNotOptimize(spline_cubic_set(table.x, table.y, {}, {}, table.curvatures));
}
BENCHMARK(splineSet);

void splineValue(benchmark::State& state)
{
    evaluate(state, evenTable());
}
BENCHMARK(splineValue);

void splineValueUneven(benchmark::State& state)
{
    evaluate(state, unevenTable());
}
BENCHMARK(splineValueUneven);

/// Value, slope and curvature of a piece by its knots, values and curvatures, called like ours.
__attribute__((noinline)) void horner(const Table& table, std::size_t left, double at,
                                      SplinePoint& point)
{
    const double h = table.x[left + 1] - table.x[left];
    const double s = at - table.x[left];
    const double m = table.curvatures[left];
    const double n = table.curvatures[left + 1];
    const double b = (table.y[left + 1] - table.y[left]) / h - h * (m + m + n) / 6;
    const double d = (n - m) / h;
    point = {table.y[left] + s * (b + s * (m / 2 + s * d / 6)), b + s * (m + s * d / 2), m + s * d};
}

void bareHorner(benchmark::State& state)
{
    const Table table = evenTable();
    const std::vector<double> at = places(table);
    std::vector<std::size_t> left;
    for (double place : at)
        left.push_back(static_cast<std::size_t>(
            std::upper_bound(table.x.begin(), table.x.end() - 1, place) - table.x.begin() - 1));
    SplinePoint point = {};
    std::size_t next = 0;
    for (auto _ : state) {
        const std::size_t i = next++ % at.size();
        horner(table, left[i], at[i], point);
        benchmark::DoNotOptimize(point);
    }
}
BENCHMARK(bareHorner);

const bench::Goal goals[] = {
    bench::Goal("spline of 10,000 knots set / 1 ms", 1.0,
                [](const bench::Medians& ns) { return ns.at("splineSet") / 1e6; }),
    bench::Goal(
        "spline evaluated / bare Horner evaluation of a known piece", 1.3,
        [](const bench::Medians& ns) { return ns.at("splineValue") / ns.at("bareHorner"); }),
};

} // namespace
