// The drivers beside PostScript: PCL and HP-GL calls against fprintf with the same formats, and a list that the text
// device lays out against sorting and writing its texts alone.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "bench/race.h"
#include "bench/sheet.h"
#include "mclib/print/ascii.h"
#include "mclib/print/hpgl.h"
#include "mclib/print/pcl.h"

namespace {

constexpr int polylineCount = 1'000'000, textCount = 100'000;
constexpr const char* label = "Station 1234.567";
constexpr double width = 0.35, height = 3.25, angle = 30;

void finish(benchmark::State& state, const PrintFiles& files, const RaceTimes& best) {
    if (!files.same()) state.SkipWithError("the files differ");
    state.counters["MB_per_s"] = static_cast<double>(std::filesystem::file_size(files.ours)) / best.ours * 1e-6;
}

// ---- PCL ----

int pclX(double x) {
    return static_cast<int>(40 * x) - 240;
}
int pclY(double y) {
    return static_cast<int>(40 * y);
}

void pclWithFprintf(const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "w");
    std::fprintf(f, "\33E\33&l26a0O\33*c5952x8418Y\33&l0E\33*p0x0Y\33*c0T\33%%1BIN;SP1;PA0,0;\n");
    for (int i = 0; i < polylineCount; ++i) {
        const Point3d* p = pointsOf(i);
        std::fprintf(f, "PU;PW%.2f;PA%d,%d;", width, pclX(p->x), pclY(p->y));
        for (int j = 1; j < pointsOfEach; ++j) std::fprintf(f, "PD;PA%d,%d;\n", pclX(p[j].x), pclY(p[j].y));
    }
    for (int i = 0; i < textCount; ++i) {  // each in a font of its own
        const double radians = (i % 2 ? angle : -angle) * std::numbers::pi / 180;
        std::fprintf(f, "PU;PA%d,%d;SD1,14,2,1,4,%d,5,0,5,-7,7,52;SS;DI%.1f,%.1f;", pclX(pointsOf(i)->x),
                     pclY(pointsOf(i)->y), static_cast<int>(height * 2.7932960893854752), std::cos(radians),
                     std::sin(radians));
        std::fprintf(f, "LB%s%c\n", label, 3);
    }
    std::fprintf(f, "\33%%1A\33E");
    std::fclose(f);
}

void pclWithDriver(const std::string& path) {
    mclibPcl_fopen(path.c_str(), 1);
    for (int i = 0; i < polylineCount; ++i) mclibPcl_drawPolylineExtended(pointsOf(i), pointsOfEach, width, 0, 0, -1);
    for (int i = 0; i < textCount; ++i)
        mclibPcl_drawText(pointsOf(i)->x, pointsOf(i)->y, label, height, i % 2 ? angle : -angle, 2);
    mclibPcl_fclose();
}

void pclAgainstFprintf(benchmark::State& state) {
    const PrintFiles files;
    finish(state, files,
           race(
               state, [&] { pclWithFprintf(files.peer); }, [&] { pclWithDriver(files.ours); }));
}
BENCHMARK(pclAgainstFprintf)->Iterations(5)->Unit(benchmark::kMillisecond);

// ---- HP-GL ----

int hpglUnits(double mm) {
    return static_cast<int>(mm * 38.46153846153846);
}

void hpglWithFprintf(const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "w");
    std::fprintf(f, "IN;PU;VS80;IP,603,521,10603,7721;SP1;CS32;\n");
    for (int i = 0; i < polylineCount; ++i) {
        const Point3d* p = pointsOf(i);
        std::fprintf(f, "PU;PA%d,%d;PD;", hpglUnits(p->x - 10), hpglUnits(p->y - 1));
        for (int j = 1; j < pointsOfEach; ++j)
            std::fprintf(f, "PD;PA%d,%d;\n", hpglUnits(p[j].x - 10), hpglUnits(p[j].y - 1));
    }
    for (int i = 0; i < textCount; ++i) {
        const double radians = angle * std::numbers::pi / 180;
        std::fprintf(f, "PU;PA%d,%d;SI%.2f,%.2f;DI%.1f,%.1f;", hpglUnits(pointsOf(i)->x - 10),
                     hpglUnits(pointsOf(i)->y - 1), height * 0.03, height * 0.06, std::cos(radians), std::sin(radians));
        std::fprintf(f, "SS;LB%s%c\n", label, 3);
    }
    std::fprintf(f, "PU;PA0,0;PG;\n");
    std::fclose(f);
}

void hpglWithDriver(const std::string& path) {
    std::string text = label;
    mclibHpgl_fopen(path.c_str());
    for (int i = 0; i < polylineCount; ++i) mclibHpgl_drawPolyline(pointsOf(i), pointsOfEach, width, -1);
    for (int i = 0; i < textCount; ++i)
        mclibHpgl_drawText(pointsOf(i)->x, pointsOf(i)->y, text.data(), height, angle, 2);
    mclibHpgl_fclose();
}

void hpglAgainstFprintf(benchmark::State& state) {
    const PrintFiles files;
    finish(state, files,
           race(
               state, [&] { hpglWithFprintf(files.peer); }, [&] { hpglWithDriver(files.ours); }));
}
BENCHMARK(hpglAgainstFprintf)->Iterations(5)->Unit(benchmark::kMillisecond);

// ---- the text device ----

struct Cell {
    double x, y;
    std::string text;
};

// A list of 20 columns in rows 5 mm high, row by row or shuffled.
std::vector<Cell> makeList(bool shuffled) {
    std::vector<Cell> cells;
    for (int i = 0; i < textCount; ++i)
        cells.push_back({i % 20 * 24.0, (textCount - i) / 20 * 5.0, std::to_string(i * 0.125)});
    if (shuffled) std::shuffle(cells.begin(), cells.end(), std::mt19937(7));
    return cells;
}

struct Place {
    double x, y;
    const char* text;
};

// The order of rows and columns; these rows lie far enough apart for it to be one.
bool isBefore(const Place& a, const Place& b) {
    const double down = b.y - a.y;
    return std::abs(down) >= 2 ? down < 0 : a.x - b.x <= -1;
}

void sortAndWrite(const std::string& path, const std::vector<Cell>& cells) {
    std::vector<Place> order;
    order.reserve(cells.size());
    for (const Cell& c : cells) order.push_back({c.x, c.y, c.text.c_str()});
    std::stable_sort(order.begin(), order.end(), isBefore);
    FILE* f = std::fopen(path.c_str(), "w");
    for (const Place& p : order) std::fprintf(f, "%s\n", p.text);
    std::fclose(f);
}

void layOut(const std::string& path, const std::vector<Cell>& cells) {
    mclibAscii_fopen(path.c_str());
    for (const Cell& c : cells) {
        const Point3d shape[5] = {{c.x, c.y, 0}};
        mclibAscii_drawText(shape, c.text.c_str(), height, height, 0, 2);
    }
    mclibAscii_fclose();
}

void layoutAgainstSortAndWrite(benchmark::State& state, bool shuffled) {
    const PrintFiles files;
    const std::vector<Cell> cells = makeList(shuffled);
    const RaceTimes best = race(
        state, [&] { sortAndWrite(files.peer, cells); }, [&] { layOut(files.ours, cells); });
    state.counters["times_the_time"] = best.ours / best.peer;
}
BENCHMARK_CAPTURE(layoutAgainstSortAndWrite, shuffled, true)->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(layoutAgainstSortAndWrite, row_by_row, false)->Iterations(20)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
