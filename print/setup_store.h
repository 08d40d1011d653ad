// The set-up in the user's preference file, and what its dialogs share. Internal to this folder and to start-up.
#pragma once

#include "frame/global_data.h"
#include "host/mdl/dialog.h"

namespace print {

// Reads the set-up into mclibpsd; takes the defaults when none is stored, or when the file can't be opened, which the
// user is told.
void loadSetup();
// Writes mclibpsd; what fails is told.
void storeSetup();

// ---- what both dialogs have ----

// The file's name can be edited when the output stays in the file, the printer be chosen when it doesn't.
void applyFileOnly(MdlDialog* dialog);

// Publishes the hooks of the set-up dialog, and of the print dialog.
void publishSetupHooks();
void publishPrintDialogHooks();

}  // namespace print
