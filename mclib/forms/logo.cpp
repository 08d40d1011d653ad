#include "mclib/forms/logo.h"

#include "mclib/forms/form_cell.h"
#include "mclib/forms/state.h"

namespace mc::forms {

void setLogo(const char* cellName, const char* library) {
    constexpr size_t longest = 255;
    formsState->logoCell = std::string(cellName ? cellName : "").substr(0, longest);
    formsState->logoLibrary = std::string(library ? library : "").substr(0, longest);
}

int makeLogo(int, char*, ElementDescr** newDescr, int, double, double) {
    constexpr int cellOption = 1;
    return getFormCell(newDescr, formsState->logoCell.c_str(), formsState->logoLibrary.c_str(), cellOption);
}

}  // namespace mc::forms
