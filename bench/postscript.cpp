// PostScript: driver calls against fprintf with the same formats and against cairo, and a whole page through the front
// end.
#include <benchmark/benchmark.h>
#include <cairo-ps.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/race.h"
#include "bench/sheet.h"
#include "bench/silent.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/session/front_end.h"
#include "mchost/session/session.h"
#include "mclib/frame/main.h"
#include "mclib/print/print.h"
#include "mclib/print/ps.h"
#include "mclib/print/ps_prolog.h"

using namespace mc;

namespace {

constexpr double pointsPerMm = 2.834645651435303;
constexpr int polylineCount = 1'000'000, textCount = 100'000;

constexpr const char* label = "Station 1234.567";

void printWithFprintf(const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "w");
    std::fprintf(f, "%s", psProlog.data());
    for (int i = 0; i < polylineCount; ++i) {
        const Point3d* p = pointsOf(i);
        std::fprintf(f, "[%s] 0 setdash\n", "");
        std::fprintf(f, "%.2f setlinewidth\n", 0.35 * pointsPerMm);
        std::fprintf(f, "%.2f %.2f moveto\n", p[0].x * pointsPerMm, p[0].y * pointsPerMm);
        for (int j = 1; j < pointsOfEach; ++j)
            std::fprintf(f, "%.2f %.2f lineto\n", p[j].x * pointsPerMm, p[j].y * pointsPerMm);
        std::fprintf(f, "stroke\n");
    }
    for (int i = 0; i < textCount; ++i)
        std::fprintf(f, "%.2f %.2f (%s) %.2f %.2f _dtfl\n", pointsOf(i)->x * pointsPerMm, pointsOf(i)->y * pointsPerMm,
                     label, 3.25 * pointsPerMm, 30.0);
    std::fprintf(f, "showpage\n");
    std::fclose(f);
}

void printWithDriver(const std::string& path, int polylines, int texts) {
    mclibPs_fopen(path.c_str());
    for (int i = 0; i < polylines; ++i) mclibPs_drawPolylineExtended(pointsOf(i), pointsOfEach, 0.35, "", -1);
    for (int i = 0; i < texts; ++i) mclibPs_drawText(pointsOf(i)->x, pointsOf(i)->y, label, 3.25, 30, 2);
    mclibPs_fclose();
}

void printWithCairo(const std::string& path, int polylines, int texts) {
    cairo_surface_t* surface = cairo_ps_surface_create(path.c_str(), 1189 * pointsPerMm, 841 * pointsPerMm);
    cairo_t* cr = cairo_create(surface);
    cairo_set_line_width(cr, 0.35 * pointsPerMm);
    for (int i = 0; i < polylines; ++i) {
        const Point3d* p = pointsOf(i);
        cairo_move_to(cr, p[0].x * pointsPerMm, p[0].y * pointsPerMm);
        for (int j = 1; j < pointsOfEach; ++j) cairo_line_to(cr, p[j].x * pointsPerMm, p[j].y * pointsPerMm);
        cairo_stroke(cr);
    }
    cairo_select_font_face(cr, "Helvetica", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, 3.25 * pointsPerMm);
    for (int i = 0; i < texts; ++i) {
        cairo_move_to(cr, pointsOf(i)->x * pointsPerMm, pointsOf(i)->y * pointsPerMm);
        cairo_show_text(cr, label);
    }
    cairo_destroy(cr);
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
}

void driverAgainstFprintf(benchmark::State& state) {
    const PrintFiles files;
    const RaceTimes best = race(
        state, [&] { printWithFprintf(files.peer); }, [&] { printWithDriver(files.ours, polylineCount, textCount); });
    if (!files.same()) state.SkipWithError("the files differ");
    state.counters["MB_per_s"] = static_cast<double>(std::filesystem::file_size(files.ours)) / best.ours * 1e-6;
}
BENCHMARK(driverAgainstFprintf)->Iterations(5)->Unit(benchmark::kMillisecond);

