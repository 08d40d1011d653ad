// The command that places pages in the drawing, for good or for the time of a plot.
#include "mclib/forms/placing.h"

#include <algorithm>

#include "mchost/mdl/element.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/state.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/transform.h"
#include "mclib/forms/page_list.h"
#include "mclib/forms/plotting.h"
#include "mclib/forms/sheet.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/util.h"
#include "mclib/geometry/elmdscr.h"
#include "mclib/print/shared.h"
#include "resources/ids.h"

namespace mc::forms {

namespace {

constexpr double crossArm = 2;  // master units

double uor(double master) {
    return *mclibUtil_masterToUORP(master);
}

// ---- sheets; a millimetre of the sheet is a master unit of the drawing ----

struct SheetSize {
    double width, height;  // UOR
};

SheetSize sheetSize() {
    const double width = uor(mclibpsd->pageWidth), height = uor(mclibpsd->pageHeight);
    return mclibpsd->orientation == orientationTurned ? SheetSize{height, width} : SheetSize{width, height};
}

Corners sheetOutline() {
    const SheetSize sheet = sheetSize();
    return rectangle({0, -sheet.height, 0}, {sheet.width, 0, 0});
}

Corners placedArea() {
    const SheetSize sheet = sheetSize();
    return rectangle({uor(mclibpsd->marginLeft), uor(mclibpsd->marginBottom) - sheet.height, 0},
                     {sheet.width - uor(mclibpsd->marginRight), -uor(mclibpsd->marginTop), 0});
}

// Margins may leave nothing of a sheet.
bool isEmpty(const Corners& area) {
    return !(area.at[0].x < area.at[2].x && area.at[0].y < area.at[2].y);
}

// From the sheet with that number in its range, counted from 0, to the next one.
Point3d stepBehind(int32_t sheet, int32_t pagesPerRow) {
    const SheetSize size = sheetSize();
    const int32_t inRow = std::max(pagesPerRow, 1);
    if ((sheet + 1) % inRow == 0) return {(1 - inRow) * size.width, -size.height, 0};
    return {size.width, 0, 0};
}

// ---- what lies in the drawing ----

void setGroup(MSElementBuffer* element, uint32_t group) {
    mdlElement_setProperties(element, nullptr, &group, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

int setGroupOf(MSElementBuffer* element, void* group, int32_t, int32_t, ElementDescr*) {
    setGroup(element, *static_cast<const uint32_t*>(group));
    return 0;
}

bool addLine(const Point3d& from, const Point3d& to, uint32_t group) {
    const Point3d ends[] = {from, to};
    if (mdlLine_create(dgnBufP, nullptr, ends) != MDL_SUCCESS) return false;
    setGroup(dgnBufP, group);
    if (mdlElement_add(dgnBufP) == 0) return false;
    mdlElement_display(dgnBufP, MDL_DRAW);
    return true;
}

// False when the design file doesn't take them.
bool markCorners(uint32_t group) {
    const double arm = uor(crossArm);
    const Corners sheet = sheetOutline();
    return std::all_of(sheet.at, sheet.at + 4, [&](const Point3d& p) {
        return addLine({p.x - arm, p.y, p.z}, {p.x + arm, p.y, p.z}, group) &&
               addLine({p.x, p.y - arm, p.z}, {p.x, p.y + arm, p.z}, group);
    });
}

// The page function builds in a system of its own.
void makeInOwnSystem(GlobalData& data, int32_t number, bool inDrawing, Page& page) {
    const mdl::CurrTransScope own(mdl::CurrTransScope::Begin::uor);
    makePage(data, number, inDrawing, page.out());
}

// ---- the command ----

void showSheets(Point3d* point, int32_t view, int32_t drawMode) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    if (!data) return;
    const Corners outline = sheetOutline();
    forEachSheet(*data, *point, view, [&](int32_t) {
        if (mdlLineString_create(dgnBufP, nullptr, outline.at, 5) == MDL_SUCCESS) mdlElement_display(dgnBufP, drawMode);
        return true;
    });
}

void placeAt(GlobalData& data, const Point3d& point, int32_t view) {
    forEachSheet(data, point, view, [&](int32_t number) {
        uint32_t group = static_cast<uint32_t>(mclibUtil_newGraphicGroup());
        const auto adopt = [&](Page& page) {
            mdlElmdscr_operation(page.get(), setGroupOf, &group, MDL_DESCR_ALL);
            return true;
        };
        PlacedPage placed{.made = true, .area = {}};
        if (markCorners(group)) placed = placePage(data, number, true, adopt);
        return tellUnlessPlaced(data, number, placed);
    });
}

void dataPoint(Point3d* point, int32_t view) {
    if (GlobalData* data = mclibMain_getGlobalDataP()) {
        const Point3d at = *point;
        if (data->placeForPlot)
            plotAt(*data, at, view);
        else
            placeAt(*data, at, view);
    }
    mdlState_startDefaultCommand();
}

void reset() {
    if (GlobalData* data = mclibMain_getGlobalDataP()) dropPlot(*data);
    mdlState_startDefaultCommand();
}

}  // namespace

Corners rectangle(const Point3d& low, const Point3d& high) {
    return {{{low.x, low.y, low.z},
             {low.x, high.y, low.z},
             {high.x, high.y, high.z},
             {high.x, low.y, high.z},
             {low.x, low.y, low.z}}};
}

ViewSystem::ViewSystem(const Point3d& origin, int32_t view) {
    mdlCurrTrans_begin();
    mdlCurrTrans_identity();
    mdlCurrTrans_rotateByView(view);
    mdlCurrTrans_translateOriginWorld(&origin);
}

ViewSystem::~ViewSystem() {
    mdlCurrTrans_end();
}

void forEachSheet(const GlobalData& data, const Point3d& point, int32_t view,
                  const std::function<bool(int32_t page)>& handle) {
    const ViewSystem system(point, view);
    const PageSpan span = pagesToPrint(data);
    for (int32_t page = span.first; page <= span.last && handle(page); ++page) {
        const Point3d step = stepBehind(page - span.first, data.fileDialogP->pagesPerRow);
        mdlCurrTrans_translateOrigin(&step);
    }
}

PlacedPage placePage(GlobalData& data, int32_t number, bool inDrawing, const std::function<bool(Page&)>& prepare) {
    PlacedPage placed{.area = placedArea()};
    Page page;
    makeInOwnSystem(data, number, inDrawing, page);
    placed.made = static_cast<bool>(page);
    if (!page || isEmpty(placed.area) || !prepare(page)) return placed;
    if (mclibElemDscr_placeElementDescr(placed.area.at, 1, page.get()) != MCLIB_SUCCESS) return placed;
    const Transform* toWorld = nullptr;
    mdlCurrTrans_getAddresses(&toWorld, nullptr);
    if (mdlElmdscr_transform(page.get(), toWorld) != MDL_SUCCESS) return placed;
    placed.position = mdlElmdscr_add(page.get());
    if (placed.position != 0) mdlElmdscr_display(page.get(), mdlModelRef_getActive(), MDL_DRAW);
    return placed;
}

bool tellUnlessPlaced(const GlobalData& data, int32_t number, const PlacedPage& placed) {
    if (!placed.made || placed.position != 0) return true;
    mc::showNotice(ids::errors::notPlaced, pageName(data, number));
    mdlSystem_noteFailure();
    return false;
}

bool hasDrawing() {
    if (mdlModelRef_getActive()) return true;
    mc::showNotice(ids::errors::noDesignFile);
    mdlSystem_noteFailure();
    return false;
}

void startPlacing(GlobalData& data, bool forPlot) {
    if (!hasDrawing()) return dropPlot(data);
    if (!forPlot) dropPlot(data);  // one that still waits for its point
    data.placeForPlot = forPlot ? 1 : 0;
    mdlState_startPrimitive(dataPoint, nullptr, 0, 0);
    mdlState_setFunction(MDL_STATE_RESET, reset);
    mdlState_setFunction(MDL_STATE_DYNAMICS, reinterpret_cast<MdlStateFunction>(showSheets));
    mdlOutput_prompt(mc::languageText(ids::texts::giveCorner));
}

}  // namespace mc::forms
