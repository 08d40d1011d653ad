// Cells of forms and logos.
#pragma once

#include "frame/export.h"

namespace forms {

// A new descriptor of a cell of a library, which is loaded when it isn't the attached one. 0, MCLIB_FORM_NO_LIBRARY or
// MCLIB_FORM_NO_CELL, and *out is null then.
int getFormCell(ElementDescr** out, const char* cellName, const char* library, int cellOption);

}  // namespace forms
