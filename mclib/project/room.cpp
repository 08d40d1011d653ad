// The room's part of an application's start and of a new design file: the blocks that all applications share.
#include "mclib/frame/room.h"

#include "mchost/mdl/dialog.h"
#include "mclib/project/shared.h"
#include "mclib/project/store.h"
#include "resources/ids.h"

using namespace mc;

mclibProsjektData* mclibpd = nullptr;
mclibSideData* mclibsd = nullptr;

namespace mc {

namespace {

bool begin(GlobalData&, const Start& start) {
    return !start.isFirst || (makeSharedBlock(mclibpd) && makeSharedBlock(mclibsd));
}

void readProject(GlobalData&) {
    mclibProject_readProjectInfoFromDesignFile(mclibpd);
    if (MdlDialog* project = mdlDialog_find(ids::project::id, nullptr)) mdlDialog_itemsSynch(project);
}

void end() {
    setProjectWritten(nullptr);
    freeSharedBlock(mclibpd);
    freeSharedBlock(mclibsd);
}

constexpr PublishedBlock published[] = {
    {"mclibProsjektData", projectFields, "mclibpd", &mclibpd},
    {"mclibSideData", pageFields, "mclibsd", &mclibsd},
};

}  // namespace

const Room projectRoom = {.name = "project",
                          .hooks = {projectHooks},
                          .published = published,
                          .begin = begin,
                          .ready = nullptr,
                          .newDesignFile = readProject,
                          .applicationEnds = nullptr,
                          .release = nullptr,
                          .end = end};

}  // namespace mc
