// Where the values of a form go instead of to a page.
#pragma once

#include "mclib/forms/forms.h"

namespace forms {

// Sends the values of one page to the spreadsheet. MCLIB_ERROR for a null form, and while no spreadsheet is there, with
// a line on the console.
int exportForm(FormData* form);

}  // namespace forms
