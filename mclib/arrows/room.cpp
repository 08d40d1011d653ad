// The room's part of an application's start and end.
#include "mclib/frame/room.h"

#include "mclib/arrows/edit_state.h"
#include "mclib/arrows/state.h"

namespace mc {

namespace arrows {

namespace {

bool begin(GlobalData&, const Start&) {
    return true;
}

void end() {
    placeState.end();
    editState.end();
}

}  // namespace

}  // namespace arrows

const Room arrowsRoom = {.name = "arrows",
                         .hooks = {},
                         .published = {},
                         .begin = arrows::begin,
                         .ready = nullptr,
                         .newDesignFile = nullptr,
                         .applicationEnds = nullptr,
                         .release = nullptr,
                         .end = arrows::end};

}  // namespace mc
