// What the room keeps for a session.
#pragma once

#include "mclib/design/position_set.h"
#include "mclib/frame/room.h"

namespace mc {

namespace design {

// Base elements that were reported and are to be passed over. Empty while it isn't used.
struct DoneList {
    PositionSet positions;
    bool isUsed = false;
};
extern RoomState<DoneList> doneList;

}  // namespace design

extern const Room designRoom;

}  // namespace mc
