// The plot of pages through the host: they lie in the design file for a moment, are fenced one by one and plotted.
#include "mclib/forms/plotting.h"

#include <array>
#include <span>
#include <string>
#include <utility>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/fence.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/plot.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mclib/forms/page_list.h"
#include "mclib/forms/placing.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/shown_path.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/plot_name.h"
#include "mclib/print/shared.h"
#include "resources/ids.h"

namespace mc {

// A page of a plot, while it lies in the design file.
struct PlotPage {
    Point3d low, high;  // the page's printable area in the design file: lower left and upper right corner
    FilePos filePos;    // of its temporary element; 0: none
    int32_t view;       // of the data point; the first record's counts
    char name[256];
};

}  // namespace mc

namespace mc::forms {

namespace {

using mc::print::plotOf;

enum { UNITS_MILLIMETRES = 4 };
constexpr int pointBox = MSGBOX_KIND_4 | MSGBOX_FIRST_64;
constexpr int goOnBox = MSGBOX_KIND_1 | MSGBOX_FIRST_64 | MSGBOX_SECOND_512;

struct PaperName {
    int32_t pageSize;
    const char* name;
};
constexpr auto paperNames = std::to_array<PaperName>({
    {1, "A0"},
    {3, "A1"},
    {5, "A2"},
    {7, "A3"},
    {11, "A5"},
});

const char* paperName(int32_t pageSize) {
    for (const PaperName& row : paperNames)
        if (row.pageSize == pageSize) return row.name;
    return "A4";
}

// ---- the description ----

bool preparePlot(GlobalData& data) {
    dropPlot(data);
    MdlPlotDesc* const descr = mdlPlotDesc_createFromTCBAndPltFile(mclibpsd->plotterFile);
    data.plotDescr = descr;
    if (!descr) return false;
    const ViewFlags none{};
    mdlPlotDesc_setPaperSize(descr, paperName(mclibpsd->pageSize));
    mdlPlotDesc_setUnits(descr, UNITS_MILLIMETRES);
    mdlPlotDesc_setViewFlags(descr, &none);
    return true;
}

// ---- the records ----

std::span<PlotPage> placedPages(const GlobalData& data) {
    return {data.plotList, static_cast<size_t>(data.plotList ? data.fileDialogP->plotPlaced : 0)};
}

bool allocateRecords(GlobalData& data) {
    const int32_t count = pagesToPrint(data).size();
    data.fileDialogP->plotCount = data.fileDialogP->plotPlaced = 0;
    if (count < 1) return false;
    const size_t size = static_cast<size_t>(count) * sizeof(PlotPage);
    data.plotList = static_cast<PlotPage*>(mclibMem_mallocRscErrorPrintf(size, MCLIB_ERRORS, MCLIB_OUT_OF_MEMORY));
    if (!data.plotList) return false;
    data.fileDialogP->plotCount = count;
    return true;
}

void recordPage(GlobalData& data, int32_t number, int32_t view, const PlacedPage& placed) {
    PlotPage& page = data.plotList[data.fileDialogP->plotPlaced++];
    mdlCurrTrans_transformPointArray(&page.low, &placed.area.at[0], 1);
    mdlCurrTrans_transformPointArray(&page.high, &placed.area.at[2], 1);
    page.filePos = placed.position;
    page.view = view;
    copyText(page.name, pageName(data, number));
}

void removePage(PlotPage& page) {
    if (page.filePos != 0) mdlElement_undoableDelete(nullptr, page.filePos, 1);
    page.filePos = 0;
}

// ---- one page ----

// The area of the page as a shape, upright in the view.
bool fenceIn(const PlotPage& page, int32_t view) {
    const ViewSystem system({0, 0, 0}, view);
    Point3d ends[] = {page.low, page.high};
    mdlCurrTrans_invtransPointArray(ends, ends, 2);
    const Corners area = rectangle(ends[0], ends[1]);
    return mdlShape_create(dgnBufP, nullptr, area.at, 5, 0) == MDL_SUCCESS &&
           mdlFence_fromShape(dgnBufP) == MDL_SUCCESS;
}

// The file of the page; empty for a system printer.
std::string fileFor(MdlPlotDesc* descr, const PlotPage& page) {
    const MdlPlotter* plotter = mdlPlotDesc_getPlotter(descr);
    if (print::plotsToSystem(plotter)) return {};
    const std::string file = print::plotterFile(plotter);
    return file.empty() ? print::plotFileName(page.name, print::plotterExtension(plotter)) : file;
}

bool plotPage(MdlPlotDesc* descr, const PlotPage& page) {
    mdl::printMessage(MDL_FIELD_MESSAGE, ids::questions::printingPage, page.name);
    if (mdlPlotDesc_setFenceFromTCB(descr, 1) != MDL_SUCCESS) return false;
    mdlPlotDesc_setNumCopies(descr, mclibpsd->copies);
    mdlPlotDesc_maximize(descr);
    const std::string file = fileFor(descr, page);
    if (mdlPlotDesc_plot(descr, file.empty() ? nullptr : file.c_str()) != MDL_SUCCESS) return false;
    if (!file.empty())
        toolSubsystem_printf("%s: %s\n", mc::languageText(ids::texts::plotted), shownPath(file.c_str()).c_str());
    return true;
}

// ---- the run ----

// The pages of a plot while they lie in the design file: none is left there, nor the fence, when this ends.
class PagesInDrawing {
  public:
    explicit PagesInDrawing(GlobalData& data) : data_(data) {}
    ~PagesInDrawing() {
        for (PlotPage& page : placedPages(data_)) removePage(page);
        dlmSystem_mdlFree(std::exchange(data_.plotList, nullptr));
        data_.fileDialogP->plotCount = data_.fileDialogP->plotPlaced = 0;
        mdlFence_clear(0);
    }
    PagesInDrawing(const PagesInDrawing&) = delete;
    PagesInDrawing& operator=(const PagesInDrawing&) = delete;

