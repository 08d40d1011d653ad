// Symbols among 1,000,000 elements: circles with a text beside them, each as one ellipse or as two arcs, counted for
// 1,000, 10,000 and 100,000 of them. The peer is a bare scan that reads the elements of their types.
#include "mclib/design/element_search.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <numbers>
#include <optional>
#include <random>
#include <string>

#include "bench/race.h"
#include "bench/silent.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/text.h"
#include "mchost/session/session.h"

namespace {

constexpr int elementCount = 1'000'000, columns = 1000;
constexpr double pi = std::numbers::pi;

void add(const MSElementBuffer& element) {
    if (mdlElement_add(&element) == 0) std::abort();
}

class Drawing {
  public:
    explicit Drawing(int symbols) : symbols_(symbols) {
        const auto file = std::filesystem::temp_directory_path() / ("symbols-" + std::to_string(getpid()) + ".mcd");
        mdlSystem_createDesignFile(file.c_str(), 0);
        mdlSystem_newDesignFile(file.c_str(), 0);
        std::filesystem::remove(file);
        scope_.emplace(session_.startApplication("recognition", [](int, char**) { return 0; }));
        const mdl::CurrTransScope masterUnits(mdl::CurrTransScope::Begin::masterUnits);
        for (int i = 0; i < elementCount / 4; ++i) addPlace(i);
    }

  private:
    // Four elements: a symbol, of two of them or three, or lines and texts that aren't one.
    void addPlace(int i) {
        const Point3d at = {i % columns * 20.0, i / columns * 20.0, 0};
        const bool isSymbol = static_cast<long>(i) * symbols_ / (elementCount / 4) !=
                              static_cast<long>(i + 1) * symbols_ / (elementCount / 4);
        const bool hasArcs = i % 2 == 0;
        int lines = 4;
        if (isSymbol) {
            addText(at, "V-");
            for (int half = 0; half < (hasArcs ? 2 : 1); ++half) addCircle(at, hasArcs, half * pi);
            lines -= hasArcs ? 3 : 2;
        } else {
            addText(at, "note ");
            --lines;
        }
        for (int line = 0; line < lines; ++line) {
            const Point3d ends[] = {{at.x, at.y + 8 + line, 0}, {at.x + 15, at.y + 8 + line, 0}};
            mdlLine_create(element_.get(), nullptr, ends);
            add(*element_);
        }
    }
    void addText(const Point3d& at, const char* beginning) {
        const TextSize size = {1, 1, 1, 1};
        const Point3d origin = {at.x + 3, at.y, 0};
        const std::string text = beginning + std::to_string(100 + random_() % 900);
        mdlText_create(element_.get(), nullptr, text.c_str(), &origin, nullptr, &size, nullptr, 0);
        add(*element_);
    }
    void addCircle(const Point3d& at, bool isArc, double start) {
        if (isArc) {
            mdlArc_create(element_.get(), nullptr, &at, 2, 2, nullptr, start, pi);
        } else {
            mdlEllipse_create(element_.get(), nullptr, &at, 2, 2, nullptr, 0);
        }
        add(*element_);
    }

    const int symbols_;
    host::Session session_{{.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {}}};
    std::optional<host::ApplicationScope> scope_;  // the search is one command of an application
    std::mt19937 random_{7};
    std::unique_ptr<MSElementBuffer> element_ = std::make_unique<MSElementBuffer>();
};

// How many were found.
int recognise(const char* pattern, bool deleteTexts = false) {
    static const Point3d low[] = {{2.5, -1, 0}}, high[] = {{4, 2, 0}};
    SearchTextSpec text = {};
    std::strcpy(text.pattern, pattern);
    text.weight = text.style = text.color = -1;
    text.minHeight = text.maxHeight = -1;
    SearchElementSpec spec = {};
    spec.group = SEARCH_GROUP_CIRCLE;
    spec.minSizeA = 1.9;
    spec.maxSizeA = 2.1;
    spec.minSizeB = spec.maxSizeB = -1;
    spec.weight = spec.style = spec.color = -1;
    spec.regionLow = low;
    spec.regionHigh = high;
    spec.regionCount = 1;
    spec.textSpecs = &text;
    spec.textSpecCount = 1;
    int found = 0;
    const auto count = [](int*, ElementDescr*, MSElementBuffer*, int32_t*, SearchElementSpec*, void* arg) {
        ++*static_cast<int*>(arg);
    };
    mclibSearch_InitElement();
    mclibSearch_Element(&spec, count, &found, nullptr, nullptr, deleteTexts);
    return found;
}

int readAll(MSElementBuffer* element) {
    const mdl::Scan scan(mdlModelRef_getActive());
    for (const int32_t type : {MDL_ELLIPSE, MDL_ARC, MDL_TEXT})
        mdlScanCriteria_addSingleElementTypeTest(scan.criteria(), type);
    int read = 0;
    for (const FilePos position : scan) read += mdlElement_read(element, mdlModelRef_getActive(), position) != 0;
    return read;
}

void recognition(benchmark::State& state) {
    const auto symbols = static_cast<int>(state.range(0));
    const Drawing drawing(symbols);
    const auto element = std::make_unique<MSElementBuffer>();
    if (recognise("V-###") != symbols) state.SkipWithError("not all symbols were found");  // makes the range index
    int found = 0;
    const RaceTimes times = race(
        state, [&] { benchmark::DoNotOptimize(readAll(element.get())); }, [&] { found = recognise("V-###"); });
    state.counters["us_a_symbol"] = times.ours / found * 1e6;
}
BENCHMARK(recognition)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Iterations(5)->Unit(benchmark::kMillisecond);

// The same when the texts of all symbols are deleted.
void deletion(benchmark::State& state) {
    const auto symbols = static_cast<int>(state.range(0));
    const Drawing drawing(symbols);
    recognise("-");  // makes the range index
    int found = 0;
    for (auto _ : state) found = recognise("V-###", true);
    if (found != symbols || recognise("V-###") != 0) state.SkipWithError("not all texts were deleted");
}
BENCHMARK(deletion)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
