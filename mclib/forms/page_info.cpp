#include "mclib/forms/page_info.h"

#include "mchost/mdl/dialog.h"
#include "mchost/mdl/system.h"
#include "mclib/forms/page_list.h"
#include "mclib/forms/preview_dialog.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/text_buffer.h"
#include "mclib/project/shared.h"
#include "mclib/project/store.h"
#include "resources/ids.h"

namespace mc::forms {

namespace {

enum {
    DELETE_ALL_FLAGS = MSGBOX_KIND_8 | MSGBOX_FIRST_16 | MSGBOX_SECOND_128,
    SAVE_FLAGS = MSGBOX_KIND_8 | MSGBOX_FIRST_32 | MSGBOX_SECOND_256,
};

MdlDialog* findPageInfo() {
    return mdlDialog_find(ids::pageInfo::id, mdlSystem_getCurrMdlDesc());
}

MdlItem* pageButtonOf(MdlDialog* dialog) {
    return mdl::itemOf(dialog, ids::pageInfo::page);
}

// ---- the block ----

// The block always bears the name of its page, also where the design file has no record for it.
void nameBlock(const GlobalData& data, int32_t page) {
    copyText(mclibsd->pageName, pageName(data, page));
}

void readBlock(GlobalData& data, int32_t page) {
    mclibProject_readPageInfoFromDesignFile(mclibsd, pageName(data, page));
    nameBlock(data, page);
    data.pageInfoSaved = 1;
}

void emptyBlock(GlobalData& data) {
    *mclibsd = {};
    nameBlock(data, data.pageInfoPage);
    data.pageInfoSaved = 1;
}

void showAnewIfOnShow(GlobalData& data, int32_t page) {
    if (page == data.previewPage) showPage(data);
}

void writeBlock(GlobalData& data) {
    mclibProject_writePageInfoToDesignFile(mclibsd);
    data.pageInfoSaved = 1;
    showAnewIfOnShow(data, data.pageInfoPage);
}

// Before changes to the block are lost. Where the user wants them kept they are written.
void askWhetherToSave(GlobalData& data) {
    if (data.pageInfoSaved) return;
    if (mc::showBox(SAVE_FLAGS, ids::questions::savePage, mclibsd->pageName) != MSGBOX_SECOND) writeBlock(data);
}

// ---- what the buttons do ----

void saveInfo(GlobalData& data, MdlDialog* dialog) {
    mdlDialog_setFocus(dialog, nullptr);  // ends a running edit, whose text is then in the block
    writeBlock(data);
}

void deleteInfo(GlobalData& data, MdlDialog* dialog) {
    mclibProject_deletePageInfoFromDesignFile(mclibsd->pageName, nullptr);
    emptyBlock(data);
    mdlDialog_itemsSynch(dialog);
    showAnewIfOnShow(data, data.pageInfoPage);
}

void cleanUp(GlobalData& data, MdlDialog*) {
    mclibProject_deletePageInfoFromDesignFile(mclibsd->pageName, data.pageNames);
}

void deleteAll(GlobalData& data, MdlDialog* dialog) {
    if (mc::showBox(DELETE_ALL_FLAGS, ids::questions::deleteAllPages) != MSGBOX_FIRST) return;
    mclibProject_deletePageInfoFromDesignFile(nullptr, nullptr);
    emptyBlock(data);
    mdlDialog_itemsSynch(dialog);
    showPage(data);
}

// Goes from the page in the dialog to that of pageInfoChoice.
void changeInfoPage(GlobalData& data, MdlDialog* dialog) {
    askWhetherToSave(data);
    readBlock(data, data.fileDialogP->pageInfoChoice);
    data.pageInfoPage = data.fileDialogP->pageInfoChoice;
    mdlDialog_itemsSynch(dialog);
}

// ---- hooks ----

void createInfo(GlobalData& data) {
    mclibMain_updateBeforeDialogOpen(ids::pageInfo::id);
    data.fileDialogP->pageInfoChoice = data.fileDialogP->pageChoice;
    readBlock(data, data.fileDialogP->pageInfoChoice);
}

void leaveInfo(GlobalData& data) {
    askWhetherToSave(data);
    data.pageInfoSaved = 1;
}

void pageInfoDialog(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data ? 1 : 0;
    if (!data) return;
    switch (message->type) {
        case DIALOG_CREATE: createInfo(*data); break;
        case DIALOG_INIT: fillWithPageNames(*data, pageButtonOf(message->dialog)); break;
        case DIALOG_DESTROY: leaveInfo(*data); break;
        default: message->handled = 0;
    }
}

void infoPageButton(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data ? 1 : 0;
    if (!data) return;
    switch (message->type) {
        case ITEM_CREATE: data->pageInfoPage = data->fileDialogP->pageInfoChoice; break;
        case ITEM_STATE_CHANGED: changeInfoPage(*data, message->dialog); break;
        default: message->handled = 0;
    }
}

template <void (*action)(GlobalData&, MdlDialog*)>
void infoButton(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && message->type == ITEM_BUTTON;
    if (message->handled && message->state == 1) action(*data, message->dialog);
}

void infoText(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && message->type == ITEM_STATE_CHANGED;
    if (message->handled) data->pageInfoSaved = 0;
}

}  // namespace

const DialogHook pageInfoHooks[] = {
    {ids::hooks::pageInfo, pageInfoDialog},
    {ids::hooks::chooseInfoPage, infoPageButton},
    {ids::hooks::savePageInfo, infoButton<saveInfo>},
    {ids::hooks::deletePageInfo, infoButton<deleteInfo>},
    {ids::hooks::cleanUpPageInfo, infoButton<cleanUp>},
    {ids::hooks::deleteAllPageInfo, infoButton<deleteAll>},
    {ids::hooks::pageInfoText, infoText},
    endOfHooks,
};

void openPageInfo() {
    mdlDialog_open(0, ids::pageInfo::id);
}

void readPageInfo(GlobalData& data, int32_t page) {
    MdlDialog* const dialog = findPageInfo();
    if (!dialog) return mclibProject_readPageInfoFromDesignFile(mclibsd, pageName(data, page));
    data.fileDialogP->pageInfoChoice = page;
    changeInfoPage(data, dialog);
}

void takeNewPages(GlobalData& data) {
    MdlDialog* const dialog = findPageInfo();
    if (!dialog) return;
    fillWithPageNames(data, pageButtonOf(dialog));
    readPageInfo(data, data.previewPage);
}

KeepEditedBlocks::KeepEditedBlocks() {
    if (mdlDialog_find(ids::project::id, nullptr)) project_ = *mclibpd;
    if (mdlDialog_find(ids::pageInfo::id, nullptr)) page_ = *mclibsd;
}

KeepEditedBlocks::~KeepEditedBlocks() {
    if (project_) *mclibpd = *project_;
    if (page_) *mclibsd = *page_;
}

}  // namespace mc::forms
