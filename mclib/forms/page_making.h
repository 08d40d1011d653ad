// Pages made by the application's page function. All of it works on the current application's block.
#pragma once

#include "mchost/mdl/owned.hpp"
#include "mclib/forms/preview.h"
#include "mclib/frame/global_data.h"

namespace mc::forms {

using Page = mdl::Descr;  // null for no page

// The application's functions, for a job or preview that begins: the user print function is none.
void setFunctions(McPageFunction page, McPageListFunction pageList);

// Has the page function make the page, after its name was copied to currentPageName. *result is null when there is no
// page function or it gives no page. The caller frees it.
void makePage(GlobalData& data, int32_t page, bool inDrawing, ElementDescr** result);
bool canMakePages();

}  // namespace mc::forms