  private:
    GlobalData& data_;
};

// A page of several elements becomes the content of a cell without a name, so that it goes again as one.
bool gather(Page& page) {
    if (!page.get()->next) return true;
    ElementDescr* cell = nullptr;
    const bool made = mdlCell_create(dgnBufP, L"", nullptr, *mgds_modesP) == MDL_SUCCESS &&
                      mdlElmdscr_new(&cell, nullptr, dgnBufP) == MDL_SUCCESS;
    if (!made) return false;
    const bool gathered = mdlElmdscr_appendDscr(cell, page.get()) == MDL_SUCCESS;
    if (gathered)
        *page.out() = cell;
    else
        mdlElmdscr_freeAll(&cell);
    return gathered;
}

void placeAll(GlobalData& data, const Point3d& point, int32_t view) {
    forEachSheet(data, point, view, [&](int32_t number) {
        const PlacedPage placed = placePage(data, number, false, gather);
        recordPage(data, number, view, placed);
        return tellUnlessPlaced(data, number, placed);
    });
}

// Whether the user wants the pages behind one that failed; there is nothing to ask when it was the last.
bool goesOnAfter(const PlotPage& failed, bool isLast) {
    mdlSystem_noteFailure();
    if (!isLast) return mc::showBox(goOnBox, ids::errors::notPlottedGoOn, failed.name) != MSGBOX_SECOND;
    mc::showNotice(ids::errors::notPlotted, failed.name);
    return false;
}

void plotAll(const GlobalData& data) {
    const std::span<PlotPage> pages = placedPages(data);
    for (PlotPage& page : pages) {
        if (page.filePos == 0) continue;
        mdlFence_setView(pages.front().view);
        const bool plotted = fenceIn(page, pages.front().view) && plotPage(plotOf(data), page);
        removePage(page);
        if (!plotted && !goesOnAfter(page, &page == &pages.back())) return;
    }
}

// Whether a system printer has something to make. Tells when not.
bool hasCopies(const GlobalData& data) {
    if (mclibpsd->copies > 0 || !print::plotsToSystem(mdlPlotDesc_getPlotter(plotOf(data)))) return true;
    mc::showNotice(ids::errors::noCopies);
    mdlSystem_noteFailure();
    return false;
}

}  // namespace

void dropPlot(GlobalData& data) {
    mdlPlotDesc_destroy(plotOf(data));
    data.plotDescr = nullptr;
    data.placeForPlot = 0;
}

void plotAt(GlobalData& data, const Point3d& point, int32_t view) {
    if (plotOf(data) && allocateRecords(data)) {
        const PagesInDrawing pages(data);
        placeAll(data, point, view);
        plotAll(data);
    }
    dropPlot(data);
    mdl::printMessage(MDL_FIELD_MESSAGE, ids::questions::nothing);
}

void plotPages(GlobalData& data) {
    if (!hasDrawing() || !preparePlot(data)) return mdlSystem_noteFailure();
    int32_t reply = 0;
    mdlDialog_openModal(&reply, 0, ids::print::id);
    if (reply != MDL_REPLY_FIRST || !hasCopies(data)) return dropPlot(data);
    mc::showBox(pointBox, ids::questions::giveThePoint);
    startPlacing(data, true);
}

}  // namespace mc::forms
