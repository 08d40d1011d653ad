// The room's part of an application's start and end.
#include "mclib/design/room.h"

namespace mc {

namespace design {

constinit RoomState<DoneList> doneList;

namespace {

bool begin(GlobalData&, const Start&) {
    return true;
}

void end() {
    doneList.end();
}

}  // namespace

}  // namespace design

const Room designRoom = {.name = "design",
                         .hooks = {},
                         .published = {},
                         .begin = design::begin,
                         .ready = nullptr,
                         .newDesignFile = nullptr,
                         .applicationEnds = nullptr,
                         .release = nullptr,
                         .end = design::end};

}  // namespace mc
