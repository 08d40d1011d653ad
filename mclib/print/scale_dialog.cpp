// The dialog of the plot scales, and the option button that chooses one in any dialog.
#include <algorithm>
#include <iterator>
#include <string_view>

#include "mchost/mdl/dialog_items.h"
#include "mchost/mdl/list_models.h"
#include "mchost/mdl/menu_bar.h"
#include "mchost/mdl/resource.h"
#include "mclib/frame/applications.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/print/scale.h"
#include "mclib/print/scale_list.h"
#include "resources/ids.h"

namespace mc::print {

namespace {

constexpr int32_t scaleFileRecord = -20007;  // remembered files of the file dialogs
constexpr const char* fileTitle = "Plotscales";

ListModel* list() {
    return mcScaleP->scaleList;
}

MdlItem* listBoxOf(MdlDialog* dialog) {
    return mdl::itemOf(dialog, ids::plotScales::scales);
}

// ---- the option button ----

void fillChoice(MdlItem* button) {
    mdlDialog_optionButtonDeleteAll(button);
    for (int32_t row = 0, count = mdlListModel_rowCount(list()); row < count; ++row)
        mdlDialog_optionButtonInsert(button, scaleCell(row, scaleName), row);
}

void scaleChoice(DialogMessage* message) {
    message->handled = mcScaleP && (message->type == ITEM_CREATE || message->type == ITEM_STATE_CHANGED);
    if (!message->handled) return;
    if (message->type == ITEM_CREATE) return fillChoice(message->item);
    const double before = mcScaleP->activeScale;
    recomputeScale();
    showScaleEverywhere();
    notifyScaleChange(before, mcScaleP->activeScale, 1);
}

void refillChoices() {
    int32_t index = 0;
    while (MdlDialog* const dialog = mdlDialog_getOpen(index++)) {
        MdlItem* const button = mdl::itemOf(dialog, ids::printerSetup::scale);
        if (!button) continue;
        fillChoice(button);
        mdlDialog_itemSynch(button);
        mdlDialog_itemDraw(button);
    }
}

// ---- cells ----

// "2:5" is 2.5; what isn't two numbers above 0 with a colon between them leaves the value.
void takeName(int32_t row) {
    const std::string_view name = scaleCell(row, scaleName);
    const size_t colon = name.find(':');
    if (colon == name.npos) return;
    const double a = numberAtStart(name.substr(0, colon)), b = numberAtStart(name.substr(colon + 1));
    if (a > 0 && b > 0) setScaleValue(row, b / a);
}

void takeValue(int32_t row) {
    const double value = numberAtStart(scaleCell(row, scaleValue));
    setScaleValue(row, value > 0 ? value : 1.0);
}

void scaleList(DialogMessage* message) {
    message->handled = mcScaleP != nullptr;
    if (!message->handled) return;
    switch (message->type) {
        case ITEM_CREATE: mdlDialog_listBoxSetListModelP(message->item, list()); break;
        case ITEM_BUTTON:
            if (message->clickCount == 2) mdlDialog_listBoxEditCell(message->item, message->row, message->column);
            break;
        case ITEM_CELL_EDITED:
            message->column == scaleName ? takeName(message->row) : takeValue(message->row);
            mdlDialog_itemDraw(message->item);
            break;
        default: message->handled = 0;
    }
}

// ---- the menu over the list ----

void scaleDialog(DialogMessage* message) {
    message->handled = message->type == DIALOG_BUTTON && message->attributes == MDL_SECOND_BUTTON &&
                       message->clickCount == MDL_BUTTON_DOWN && message->item == listBoxOf(message->dialog);
    if (message->handled) mdlDialog_offerMenu(message->dialog, 0, ids::menus::plotScales);
}

void showRows(MdlItem* listBox, int32_t selected) {
    mdlDialog_listBoxSetListModelP(listBox, list());
    mdlDialog_listBoxSelectRow(listBox, selected);
    mdlDialog_itemDraw(listBox);
}

void addBehind(MdlItem* listBox, int32_t row) {
    const int32_t added = row + 1;
    if (mdlListModel_insertRow(list(), added) != MDL_SUCCESS) return showNotice(ids::errors::outOfMemory);
    if (!setScale(list(), added, scaleCell(row, scaleName))) showNotice(ids::errors::outOfMemory);
    if (mcScaleP->activeIndex > row) ++mcScaleP->activeIndex;
    showRows(listBox, added);
}

void removeRow(MdlItem* listBox, int32_t row) {
    if (mdlListModel_rowCount(list()) < 2 || mdlListModel_removeRow(list(), row) != MDL_SUCCESS) return;
    if (mcScaleP->activeIndex >= row) --mcScaleP->activeIndex;
    showRows(listBox, std::min(row, mdlListModel_rowCount(list()) - 1));
}

enum { rowAdd = 0, rowRemove = 1 };

void changeRows(DialogMessage* message) {
    message->handled = mcScaleP && message->type == ITEM_BUTTON;
    if (!message->handled) return;
    MdlItem* const listBox = listBoxOf(message->dialog);
    const int32_t row = mdlDialog_listBoxGetSelectedRow(listBox);
    if (row < 0) return;
    if (message->value == rowAdd) addBehind(listBox, row);
    if (message->value == rowRemove) removeRow(listBox, row);
}

// ---- scale files ----

bool askForFile(char (&name)[256], Text title) {
    return mclibUpf_defFileOpen(name, nullptr, "*.rsc", nullptr, languageText(title), scaleFileRecord) == MDL_SUCCESS;
}

void readFile() {
    char name[256];
    McHandle file{};
    if (!askForFile(name, ids::texts::readScales) || mclibResource_openFile(&file, name, MDL_RSC_READ) != MCLIB_SUCCESS)
        return;
    const bool read = mclibPlotScale_readSettings(&file) == MCLIB_SUCCESS;
    mclibResource_closeFile(&file);
    if (!read) showNotice(ids::errors::noScales, name);
}

// A failure is told by the call that meets it, but for a list that memory doesn't hold twice.
void saveFile() {
    char name[256];
    McHandle file{};
    if (!askForFile(name, ids::texts::saveScales) ||
        mclibResource_openFile(&file, name, MDL_RSC_WRITE) != MCLIB_SUCCESS)
        return;
    mclibPlotScale_saveSettings(&file);
    if (mclibResource_closeFile(&file) != MCLIB_SUCCESS) showNotice(ids::errors::cantClose, name);
}

void createFile() {
    char name[256];
    if (mclibUpf_defFileCreate(name, nullptr, "*.rsc", nullptr, languageText(ids::texts::newScaleFile),
                               scaleFileRecord) == MDL_SUCCESS &&
        mdlResource_createFile(name, fileTitle, 1) != MDL_SUCCESS)
        showNotice(ids::errors::cantOpen, name);
}

constexpr void (*fileActions[])() = {readFile, saveFile, createFile};  // by the entry's value

void scaleFiles(DialogMessage* message) {
    message->handled = mcScaleP && message->type == ITEM_BUTTON;
    if (message->handled && message->value >= 0 && message->value < static_cast<int32_t>(std::size(fileActions)))
        fileActions[message->value]();
}

}  // namespace

const DialogHook scaleHooks[] = {
    {ids::hooks::scaleDialog, scaleDialog}, {ids::hooks::scaleList, scaleList},
    {ids::hooks::scaleChoice, scaleChoice}, {ids::hooks::scaleRows, changeRows},
    {ids::hooks::scaleFiles, scaleFiles},   endOfHooks,
};

void showListInDialog() {
    if (MdlDialog* const dialog = mdlDialog_find(ids::plotScales::id, nullptr)) showRows(listBoxOf(dialog), 0);
}

}  // namespace mc::print

using namespace mc;
using namespace mc::print;

void mclibPlotScale_dialogOpen(void) {
    if (!mcScaleP) return;
    const int32_t indexBefore = mcScaleP->activeIndex;
    const double before = mcScaleP->activeScale;
    int32_t reply = 0;
    mdlDialog_openModal(&reply, 0, ids::plotScales::id);
    refillChoices();
    if (mcScaleP->activeIndex >= indexBefore) return;
    recomputeScale();
    if (scaleDiffersFrom(before)) notifyScaleChange(before, mcScaleP->activeScale, 1);
}
