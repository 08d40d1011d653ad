#include "forms/form_cell.h"

#include "forms/forms.h"

namespace forms {

int getFormCell(ElementDescr** out, const char*, const char*, int) {
    *out = nullptr;
    return MCLIB_FORM_NO_LIBRARY;
}

}  // namespace forms
