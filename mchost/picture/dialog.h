// An open dialog as a picture, as its window would look: what hooks drew, and the items with their labels and values.
#pragma once

#include <string>

#include "mchost/dialog/dialog.h"

namespace host {

// Writes a PNG of two dots a pixel, with the title above the content area. False when it can't be written.
bool writeDialogPicture(Dialog& dialog, const std::string& path);

}  // namespace host
