#include "mclib/forms/spreadsheet.h"

#include "mchost/mdl/system.h"

namespace forms {

int exportForm(FormData* form) {
    if (form)
        toolSubsystem_printf(
            "Forms: the page isn't exported: this installation has no spreadsheet. Print the page, or place it in the "
            "drawing.\n");
    return MCLIB_ERROR;
}

}  // namespace forms
