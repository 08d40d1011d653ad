// The room's part of an application's start and end.
#include "mclib/frame/room.h"

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/system.h"
#include "mclib/forms/page_info.h"
#include "mclib/forms/page_list.h"
#include "mclib/forms/plotting.h"
#include "mclib/forms/preview_dialog.h"
#include "mclib/forms/preview_extent.h"
#include "mclib/forms/state.h"
#include "mclib/project/shared.h"

namespace mc::forms {

constinit RoomState<State> formsState;

namespace {

bool begin(GlobalData& data, const Start&) {
    setProjectWritten(showPageAnew);
    return makeBlock(data.previewExtent);
}

void release(GlobalData& data) {
    dropPageNames(data);
    dropPlot(data);
    mdlElmdscr_freeAll(&data.previewDescr);
    dlmSystem_mdlFree(data.previewExtent);
}

void end() {
    formsState.end();
}

}  // namespace

}  // namespace mc::forms

namespace mc {

const Room formsRoom = {.name = "forms",
                        .hooks = {forms::previewHooks, forms::pageInfoHooks},
                        .published = {},
                        .begin = forms::begin,
                        .ready = nullptr,
                        .newDesignFile = nullptr,
                        .applicationEnds = nullptr,
                        .release = forms::release,
                        .end = forms::end};

}  // namespace mc
