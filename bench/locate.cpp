// Locating among 1,000,000 elements: what a click costs from the point to the located element, once the range index is
// made and the elements are read.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "mchost/command/command.h"
#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/locate.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/snap.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/view.h"
#include "mchost/session/session.h"

namespace {

constexpr int elementCount = 1'000'000;
constexpr double side = 1e8;             // of the square that the elements lie in, UOR
constexpr double viewSide = side / 100;  // a click reaches 1/80 of that: some 1.5 elements lie there on the average

int accepts(const MSElementBuffer*, ModelRef*, FilePos) {
    return MDL_LOCATE_ACCEPT;
}

struct TemporaryFile {
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("locate-" + std::to_string(getpid()) + ".mcd");
    ~TemporaryFile() { std::filesystem::remove(path); }
};

// A session with the drawing open; it stays until the program ends.
class Drawing {
  public:
    Drawing() {
        mdlSystem_createDesignFile(file_.path.c_str(), 0);
        mdlSystem_newDesignFile(file_.path.c_str(), 0);
        fill();
        if (mdlSystem_saveDesignFile() != MDL_SUCCESS) std::abort();
        const Point3d origin{side / 2, side / 2, 0}, extent{viewSide, viewSide, 0};
        mdlView_setArea(0, &origin, &extent);
    }

    Point3d somewhere() {
        std::uniform_real_distribution<double> place(side / 2, side / 2 + viewSide);
        return {place(random_), place(random_), 0};
    }

  private:
    void fill() {
        std::uniform_real_distribution<double> place(0, side), step(0, side / 1000);
        static MSElementBuffer buffer;
        for (int i = 0; i < elementCount; ++i) {
            const Point3d from{place(random_), place(random_), 0};
            Point3d points[9];
            for (Point3d& p : points) p = {from.x + step(random_), from.y + step(random_), 0};
            mdlLineString_create(&buffer, nullptr, points, 9);
            if (mdlElement_add(&buffer) == 0) std::abort();
        }
    }

    TemporaryFile file_;
    host::Session session_;
    std::mt19937_64 random_{20261123};
};

Drawing& drawing() {
    static Drawing made;
    return made;
}

void startCommand() {
    const int32_t types[] = {MDL_LINE_STRING};
    mdlState_startModifyCommand(nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0, 0, 0);
    mdlLocate_setFunction(MDL_LOCATE_POST, reinterpret_cast<MdlStateFunction>(accepts));
    mdlLocate_noElemNoLocked();
    mdlLocate_setElemSearchMask(1, types);
}

// A click and the reset that lets go of what it located.
void click(benchmark::State& state) {
    Drawing& all = drawing();
    startCommand();
    host::giveDataPoint(all.somewhere(), 0);
    int64_t located = 0;
    for (auto _ : state) {
        startCommand();
        host::giveDataPoint(all.somewhere(), 0);
        located += mdlElement_getFilePos(MDL_FILE_POS_ELEMENT, nullptr) != 0;
    }
    state.counters["located"] = static_cast<double>(located) / static_cast<double>(state.iterations());
    mdlState_startDefaultCommand();
}
BENCHMARK(click)->Unit(benchmark::kMicrosecond);

void snapToEnd(benchmark::State& state) {
    Drawing& all = drawing();
    for (auto _ : state) {
        Point3d point = all.somewhere();
        benchmark::DoNotOptimize(mdlSnap_toElement(&point, 0, MDL_SNAP_END));
    }
}
BENCHMARK(snapToEnd)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
