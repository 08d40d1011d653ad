// The dialog that shows the texts of the open drawing that were found, and changes them.
#pragma once

#include "options.h"

namespace find {

// Opens it, with what was found of the pattern, if there is one. False after a message.
bool openWindow(const Options& options);

}  // namespace find
