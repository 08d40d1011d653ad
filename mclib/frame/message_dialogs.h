// The message box (dialog 20011) and the list dialog (dialog 20010): hooks that lay the two out and draw what
// mclib/frame/messages.h holds.
#pragma once

#include "mchost/mdl/dialog.h"

namespace mc {

extern const DialogHook messageDialogHooks[];

}  // namespace mc
