// 100,000 line strings clipped by a polygon, against Boost.Geometry: the same pieces, in the order of the line.
#include <benchmark/benchmark.h>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/multi_linestring.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "bench/race.h"
#include "mchost/element/clip.h"
#include "mchost/space/vector.h"

namespace {

namespace bg = boost::geometry;
using BoostPoint = bg::model::d2::point_xy<double>;
using BoostLine = bg::model::linestring<BoostPoint>;
using BoostLines = bg::model::multi_linestring<BoostLine>;
using BoostPolygon = bg::model::polygon<BoostPoint>;
using Line = std::vector<Point3d>;

constexpr int lineCount = 100'000, pointCount = 12;

// Walks of some length all over a square of which the polygon takes about half.
std::vector<Line> makeLines() {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> place(0, 1000), step(-40, 40);
    std::vector<Line> lines(lineCount);
    for (Line& line : lines) {
        Point3d p{place(random), place(random), 0};
        for (int i = 0; i < pointCount; ++i) {
            line.push_back(p);
            p = {p.x + step(random), p.y + step(random), 0};
        }
    }
    return lines;
}

host::Ring makeStar(int corners) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> radius(corners == 4 ? 450 : 250, 450);
    host::Ring ring;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * std::numbers::pi * (i + 0.37) / corners, r = radius(random);
        ring.push_back({500 + r * std::cos(angle), 500 + r * std::sin(angle)});
    }
    return ring;
}

BoostPolygon boostPolygon(const host::Ring& ring) {
    BoostPolygon polygon;
    for (const host::Point2& p : ring) bg::append(polygon.outer(), BoostPoint(p.x, p.y));
    bg::correct(polygon);
    return polygon;
}

BoostLine boostLine(const Line& line) {
    BoostLine made;
    for (const Point3d& p : line) bg::append(made, BoostPoint(p.x, p.y));
    return made;
}

bool isSame(const std::vector<Line>& ours, const BoostLines& theirs) {
    constexpr double slack = 1e-6;
    if (ours.size() != theirs.size()) return false;
    for (size_t i = 0; i < ours.size(); ++i) {
        if (ours[i].size() != theirs[i].size()) return false;
        for (size_t n = 0; n < ours[i].size(); ++n)
            if (std::hypot(ours[i][n].x - theirs[i][n].x(), ours[i][n].y - theirs[i][n].y()) > slack) return false;
    }
    return true;
}

void clipLines(benchmark::State& state) {
    const std::vector<Line> lines = makeLines();
    const host::Ring ring = makeStar(static_cast<int>(state.range(0)));
    const BoostPolygon polygon = boostPolygon(ring);
    std::vector<BoostLine> boostLines;
    for (const Line& line : lines) boostLines.push_back(boostLine(line));
    std::vector<BoostLines> theirs(lines.size());
    std::vector<std::vector<Line>> ours(lines.size());
    race(
        state,
        [&] {
            for (size_t i = 0; i < lines.size(); ++i) {
                theirs[i].clear();
                bg::intersection(boostLines[i], polygon, theirs[i]);
            }
        },
        [&] {
            const host::ClipArea area(ring);
            for (size_t i = 0; i < lines.size(); ++i) ours[i] = piecesInside(area, host::identityTransform, lines[i]);
        });
    size_t different = 0, pieces = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        different += !isSame(ours[i], theirs[i]);
        pieces += ours[i].size();
    }
    state.counters["pieces"] = static_cast<double>(pieces);
    state.counters["different"] = static_cast<double>(different);
    if (different != 0) state.SkipWithError("other pieces");
}
BENCHMARK(clipLines)->ArgName("corners")->Arg(4)->Arg(12)->Arg(200)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
