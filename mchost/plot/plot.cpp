// The calls on plot descriptions and plotters.
#include "mchost/mdl/plot.h"

#include <cstring>
#include <memory>
#include <stdexcept>

#include "mchost/base/charset.h"
#include "mchost/base/guard.h"
#include "mchost/base/paths.h"
#include "mchost/plot/plotter.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"

namespace host {
namespace {

enum { UNITS_MILLIMETRES = 4 };
enum { ANSWER_NONE = 1, ANSWER_CHOSEN = 2 };

// Cut to what a buffer of the interface holds; the length.
int give(char* buffer, const std::string& utf8) {
    const std::string narrow = narrowFromUtf8(utf8).text.substr(0, MDL_PLOT_TEXT_BYTES - 1);
    if (buffer) std::memcpy(buffer, narrow.c_str(), narrow.size() + 1);
    return static_cast<int>(narrow.size());
}

bool hasExtent(const Fence& area) {
    RangeBuilder range;
    for (const Point3d& corner : area.corners) range.add(rotate(viewRotation(area.view), corner));
    if (!range.any()) return false;
    const Point3d span = range.range().high - range.range().low;
    return span.x > 0 && span.y > 0;
}

}  // namespace
}  // namespace host

using namespace host;

MdlPlotDesc* mdlPlotDesc_createFromTCBAndPltFile(const char* pltFile) noexcept {
    return guarded<MdlPlotDesc*>(nullptr, [&]() -> MdlPlotDesc* {
        if (!pltFile || *pltFile == '\0') {
            throw std::runtime_error("There is no plot: no plot driver file (.plt) is chosen.");
        }
        PlotDriver driver = readPlotDriver(systemPath(pltFile));
        const size_t paper = driver.defaultPaper;
        return new MdlPlotDesc{.plotter = {std::move(driver)}, .paper = paper, .area = {}};
    });
}

void mdlPlotDesc_destroy(MdlPlotDesc* descr) noexcept {
    delete descr;
}

int mdlPlotDesc_setPaperSize(MdlPlotDesc* descr, const char* name) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const size_t paper = descr && name ? findPaper(descr->plotter.driver, utf8FromNarrow(name)) : size_t{SIZE_MAX};
        if (paper == SIZE_MAX) return MDL_ERROR;
        descr->paper = paper;
        return MDL_SUCCESS;
    });
}

int mdlPlotDesc_getPaperSize(char* buffer, const MdlPlotDesc* descr) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!descr) return MDL_ERROR;
        give(buffer, descr->plotter.driver.papers[descr->paper].name);
        return MDL_SUCCESS;
    });
}

int mdlPlotDesc_setUnits(MdlPlotDesc* descr, int32_t units) noexcept {
    return descr && units == UNITS_MILLIMETRES ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

int mdlPlotDesc_setViewFlags(MdlPlotDesc* descr, const ViewFlags* flags) noexcept {
    return descr && flags ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

int mdlPlotDesc_setFenceFromTCB(MdlPlotDesc* descr, int32_t use) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!descr) return MDL_ERROR;
        const Fence* fence = activeFence();
        if (use != 0 && (!fence || !hasExtent(*fence))) return MDL_ERROR;
        descr->area = use != 0 ? std::optional(*fence) : std::nullopt;
        return MDL_SUCCESS;
    });
}

int mdlPlotDesc_setNumCopies(MdlPlotDesc* descr, int32_t copies) noexcept {
    if (!descr || copies < 1) return MDL_ERROR;
    descr->copies = copies;
    return MDL_SUCCESS;
}

int mdlPlotDesc_maximize(MdlPlotDesc* descr) noexcept {
    return descr && descr->area ? int{MDL_SUCCESS} : int{MDL_ERROR};
}

int mdlPlotDesc_plot(MdlPlotDesc* descr, const char* fileName) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!descr) return MDL_ERROR;
        const auto failure = plot(*descr, !fileName ? std::string() : systemPath(fileName));
        if (!failure) return MDL_SUCCESS;
        reportError(narrowFromUtf8(*failure).text.c_str());
        return MDL_ERROR;
    });
}

int mdlPlotDesc_getSysPrinter(char* buffer, const MdlPlotDesc* descr) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::string printer = !descr ? std::string() : descr->plotter.driver.printer;
        return give(buffer, printer) > 0 ? MDL_SUCCESS : MDL_ERROR;
    });
}

MdlPlotter* mdlPlotDesc_getPlotter(MdlPlotDesc* descr) noexcept {
    return !descr ? nullptr : &descr->plotter;
}

int mdlPlotDesc_setPlotter(MdlPlotDesc* descr, const MdlPlotter* plotter) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!descr || !plotter) return MDL_ERROR;
        PlotDriver driver = plotter->driver;
        const size_t paper = findPaper(driver, descr->plotter.driver.papers[descr->paper].name);
        descr->paper = paper == SIZE_MAX ? driver.defaultPaper : paper;
        descr->plotter.driver = std::move(driver);
        return MDL_SUCCESS;
    });
}

int mdlPlotter_getInt(int32_t* value, const MdlPlotter* plotter, int32_t which) noexcept {
    if (!plotter) return MDL_ERROR;
    bool is = false;
    switch (which) {
        case MDL_PLOTTER_HAS_OUTPUT_NAME: is = !plotter->driver.outputName.empty(); break;
        case MDL_PLOTTER_IS_SYSTEM: is = !plotter->driver.printer.empty(); break;
        default: return MDL_ERROR;
    }
    if (value) *value = is;
    return MDL_SUCCESS;
}

int mdlPlotter_getString(char* buffer, const MdlPlotter* plotter, int32_t which) noexcept {
    return guarded<int>(-1, [&]() -> int {
        if (!plotter) return -1;
        switch (which) {
            case MDL_PLOTTER_OUTPUT_NAME: return give(buffer, plotter->driver.outputName);
            case MDL_PLOTTER_EXTENSION: return give(buffer, plotter->driver.extension);
            default: return -1;
        }
    });
}

int mdlPlotter_showSystemPrintdlg(int32_t* answer, MdlPlotter* plotter, int32_t, int32_t) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if (!plotter) return MDL_ERROR;
        const auto choice = choosePrinter(plotter->driver.printer);
        if (!choice) return MDL_ERROR;
        if (choice->chosen) plotter->driver.printer = choice->name;
        if (answer) *answer = choice->chosen ? ANSWER_CHOSEN : ANSWER_NONE;
        return MDL_SUCCESS;
    });
}
