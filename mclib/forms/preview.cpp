// The preview dialog: its opening, the page on show, the list of pages, and what its buttons do.
#include "mclib/forms/preview.h"

#include <algorithm>

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/system.h"
#include "mclib/forms/page_info.h"
#include "mclib/forms/page_list.h"
#include "mclib/forms/page_making.h"
#include "mclib/forms/placing.h"
#include "mclib/forms/preview_dialog.h"
#include "mclib/forms/preview_window.h"
#include "mclib/forms/print_job.h"
#include "mclib/forms/state.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/setup.h"
#include "mclib/print/setup_store.h"
#include "mclib/project/dialog.h"
#include "mclib/project/shared.h"
#include "resources/ids.h"

namespace mc::forms {

namespace {

using mdl::itemOf;

enum { TAKE_PAGE = 1 };  // signal to the button of a new page list: its value is the page to show
enum { SHOW_ANEW = 1 };  // signal to the button of the page
constexpr int32_t templateDefaults = -20005;

MdlItem* optionButtonOf(MdlDialog* dialog) {
    return itemOf(dialog, ids::preview::page);
}

bool accepted(int32_t dialogId) {
    int32_t reply = 0;
    mdlDialog_openModal(&reply, 0, dialogId);
    return reply == MDL_REPLY_FIRST;
}

// ---- the page on show ----

void changePage(GlobalData& data) {
    const int32_t chosen = data.fileDialogP->pageChoice;
    readPageInfo(data, chosen);
    if (chosen == data.previewPage) return;
    data.previewPage = chosen;
    showPage(data);
}

void takeNewList(GlobalData& data, MdlDialog* dialog) {
    char* names[PREVIEW_MOST_NAMES] = {};
    if (!formsState->pageListFunction) return;
    const int32_t given = dlmSystem_callAnyFunction("P", mdlSystem_getCurrMdlDesc(),
                                                    reinterpret_cast<void*>(formsState->pageListFunction), names);
    const int32_t count = std::min<int32_t>(given, PREVIEW_MOST_NAMES);
    if (count <= 0 || !setPageNames(data, count, names)) return;
    data.previewPage = std::clamp(data.fileDialogP->pageChoice, 0, count - 1);
    data.fileDialogP->pageChoice = data.previewPage;
    fillWithPageNames(data, optionButtonOf(dialog));
    takeNewPages(data);
    showPage(data);
}

// ---- the dialog ----

void initPreview(GlobalData& data, MdlDialog* dialog) {
    fillWithPageNames(data, optionButtonOf(dialog));
    restoreExtent(data, dialog);
    layOutPreview(dialog);
    data.previewPage = data.fileDialogP->pageChoice;
    takeNewPages(data);
    showPage(data);
}

void leavePreview(GlobalData& data, const MdlDialog* dialog) {
    storeExtent(data, dialog);
    mdlElmdscr_freeAll(&data.previewDescr);
    data.previewPage = -1;
}

void resizePreview(DialogMessage* message) {
    if (!message->resized) return;
    layOutPreview(message->dialog);
    mdlDialog_itemDraw(itemOf(message->dialog, ids::preview::pageArea));
}

void previewDialog(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data ? 1 : 0;
    if (!data) return;
    switch (message->type) {
        case DIALOG_CREATE:
            mclibMain_updateBeforeDialogOpen(ids::preview::id);
            mclibMain_updateBeforeDialogOpen(ids::pageInfo::id);  // its values are this application's from now on
            message->attributes |= DIALOG_SIZABLE;
            break;
        case DIALOG_INIT: initPreview(*data, message->dialog); break;
        case DIALOG_DESTROY: leavePreview(*data, message->dialog); break;
        case DIALOG_RESIZE: resizePreview(message); break;
        default: message->handled = 0;
    }
}

void pageAreaItem(DialogMessage* message) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data ? 1 : 0;
    if (!data) return;
    switch (message->type) {
        case ITEM_CREATE: message->itemFlags = 0; break;
        case ITEM_DRAW: drawPreview(*data, message->dialog); break;
        default: message->handled = 0;
    }
}

void pageButton(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && (message->type == ITEM_STATE_CHANGED || message->type == ITEM_SIGNAL);
    if (!message->handled) return;
    if (message->type == ITEM_SIGNAL)
        showPage(*data);
    else
        changePage(*data);
}

void newListButton(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    const bool pressed = message->type == ITEM_BUTTON && message->state == 1;
    message->handled = data && (message->type == ITEM_BUTTON || message->type == ITEM_SIGNAL);
    if (!message->handled || !(pressed || message->type == ITEM_SIGNAL)) return;
    if (message->type == ITEM_SIGNAL && message->signal == TAKE_PAGE)
        data->fileDialogP->pageChoice = message->signalValue;
    takeNewList(*data, message->dialog);
}

// ---- buttons ----

void openSetup(GlobalData&, MdlDialog* dialog) {
    mclibPrintSet_dialogOpen();
    mdlDialog_itemDraw(itemOf(dialog, ids::preview::pageArea));
}

void print(GlobalData& data, MdlDialog*) {
    printPages(data);
}

void place(GlobalData& data, MdlDialog*) {
    if (hasDrawing() && accepted(ids::placePages::id)) startPlacing(data, false);
}

// This version doesn't reach the spreadsheet program, so it asks nothing either.
void spreadsheet(GlobalData&, MdlDialog*) {
    mc::showNotice(ids::errors::noSpreadsheet);
    mdlSystem_noteFailure();
}

void chooseTemplate(GlobalData& data, MdlDialog* dialog) {
    char name[256] = "";
    if (mclibUpf_defFileOpen(name, nullptr, "*.xlt", "MC_DIR", mc::languageText(ids::texts::chooseTemplate),
                             templateDefaults) != MDL_SUCCESS)
        return;
    copyText(data.fileDialogP->excelTemplate, name);
    mdlDialog_itemSynch(itemOf(dialog, ids::spreadsheet::workbookTemplate));
}

void pageInformation(GlobalData&, MdlDialog*) {
    openPageInfo();
}

void projectData(GlobalData&, MdlDialog*) {
    mclibProject_dialogOpen();
}

template <void (*action)(GlobalData&, MdlDialog*)>
void button(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && message->type == ITEM_BUTTON;
    if (message->handled && message->state == 1) action(*data, message->dialog);
}

}  // namespace

