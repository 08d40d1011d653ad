// Cells of forms and logos.
#pragma once

#include "mclib/frame/export.h"

namespace mc::forms {

// A new descriptor of a cell of a library, which is loaded when it isn't the attached one. 0, MCLIB_FORM_NO_LIBRARY or
// MCLIB_FORM_NO_CELL, and *out is null then. The user is told of a cell that the library hasn't, of each once.
int getFormCell(ElementDescr** out, const char* cellName, const char* library, int cellOption);
// A new job or preview begins, which tells of all of them again.
void tellMissingCellsAnew();

}  // namespace mc::forms
