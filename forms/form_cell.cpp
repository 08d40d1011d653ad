#include "forms/form_cell.h"

#include "forms/forms.h"
#include "frame/util.h"
#include "geometry/cells.h"
#include "host/mdl/cell.h"

namespace forms {

int getFormCell(ElementDescr** out, const char* cellName, const char* library, int cellOption) {
    *out = nullptr;
    if (!library || mclibCell_loadCellLibraryIfNeeded(library) != MCLIB_SUCCESS) return MCLIB_FORM_NO_LIBRARY;
    const wchar_t* name = mclibUtil_convertToUnicodeText(cellName ? cellName : "");
    const int status = mdlCell_getElmDscr(out, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                          cellOption, name, nullptr);
    return status == MDL_SUCCESS && *out ? 0 : MCLIB_FORM_NO_CELL;
}

}  // namespace forms