// A twentieth of the page, as cairo keeps all of it in memory.
void driverAgainstCairo(benchmark::State& state) {
    const PrintFiles files;
    race(
        state, [&] { printWithCairo(files.peer, polylineCount / 20, textCount / 20); },
        [&] { printWithDriver(files.ours, polylineCount / 20, textCount / 20); });
}
BENCHMARK(driverAgainstCairo)->Iterations(3)->Unit(benchmark::kMillisecond);

// ---- the front end ----

constexpr int elementCount = 100'000;

int registerApplication(int argc, char** argv) {
    return mclibMain_initMcLib("bench", argc, argv);
}

// A page of line strings on an A0 sheet, in thousandths of a millimetre.
ElementDescr* makePage() {
    static MSElementBuffer element;
    ElementDescr* page = nullptr;
    for (int i = 0; i < elementCount; ++i) {
        Point3d points[pointsOfEach];
        for (int j = 0; j < pointsOfEach; ++j)
            points[j] = {std::round(pointsOf(i)[j].x * 1000), std::round(pointsOf(i)[j].y * 1000), 0};
        if (i == 0) points[0] = {0, 0, 0}, points[1] = {1189000, 841000, 0};
        mdlLineString_create(&element, nullptr, points, pointsOfEach);
        const uint32_t color = 1, weight = 2;
        const int32_t style = 0;
        mdlElement_setSymbology(&element, &color, &weight, &style);
        if (page)
            mdlElmdscr_appendElement(page, &element);
        else
            mdlElmdscr_new(&page, nullptr, &element);
    }
    return page;
}

// The same lines from what was printed: the peer only writes.
std::vector<Point3d> pointsOfPage(const ElementDescr* page) {
    std::vector<Point3d> points;
    for (; page; page = page->next) {
        Point3d p[pointsOfEach];
        int32_t count = 0;
        mdlLinear_extract(p, &count, page->element, pointsOfEach);
        for (const Point3d& q : p) points.push_back({q.x / 1000, q.y / 1000, 0});
    }
    return points;
}

void writeWithFprintf(const std::string& path, const std::vector<Point3d>& points) {
    FILE* f = std::fopen(path.c_str(), "w");
    std::fprintf(f, "%s", psProlog.data());
    for (size_t i = 0; i < points.size(); i += pointsOfEach) {
        std::fprintf(f, "[%s] 0 setdash\n", "");
        std::fprintf(f, "%.2f setlinewidth\n", 0.35 * pointsPerMm);
        std::fprintf(f, "%.2f %.2f moveto\n", points[i].x * pointsPerMm, points[i].y * pointsPerMm);
        for (size_t j = 1; j < pointsOfEach; ++j)
            std::fprintf(f, "%.2f %.2f lineto\n", points[i + j].x * pointsPerMm, points[i + j].y * pointsPerMm);
        std::fprintf(f, "stroke\n");
    }
    std::fprintf(f, "showpage\n");
    std::fclose(f);
}

void pageAgainstFprintf(benchmark::State& state) {
    const PrintFiles files;
    host::Session session({.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {{"MC_DIR", "/usr/share/"}}});
    const host::ApplicationScope scope(session.startApplication("bench", registerApplication));
    const std::string design = files.folder / "bench.mcd";
    mdlSystem_createDesignFile(design.c_str(), 0);
    mdlSystem_newDesignFile(design.c_str(), 0);
    ElementDescr* page = makePage();
    const std::vector<Point3d> points = pointsOfPage(page);
    race(
        state, [&] { writeWithFprintf(files.peer, points); },
        [&] {
            mclibPrint_fopen(files.ours.c_str(), PRINT_POSTSCRIPT);
            mclibPrint_printElementDescr(page, 0, 0, 1189, 841);
            mclibPrint_fclose();
        });
    mdlElmdscr_freeAll(&page);
    if (!files.same()) state.SkipWithError("the files differ");
}
BENCHMARK(pageAgainstFprintf)->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
