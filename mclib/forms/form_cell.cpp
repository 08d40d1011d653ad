#include "mclib/forms/form_cell.h"

#include <algorithm>
#include <string>
#include <vector>

#include "mchost/mdl/cell.h"
#include "mchost/mdl/system.h"
#include "mclib/forms/forms.h"
#include "mclib/forms/state.h"
#include "mclib/frame/shown_path.h"
#include "mclib/frame/util.h"
#include "mclib/geometry/cells.h"

namespace mc::forms {

namespace {

void tellMissing(const char* cellName) {
    const std::string line = "The cell \"" + std::string(cellName) + "\" isn't in the library " +
                             shownPath(tcbP->cellLibraryName) + ", so a page lacks it.";
    std::vector<std::string>& told = formsState->toldMissing;
    if (std::ranges::find(told, line) != told.end()) return;
    told.push_back(line);
    mdlOutput_messageCenter(MDL_PRIORITY_WARNING, line.c_str(),
                            "Use a library that has it, or compile it into this one.", 0);
}

}  // namespace

void tellMissingCellsAnew() {
    formsState->toldMissing.clear();
}

int getFormCell(ElementDescr** out, const char* cellName, const char* library, int cellOption) {
    *out = nullptr;
    if (!library || mclibCell_loadCellLibraryIfNeeded(library) != MCLIB_SUCCESS) {
        mdlSystem_noteFailure();
        return MCLIB_FORM_NO_LIBRARY;
    }
    if (!cellName) cellName = "";
    const wchar_t* name = mclibUtil_convertToUnicodeText(cellName);
    const int status = mdlCell_getElmDscr(out, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                          cellOption, name, nullptr);
    if (status == MDL_SUCCESS && *out) return 0;
    tellMissing(cellName);
    mdlSystem_noteFailure();
    return MCLIB_FORM_NO_CELL;
}

}  // namespace mc::forms