const DialogHook previewHooks[] = {
    {ids::hooks::preview, previewDialog},
    {ids::hooks::pageArea, pageAreaItem},
    {ids::hooks::openSetup, button<openSetup>},
    {ids::hooks::printPages, button<print>},
    {ids::hooks::choosePage, pageButton},
    {ids::hooks::newPages, newListButton},
    {ids::hooks::placePages, button<place>},
    {ids::hooks::sendToSpreadsheet, button<spreadsheet>},
    {ids::hooks::chooseTemplate, button<chooseTemplate>},
    {ids::hooks::openPageInfo, button<pageInformation>},
    {ids::hooks::openProject, button<projectData>},
    endOfHooks,
};

void showPageAnew() {
    if (MdlDialog* const open = mdlDialog_find(ids::preview::id, nullptr))
        mdlDialog_itemSignal(optionButtonOf(open), SHOW_ANEW, 0);
}

void fillWithPageNames(const GlobalData& data, MdlItem* optionButton) {
    print::fillWithPages(data, optionButton);
    mdlDialog_itemSynch(optionButton);
}

void showPage(GlobalData& data) {
    mdlElmdscr_freeAll(&data.previewDescr);
    makePage(data, data.previewPage, false, &data.previewDescr);
    if (MdlDialog* dialog = mdlDialog_find(ids::preview::id, mdlSystem_getCurrMdlDesc()))
        mdlDialog_itemDraw(mdl::itemOf(dialog, ids::preview::pageArea));
}

}  // namespace mc::forms

using namespace mc;

MdlDialog* mclibPreview_dialogOpen(int pageCount, char* const* pageNames, McPageFunction pageFunction,
                                   McPageListFunction pageListFunction) {
    return mclibPreview_dialogOpenExtended(pageCount, 0, pageNames, pageFunction, pageListFunction);
}

MdlDialog* mclibPreview_dialogOpenExtended(int pageCount, int firstShown, char* const* pageNames,
                                           McPageFunction pageFunction, McPageListFunction pageListFunction) {
    GlobalData* data = mclibMain_getGlobalDataP();
    if (!data) return nullptr;
    if (MdlDialog* open = mdlDialog_find(ids::preview::id, mdlSystem_getCurrMdlDesc())) mdlWindow_close(open, 0, 1);
    forms::setFunctions(pageFunction, pageListFunction);
    if (!forms::setPageNames(*data, pageCount, pageNames)) return nullptr;
    data->fileDialogP->pageChoice = std::clamp(firstShown, 0, std::max(pageCount - 1, 0));
    data->fileDialogP->pagesPerRow = 1;
    return mdlDialog_open(0, ids::preview::id);
}

void mclibPreview_setUserPrintFunction(McUserPrintFunction function) {
    forms::formsState->userPrintFunction = function;
}
