// Arrows: one built and written, against the bare building of the same elements; and one move of the cursor in each
// command that changes arrows.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "bench/race.h"
#include "bench/silent.h"
#include "mchost/command/command.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/owned.hpp"
#include "mchost/mdl/state.h"
#include "mchost/mdl/text.h"
#include "mchost/session/session.h"
#include "mclib/arrows/arrows.h"
#include "mclib/elmattr/attributes.h"
#include "mclib/frame/main.h"
#include "mclib/geometry/builders.h"
#include "mclib/geometry/textsize.h"

namespace {

constexpr int textAttr = 1, lineAttr = 2, headAttr = 3;
constexpr int arrowsAtATime = 200;
constexpr char text[] = "DN 200\nPVC SDR 34\nfall 8 o/oo";
constexpr const char* lines[] = {"DN 200", "PVC SDR 34", "fall 8 o/oo"};
constexpr double uor = 10000;

int registerApplication(int argc, char** argv) {
    return mclibMain_initMcLib("Bench", argc, argv);
}

void check(bool good) {
    if (!good) std::abort();
}

// A session with a design file, in a folder that goes with it, and the attributes of an arrow.
class World {
  public:
    World() : folder_(std::filesystem::temp_directory_path() / ("arrows" + std::to_string(getpid()))) {
        std::filesystem::create_directories(folder_);
        const std::string file = folder_ / "bench.mcd";
        check(mdlSystem_createDesignFile(file.c_str(), 0) == MDL_SUCCESS &&
              mdlSystem_newDesignFile(file.c_str(), 0) == MDL_SUCCESS);
        mclibElmAttr_setGroupeNames(1, "Group", 1, 0);
        ElmAttrData data{};
        data.useFlags = ATTR_USE_COLOR | ATTR_USE_SIZE;
        data.textHeight = data.textWidth = 2;
        data.textLineSpacing = 1;
        for (const int attrId : {textAttr, lineAttr, headAttr}) {
            data.color = attrId;
            const int kind = attrId == textAttr ? ATTR_KIND_TEXT : ATTR_KIND_SYMBOLOGY;
            mclibElmAttr_addAttribute(attrId, "attribute", 1, kind, 0, nullptr, 0, &data);
        }
    }
    ~World() { std::filesystem::remove_all(folder_); }

  private:
    host::Session session_{{.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {{"MC_DIR", "/usr/share/"}}}};
    host::ApplicationScope scope_{session_.startApplication("bench", registerApplication)};
    std::filesystem::path folder_;
};

void drawArrow() {
    const Point3d vertices[] = {{-40 * uor, 0, 0}, {-20 * uor, 0, 0}, {0, 0, 0}};
    check(mclibArrow_drawTextArrow(vertices, 3, textAttr, lineAttr, headAttr, 1, 0, text, nullptr, 3, 2,
                                   ARROW_FRAME_BOX_SIDE, 0) == MCLIB_SUCCESS);
}

// ---- the bare building of the same ----

constexpr Point3d box[] = {{-8, -7, 0}, {8, -7, 0}, {8, 7, 0}, {-8, 7, 0}, {-8, -7, 0}};
constexpr Point3d leader[] = {{-40, 0, 0}, {-20, 0, 0}, {-8, 0, 0}};
constexpr Point3d head[] = {{-40, 0, 0}, {-38, -1, 0}, {-38, 1, 0}, {-40, 0, 0}};

void addCell(mdl::Descr& cell) {
    mdlCell_setRange(cell.get(), nullptr);
    check(mdlElmdscr_add(cell.get()) != 0);
}

void startCell(mdl::Descr& cell) {
    mdlCell_create(dgnBufP, L"", nullptr, 0);
    check(mdlElmdscr_new(cell.out(), nullptr, dgnBufP) == MDL_SUCCESS);
}

// By the builders that dress elements by attribute; with the size of the text, where the box isn't known.
void buildShapes(bool measured) {
    const mdl::CurrTransScope master(mdl::CurrTransScope::Begin::masterUnits);
    double width = 0, height = 0, total = 0;
    if (measured) mclibUtil_extractTextSize(text, 1, textAttr, 2, &width, &height, &total, nullptr);
    benchmark::DoNotOptimize(width);
    constexpr int leftCentre = 1;
    mdl::Descr cell;
    startCell(cell);
    mclibElement_createShape(box, 5, 0, lineAttr, cell.get());
    Point3d origin = {-7, 4, 0};
    for (const char* line : lines) {
        mclibElement_createText(&origin, line, 1, &leftCentre, textAttr, cell.get());
        origin.y -= 4;
    }
    mclibElement_createLineString(leader, 3, lineAttr, cell.get());
    mclibElement_createShape(head, 4, 1, headAttr, cell.get());
    addCell(cell);
}

// 1: the text is measured on the other side too.
void buildArrow(benchmark::State& state) {
    const World world;
    const auto repeat = [](auto work) {
        for (int i = 0; i < arrowsAtATime; ++i) work();
    };
    const RaceTimes best = race(
        state, [&] { repeat([&] { buildShapes(state.range(0) != 0); }); }, [&] { repeat(drawArrow); });
    state.counters["us_an_arrow"] = best.ours / arrowsAtATime * 1e6;
    state.counters["of_its_time"] = best.ours / best.peer;
}
BENCHMARK(buildArrow)->Arg(0)->Arg(1)->Iterations(50)->Unit(benchmark::kMillisecond);

// ---- a move of the cursor ----

void looks(int* headType, double* headSize, double* scale, int* leaderMode, int* frameKind, double* angle,
           double* width) {
    *headType = 3;
    *headSize = 2;
    *scale = 1;
    *leaderMode = 0;
    *frameKind = ARROW_FRAME_BOX_SIDE;
    *angle = *width = 0;
}

void place() {
    mdlState_startPrimitive(nullptr, place, 0, 0);
    mclibArrow_drawTextAndArrow(1, 1, textAttr, lineAttr, headAttr, 1, nullptr, nullptr, text, nullptr, nullptr,
                                nullptr, nullptr, nullptr, nullptr, nullptr, looks, nullptr);
}
void insertVertex() {
    mclibArrow_insertVertex(0, 0, nullptr, nullptr, nullptr, nullptr);
}
void moveHead() {
    mclibArrow_moveArrowHead(0, 0, nullptr, nullptr, nullptr, nullptr);
}
void moveTextAndSymbol() {
    mclibArrow_moveTextAndSymbol(0, 0, nullptr, nullptr, nullptr, nullptr);
}
void moveText() {
    mclibArrow_moveText(0, 0, nullptr, nullptr, nullptr, nullptr);
}
void addLeader() {
    mclibArrow_addArrow(0, 0, lineAttr, headAttr, nullptr, nullptr, nullptr, looks, nullptr);
}

// The command, and where the arrow is pointed at.
void moveCursor(benchmark::State& state, void (*start)(), double x, double y) {
    const World world;
    drawArrow();
    start();
    host::giveDataPoint({x * uor, y * uor, 0}, 0);
    double at = 0;
    for (auto _ : state) {
        at += 1;
        check(host::moveCursor({-30 * uor, at, 0}, 0));
    }
    check(!host::dynamicElements().empty());
    mdlState_startDefaultCommand();
}
BENCHMARK_CAPTURE(moveCursor, placing, place, -30, 0)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(moveCursor, insertVertex, insertVertex, -30, 0)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(moveCursor, moveHead, moveHead, -30, 0)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(moveCursor, moveTextAndSymbol, moveTextAndSymbol, 0, 5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(moveCursor, moveText, moveText, 0, 5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(moveCursor, addLeader, addLeader, 0, 5)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
