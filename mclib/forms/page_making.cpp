#include "mclib/forms/page_making.h"

#include "mchost/mdl/system.h"
#include "mclib/forms/form_cell.h"
#include "mclib/forms/page_info.h"
#include "mclib/forms/page_list.h"
#include "mclib/forms/state.h"
#include "mclib/frame/text_buffer.h"

namespace mc::forms {

void setFunctions(McPageFunction page, McPageListFunction pageList) {
    formsState->pageFunction = page;
    formsState->pageListFunction = pageList;
    formsState->userPrintFunction = nullptr;
    tellMissingCellsAnew();
}

bool canMakePages() {
    return formsState->pageFunction;
}

void makePage(GlobalData& data, int32_t page, bool inDrawing, ElementDescr** result) {
    *result = nullptr;
    copyText(data.currentPageName, pageName(data, page));
    if (!canMakePages() || page < 0 || page >= pageCount(data)) return;
    const KeepEditedBlocks keep;
    const int failures = mdlSystem_memoryFailures();
    dlmSystem_callAnyFunction("IPPI", mdlSystem_getCurrMdlDesc(), reinterpret_cast<void*>(formsState->pageFunction),
                              page, data.pageNames[page], result, inDrawing ? 1 : 0);
    if (mdlSystem_memoryFailures() != failures) mdlElmdscr_freeAll(result);  // something is missing in it
}

}  // namespace mc::forms
