// The preview dialog, for the rest of the room.
#pragma once

#include "mchost/mdl/dialog.h"
#include "mclib/frame/global_data.h"
#include "mclib/frame/room.h"

namespace mc::forms {

// Makes the page on show anew, and draws it where the dialog is open.
void showPage(GlobalData& data);
// The preview that is open makes its page anew, whichever application it belongs to.
void showPageAnew();
// Fills an option button with the page names, row for row, and shows the one that its access string names.
void fillWithPageNames(const GlobalData& data, MdlItem* optionButton);

extern const DialogHook previewHooks[];

}  // namespace mc::forms

namespace mc {

extern const Room formsRoom;

}  // namespace mc
