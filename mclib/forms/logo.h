// The logo field's function, and the cell that it takes.
#pragma once

#include "mclib/frame/export.h"

namespace mc::forms {

constexpr const char* logoCell = "LOGO";
constexpr const char* logoLibrary = "logo.cel";

// Which cell the logo is from now on, for every application. Null counts as empty.
void setLogo(const char* cellName, const char* library);
// A FormCallback that gives the logo's cell as a new descriptor; null when it can't be had.
int makeLogo(int row, char* name, ElementDescr** newDescr, int userArg, double textWidth, double textHeight);

}  // namespace mc::forms
