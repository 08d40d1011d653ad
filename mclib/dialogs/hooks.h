// The hooks of this room's dialogs by the file that has them, and its row. Internal.
#pragma once

#include "mclib/frame/room.h"

namespace mc {

namespace dialogs {

extern const DialogHook messageDialogHooks[];  // the message box and the list of messages
extern const DialogHook selectionHooks[];      // files, and members of lists

}  // namespace dialogs

extern const Room dialogsRoom;

}  // namespace mc
