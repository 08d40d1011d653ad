// Forms filled: a cell with a text for each value, made to pages, against snprintf of the same values with the same
// formats. Prints pages a second and the ratio of one run.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/race.h"
#include "bench/silent.h"
#include "mchost/mdl/cell.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/model/cell_library.h"
#include "mchost/session/front_end.h"
#include "mchost/session/session.h"
#include "mclib/forms/formatter.h"
#include "mclib/frame/main.h"

using namespace mc;

namespace {

constexpr int rows = 25;
constexpr int pagesAtATime = 20;

int registerApplication(int argc, char** argv) {
    return mclibMain_initMcLib("Bench", argc, argv);
}

// One value of the form: its column and row, and what printf would be given.
struct Value {
    int column, row;
    std::string code, format, text;
    double number;
};

// Columns take turns: text, number with two decimals, integer.
std::vector<Value> makeValues(int columns) {
    std::vector<Value> values;
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
            constexpr const char* formats[] = {"%-20", "%9.2", "%5"};
            constexpr const char* letters[] = {"s", "f", "d"};
            const std::string format = formats[column % 3];
            char code[64];
            std::snprintf(code, sizeof code, "%%%02d%sF%03d", row + 1, format.c_str(), column);
            values.push_back({column, row, code, format + letters[column % 3], "Bend " + std::to_string(row * column),
                              row * 12.25 + column});
        }
    return values;
}

class Forms {
  public:
    explicit Forms(int columns) : values(makeValues(columns)), data(mclibMatList_createFormDataArray(4, rows)) {
        for (const Value& v : values) insert(v);
        makeLibrary();
    }
    ~Forms() { mclibMatList_destroyFormDataArray(data); }

    void insert(const Value& v) const {
        char name[8];
        std::snprintf(name, sizeof name, "F%03d", v.column);
        switch (v.column % 3) {
            case 0: mclibMatList_insertValue(data, name, MCLIB_FORM_TEXT, v.row, v.text.c_str()); break;
            case 1: mclibMatList_insertValue(data, name, MCLIB_FORM_FLOAT, v.row, v.number); break;
            default: mclibMatList_insertValue(data, name, MCLIB_FORM_INTEGER, v.row, static_cast<int32_t>(v.number));
        }
    }
    // The bare work: each value as text.
    void print() const {
        for (const Value& v : values) {
            char text[512];
            switch (v.column % 3) {
                case 0: std::snprintf(text, sizeof text, v.format.c_str(), v.text.c_str()); break;
                case 1: std::snprintf(text, sizeof text, v.format.c_str(), v.number); break;
                default: std::snprintf(text, sizeof text, v.format.c_str(), static_cast<int>(v.number));
            }
            benchmark::DoNotOptimize(text);
        }
    }
    void format() const {
        const forms::FieldIndex index(data);
        for (const Value& v : values) {
            char text[512];
            forms::generateText(text, {.text = v.code.c_str(), .form = data, .index = &index});
            benchmark::DoNotOptimize(text);
        }
    }
    void makePage() const {
        ElementDescr* page = nullptr;
        if (mclibMatList_generatePageElementDescr("LIST", "bench.cel", &page, data, 1) != 0) std::abort();
        mdlElmdscr_freeAll(&page);
    }

    std::vector<Value> values;
    FormData* data;

  private:
    void makeLibrary() const {
        constexpr double uor = 10000;
        host::CellLibraryDraft draft(uor);
        ElementDescr* cell = nullptr;
        mdlCell_create(dgnBufP, L"LIST", nullptr, 0);
        mdlElmdscr_new(&cell, nullptr, dgnBufP);
        for (const Value& v : values) {
            const Point3d origin{v.column * 20 * uor, (rows - v.row) * 8 * uor, 0};
            const TextSize size{1, 2 * uor, 2.5 * uor, 0};
            mdlText_create(dgnBufP, nullptr, v.code.c_str(), &origin, nullptr, &size, nullptr, 0);
            mdlElmdscr_appendElement(cell, dgnBufP);
        }
        if (!draft.add(cell)) std::abort();
        mdlElmdscr_freeAll(&cell);
        char folder[256];
        mdlSystem_getenv(folder, "MC_CELL", sizeof folder);
        mdlCell_detachLibrary();
        draft.write(std::string(folder) + "/bench.cel");
    }
};

// A session with a design file, in a folder that goes with it.
class World {
  public:
    World() : folder_(std::filesystem::temp_directory_path() / ("forms" + std::to_string(getpid()))) {
        std::filesystem::create_directories(folder_);
        mdlSystem_defineCfgVar("MC_CELL", folder_.c_str(), 4);
        const std::string file = folder_ / "bench.mcd";
        if (mdlSystem_createDesignFile(file.c_str(), 0) != MDL_SUCCESS ||
            mdlSystem_newDesignFile(file.c_str(), 0) != MDL_SUCCESS)
            std::abort();
    }
    ~World() {
        mdlCell_detachLibrary();
        std::filesystem::remove_all(folder_);
    }

  private:
    host::Session session_{{.frontEnd = std::make_unique<SilentFrontEnd>(), .variables = {{"MC_DIR", "/usr/share/"}}}};
    host::ApplicationScope scope_{session_.startApplication("bench", registerApplication)};
    std::filesystem::path folder_;
};

// Columns of the form: 8 make 200 values on a page, 200 make 5,000.
void pages(benchmark::State& state) {
    const World world;
    const Forms forms(static_cast<int>(state.range(0)));
    const auto repeat = [](auto work) {
        for (int i = 0; i < pagesAtATime; ++i) work();
    };
    const RaceTimes best = race(
        state, [&] { repeat([&] { forms.print(); }); }, [&] { repeat([&] { forms.makePage(); }); });
    state.counters["pages_per_s"] = pagesAtATime / best.ours;
}
BENCHMARK(pages)->Arg(8)->Arg(200)->Unit(benchmark::kMillisecond);

void formatterAlone(benchmark::State& state) {
    const World world;
    const Forms forms(static_cast<int>(state.range(0)));
    race(
        state, [&] { forms.print(); }, [&] { forms.format(); });
}
BENCHMARK(formatterAlone)->Arg(8)->Arg(200)->Unit(benchmark::kMillisecond);

void insertion(benchmark::State& state) {
    const World world;
    const Forms forms(static_cast<int>(state.range(0)));
    race(
        state, [&] { forms.print(); },
        [&] {
            for (const Value& v : forms.values) forms.insert(v);
        });
}
BENCHMARK(insertion)->Arg(8)->Arg(200)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
