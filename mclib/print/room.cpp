// The room's part of an application's start: the blocks that all applications share, and the printer set-up.
#include "mclib/frame/room.h"

#include "mchost/mdl/lists.h"
#include "mclib/print/job.h"
#include "mclib/print/scale_list.h"
#include "mclib/print/setup_store.h"
#include "mclib/print/shared.h"

namespace mc::print {

namespace {

void dropScales() {
    if (mcScaleP && mcScaleP->scaleList) mdlListModel_destroy(mcScaleP->scaleList);
    if (mcScaleP) mcScaleP->scaleList = nullptr;
}

bool makeShared() {
    dropScales();
    return makeSharedBlock(mclibpsd) && makeSharedBlock(mcScaleP) && loadPlotScales();
}

bool begin(GlobalData&, const Start& start) {
    if (start.isFirst && !makeShared()) return false;
    loadSetup();
    return true;
}

void end() {
    closeJobs();
    dropScales();
    freeSharedBlock(mclibpsd);
    freeSharedBlock(mcScaleP);
}

constexpr PublishedBlock published[] = {
    {"mclibPrinterSetupData", printerSetupFields, "mclibpsd", &mclibpsd},
    {"mclibPlotScale", plotScaleFields, "mcScaleP", &mcScaleP},
};

}  // namespace

}  // namespace mc::print

namespace mc {

const Room printRoom = {.name = "print",
                        .hooks = {print::setupHooks, print::printDialogHooks, print::scaleHooks},
                        .published = print::published,
                        .begin = print::begin,
                        .ready = nullptr,
                        .newDesignFile = nullptr,
                        .applicationEnds = print::closeJobOfApplication,
                        .release = nullptr,
                        .end = print::end};

}  // namespace mc
