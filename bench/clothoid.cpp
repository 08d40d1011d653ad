// A thousand points of a clothoid, against a bare Horner loop over the same series and against its ten terms as powers.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench/race.h"
#include "mclib/geometry/clothoid.h"

namespace {

constexpr int pointCount = 1000, rounds = 2000;
constexpr double R = 150, A = 200, length = A * A / R;

Point3d worded(double l) {
    const auto term = [l](int power, double denominator) {
        return std::pow(l, power) / (denominator * std::pow(A, power - 1));
    };
    return {term(1, 1) - term(5, 40) + term(9, 3456) - term(13, 599040) + term(17, 175472640),
            term(3, 6) - term(7, 336) + term(11, 42240) - term(15, 9676800) + term(19, 3530960640), 0};
}

void bareHorner(std::vector<Point3d>& points) {
    for (int i = 0; i < pointCount; ++i) {
        const double l = length * i / (pointCount - 1), u = l * l / (A * A), t = u * u;
        points[static_cast<size_t>(i)].x =
            l * (1 + t * (-1.0 / 40 + t * (1.0 / 3456 + t * (-1.0 / 599040 + t / 175472640))));
        points[static_cast<size_t>(i)].y =
            l * u * (1.0 / 6 + t * (-1.0 / 336 + t * (1.0 / 42240 + t * (-1.0 / 9676800 + t / 3530960640))));
    }
}

template <class Body>
auto repeated(std::vector<Point3d>& points, Body body) {
    return [&points, body] {
        for (int i = 0; i < rounds; ++i) {
            body(points);
            benchmark::DoNotOptimize(points.data());
            benchmark::ClobberMemory();
        }
    };
}

void library(std::vector<Point3d>& points) {
    mclibGeo_getKlotPoints(points.data(), pointCount, 0, R, A);
}

void clothoidPoints(benchmark::State& state) {
    std::vector<Point3d> points(pointCount);
    const RaceTimes best = race(state, repeated(points, bareHorner), repeated(points, library));
    constexpr double perPoint = 1e9 / (static_cast<double>(pointCount) * rounds);
    state.counters["ns_more_per_point"] = (best.ours - best.peer) * perPoint;
    state.counters["ns_per_point"] = best.ours * perPoint;
    double worst = 0;
    for (int i = 1; i < pointCount; ++i) {
        const double l = static_cast<double>(i) / (pointCount - 1) * length;
        const Point3d expected = worded(l), &p = points[static_cast<size_t>(i)];
        worst = std::max({worst, std::fabs(p.x - expected.x) / l, std::fabs(p.y - expected.y) / l});
    }
    state.counters["worst_error"] = worst;
    if (worst > 1e-14) state.SkipWithError("a point is off");
}
BENCHMARK(clothoidPoints)->Iterations(20)->Unit(benchmark::kMillisecond);

void clothoidPointsAgainstPowers(benchmark::State& state) {
    std::vector<Point3d> points(pointCount);
    const auto powers = [&points] {
        for (int i = 0; i < pointCount; ++i)
            points[static_cast<size_t>(i)] = worded(static_cast<double>(i) / (pointCount - 1) * length);
        benchmark::DoNotOptimize(points.data());
    };
    race(state, powers, [&] {
        library(points);
        benchmark::ClobberMemory();
    });
}
BENCHMARK(clothoidPointsAgainstPowers)->Iterations(50)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
