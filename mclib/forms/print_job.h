// The print job of the preview.
#pragma once

#include "mclib/frame/global_data.h"

namespace mc::forms {

// Asks how, prints the pages, and sends them to the printer. Does nothing more once the user has cancelled.
void printPages(GlobalData& data);

}  // namespace mc::forms
