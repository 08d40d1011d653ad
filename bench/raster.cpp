// Lines and fills in a bitmap of one bit a pixel, against FreeType's and cairo's fills without grey levels and GD's
// lines.
#include "mclib/print/raster.h"

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <cmath>
#include <random>
#include <vector>

#ifdef HAVE_FREETYPE
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#endif
#ifdef HAVE_GD
#include <gd.h>
#endif

namespace {

using Points = std::vector<int>;  // x, y

struct Scene {
    int width, height;
    std::vector<Points> outlines;
};

Scene smallTriangles() {
    Scene scene{2000, 2000, {}};
    std::mt19937 random(1);
    const auto upTo = [&](unsigned n) { return static_cast<int>(random() % n); };
    for (int i = 0; i < 10000; ++i) {
        const int x = upTo(1980), y = upTo(1980);
        Points p = {x + upTo(20), y + upTo(20), x + upTo(20), y + upTo(20), x + upTo(20), y + upTo(20)};
        p.insert(p.end(), {p[0], p[1]});
        scene.outlines.push_back(p);
    }
    return scene;
}

// `step` 1: a star with corners near and far by turns; else a polygon that joins each step-th of the corners.
Scene star(int size, int corners, int step) {
    Points p;
    for (int i = 0; i <= corners; ++i) {
        const double angle = 2 * M_PI * (static_cast<double>(i) * step / corners);
        const double radius = size * (step > 1 || i % 2 ? 0.499 : 0.2);
        p.push_back(static_cast<int>(std::lround(size / 2.0 + radius * std::cos(angle))));
        p.push_back(static_cast<int>(std::lround(size / 2.0 + radius * std::sin(angle))));
    }
    return {size, size, {p}};
}

const Scene& scene(int number) {
    static const Scene scenes[] = {smallTriangles(), star(8000, 1000, 1), star(8000, 1001, 500)};
    return scenes[number];
}

void fillLibrary(benchmark::State& state) {
    const Scene& drawn = scene(static_cast<int>(state.range(0)));
    const int size[] = {drawn.width, drawn.height}, origin[] = {0, 0};
    std::vector<unsigned char> bitmap(static_cast<size_t>(drawn.width) * static_cast<size_t>(drawn.height) / 8);
    for (auto _ : state) {
        for (const Points& p : drawn.outlines) {
            mclibRaster_fillShape(p.data(), static_cast<int>(p.size() / 2), origin, static_cast<int>(bitmap.size()),
                                  size, bitmap.data(), 1);
        }
        benchmark::ClobberMemory();
    }
}

void fillCairo(benchmark::State& state) {
    const Scene& drawn = scene(static_cast<int>(state.range(0)));
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_A1, drawn.width, drawn.height);
    cairo_t* const context = cairo_create(surface);
    cairo_set_antialias(context, CAIRO_ANTIALIAS_NONE);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
    for (auto _ : state) {
        for (const Points& p : drawn.outlines) {
            cairo_move_to(context, p[0], p[1]);
            for (size_t i = 2; i < p.size(); i += 2) cairo_line_to(context, p[i], p[i + 1]);
            cairo_fill(context);
        }
    }
    cairo_destroy(context);
    cairo_surface_destroy(surface);
}

#ifdef HAVE_FREETYPE
void fillFreetype(benchmark::State& state) {
    const Scene& drawn = scene(static_cast<int>(state.range(0)));
    FT_Library library;
    FT_Init_FreeType(&library);
    std::vector<unsigned char> pixels(static_cast<size_t>(drawn.width) * static_cast<size_t>(drawn.height) / 8);
    FT_Bitmap bitmap{};
    bitmap.width = static_cast<unsigned>(drawn.width);
    bitmap.rows = static_cast<unsigned>(drawn.height);
    bitmap.pitch = drawn.width / 8;
    bitmap.buffer = pixels.data();
    bitmap.pixel_mode = FT_PIXEL_MODE_MONO;
    std::vector<FT_Vector> points;
    std::vector<char> tags;
    for (auto _ : state) {
        for (const Points& p : drawn.outlines) {
            points.clear();
            for (size_t i = 0; i + 2 < p.size(); i += 2) points.push_back({p[i] * 64, p[i + 1] * 64});
            tags.assign(points.size(), FT_CURVE_TAG_ON);
            short end = static_cast<short>(points.size() - 1);
            FT_Outline outline{1,
                               static_cast<short>(points.size()),
                               points.data(),
                               tags.data(),
                               &end,
                               FT_OUTLINE_EVEN_ODD_FILL | FT_OUTLINE_IGNORE_DROPOUTS};
            if (FT_Outline_Get_Bitmap(library, &outline, &bitmap)) state.SkipWithError("the outline can't be drawn");
        }
    }
    FT_Done_FreeType(library);
}
#endif

constexpr int lineSize = 4000, lineCount = 100000;

const Points& randomLines() {
    static const Points points = [] {
        std::mt19937 random(2);
        Points all;
        for (int i = 0; i < 4 * lineCount; ++i) all.push_back(static_cast<int>(random() % lineSize));
        return all;
    }();
    return points;
}

void linesLibrary(benchmark::State& state) {
    const int size[] = {lineSize, lineSize}, origin[] = {0, 0};
    std::vector<unsigned char> bitmap(lineSize * lineSize / 8);
    for (auto _ : state) {
        for (int i = 0; i < lineCount; ++i) {
            mclibRaster_drawPoints(&randomLines()[static_cast<size_t>(4 * i)], origin, 2,
                                   static_cast<int>(bitmap.size()), size, bitmap.data(), 1);
        }
        benchmark::ClobberMemory();
    }
}

#ifdef HAVE_GD
void linesGd(benchmark::State& state) {
    const gdImagePtr image = gdImageCreate(lineSize, lineSize);
    gdImageColorAllocate(image, 255, 255, 255);
    const int black = gdImageColorAllocate(image, 0, 0, 0);
    for (auto _ : state) {
        for (size_t i = 0; i < randomLines().size(); i += 4) {
            const int* p = &randomLines()[i];
            gdImageLine(image, p[0], p[1], p[2], p[3], black);
        }
    }
    gdImageDestroy(image);
}
#endif

// 0: 10,000 small triangles in 2000 x 2000; 1: a star of 1000 corners in 8000 x 8000; 2: the star polygon {1001/500}.
BENCHMARK(fillLibrary)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(fillCairo)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
#ifdef HAVE_FREETYPE  // it refuses the stars
BENCHMARK(fillFreetype)->Arg(0)->Unit(benchmark::kMillisecond);
#endif
// 100,000 random lines in 4000 x 4000.
BENCHMARK(linesLibrary)->Unit(benchmark::kMillisecond);
#ifdef HAVE_GD
BENCHMARK(linesGd)->Unit(benchmark::kMillisecond);
#endif

}  // namespace

BENCHMARK_MAIN();
