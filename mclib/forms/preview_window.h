// What the preview's window shows, and where. For the hooks of the dialog.
#pragma once

#include "mclib/frame/global_data.h"

namespace mc::forms {

// Gives the window the size that its user left it in.
void restoreExtent(GlobalData& data, MdlDialog* dialog);
// Keeps the window's size for the next time.
void storeExtent(GlobalData& data, const MdlDialog* dialog);
// Places the buttons in their strip on the right, and gives the rest to the page area.
void layOutPreview(MdlDialog* dialog);
// Title, sheet and page.
void drawPreview(const GlobalData& data, MdlDialog* dialog);

}  // namespace mc::forms
