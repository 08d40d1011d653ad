// The preview dialog: its opening, the page on show and the list of pages.
#include "forms/preview.h"

#include <algorithm>

#include "forms/pages.h"
#include "frame/main.h"
#include "host/mdl/dialog.h"
#include "host/mdl/elmdscr.h"
#include "host/mdl/system.h"

namespace forms {

void fillWithPageNames(const GlobalData& data, MdlItem* optionButton) {
    mdlDialog_optionButtonDeleteAll(optionButton);
    for (int32_t page = 0, count = pageCount(data); page < count; ++page)
        mdlDialog_optionButtonInsert(optionButton, pageName(data, page), page);
    mdlDialog_itemSynch(optionButton);
}

void showPage(GlobalData& data) {
    mdlElmdscr_freeAll(&data.previewDescr);
    makePage(data, data.previewPage, false, &data.previewDescr);
    if (MdlDialog* dialog = mdlDialog_find(PREVIEW_DIALOG, mdlSystem_getCurrMdlDesc()))
        mdlDialog_itemDraw(mdlDialog_itemGetByTypeAndId(dialog, ITEM_GENERIC, PAGE_AREA));
}

}  // namespace forms

MdlDialog* mclibPreview_dialogOpen(int pageCount, char* const* pageNames, McPageFunction pageFunction,
                                   McPageListFunction pageListFunction) {
    return mclibPreview_dialogOpenExtended(pageCount, 0, pageNames, pageFunction, pageListFunction);
}

MdlDialog* mclibPreview_dialogOpenExtended(int pageCount, int firstShown, char* const* pageNames,
                                           McPageFunction pageFunction, McPageListFunction pageListFunction) {
    GlobalData* data = mclibMain_getGlobalDataP();
    if (!data) return nullptr;
    forms::setFunctions(pageFunction, pageListFunction);
    if (!forms::setPageNames(*data, pageCount, pageNames)) return nullptr;
    data->fileDialogP->pageChoice = std::clamp(firstShown, 0, std::max(pageCount - 1, 0));
    data->fileDialogP->pagesPerRow = 1;
    return mdlDialog_open(0, forms::PREVIEW_DIALOG);
}

void mclibPreview_setUserPrintFunction(McUserPrintFunction function) {
    forms::setUserPrintFunction(function);
}
