// The print job of the preview.
#pragma once

#include "frame/global_data.h"

namespace forms {

// Asks how, prints the pages, and sends them to the printer. Does nothing more once the user has cancelled.
void printPages(GlobalData& data);

}  // namespace forms
