// The dialog of the printer set-up: which items can be used for which device, and the list of printers.
#include <array>
#include <cstring>
#include <string_view>

#include "mchost/mdl/lists.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/room.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/delivery.h"
#include "mclib/print/print.h"
#include "mclib/print/setup.h"
#include "mclib/print/setup_store.h"
#include "mclib/print/shared.h"
#include "resources/ids.h"

namespace mc::print {

namespace {

using mdl::itemOf;

// What the print dialog has too.
namespace items = ids::printerSetup;
static_assert(items::printers == ids::print::printers && items::printer == ids::print::printer &&
              items::file == ids::print::file);

constexpr int32_t plotterDefaults = -20006;
constexpr int32_t stringsPerPrinter = 2, pathOfPrinter = 1, defaultField = 1;

std::string_view pathOfRow(const StringList* printers, int32_t row) {
    const char* path = "";
    if (printers && row >= 0)
        mdlStringList_getMember(&path, nullptr, printers, row * stringsPerPrinter + pathOfPrinter);
    return path;
}

// ---- what the values ask of the items ----

void applyPageSize(MdlDialog* dialog) {
    const bool typed = mclibpsd->pageSize == PRINT_PAGE_TYPED;
    if (!typed) mclibPrint_getPageSize(&mclibpsd->pageWidth, &mclibpsd->pageHeight, mclibpsd->pageSize);
    for (const mdl::ItemId& text : {items::pageWidth, items::pageHeight}) {
        MdlItem* item = itemOf(dialog, text);
        mdlDialog_itemEnable(item, typed);
        mdlDialog_itemSynch(item);
    }
}

void applyDevice(MdlDialog* dialog) {
    const bool byHost = setupDeviceIs(PRINT_DEVICE_BY_HOST), toPrinter = setupDeviceIs(PRINT_DEVICE_TO_PRINTER);
    MdlItem* sizes = itemOf(dialog, items::pageSize);
    for (int32_t row = 0, value = 0; row < mdlDialog_optionButtonCount(sizes); ++row)
        if (mdlDialog_optionButtonGet(sizes, row, nullptr, &value) == MDL_SUCCESS && value == PRINT_PAGE_TYPED)
            mdlDialog_optionButtonEnableRow(sizes, row, !byHost);
    if (mclibpsd->pageSize == PRINT_PAGE_TYPED) {
        mclibpsd->pageSize = PRINT_PAGE_A4;
        mdlDialog_itemSynch(sizes);
        applyPageSize(dialog);
    }
    mdlDialog_itemShow(itemOf(dialog, items::output), toPrinter);
    mdlDialog_itemShow(printerTextOf(dialog), toPrinter);
    mdlDialog_itemShow(itemOf(dialog, items::plot), byHost);
}

// ---- hooks ----

void setupDialog(DialogMessage* message) {
    message->handled = message->type == DIALOG_CREATE || message->type == DIALOG_INIT;
    if (message->type == DIALOG_CREATE) {
        mclibMain_updateBeforeDialogOpen(items::id);
        loadSetup();
    }
    if (message->type != DIALOG_INIT) return;
    applyFileOnly(message->dialog);
    applyPageSize(message->dialog);
    applyDevice(message->dialog);
}

// Whether the message is one that tells of a change; the hook has taken it then.
bool takesChange(DialogMessage* message) {
    message->handled = message->type == ITEM_STATE_CHANGED && mclibpsd;
    return message->handled;
}

void fileOnlyToggle(DialogMessage* message) {
    if (takesChange(message)) applyFileOnly(message->dialog);
}

void pageSizeButton(DialogMessage* message) {
    if (takesChange(message)) applyPageSize(message->dialog);
}

void deviceButton(DialogMessage* message) {
    if (takesChange(message)) applyDevice(message->dialog);
}

void plotterFileButton(DialogMessage* message) {
    message->handled = message->type == ITEM_BUTTON;
    if (!message->handled || message->state != 1) return;
    char chosen[256] = "";
    if (mclibUpf_defFileOpen(chosen, nullptr, "*.plt", "MS_PLTR", mc::languageText(ids::texts::choosePlotter),
                             plotterDefaults) != MDL_SUCCESS)
        return;
    copyText(mclibpsd->plotterFile, chosen);
    mdlDialog_itemSynch(itemOf(message->dialog, items::plotterFile));
}

// ---- printers: the list of what servers offer, and a text for every kind of printer ----

bool isDefault(const StringList* printers, int32_t row) {
    int32_t mark = 0;
    mdlStringList_getInfoField(&mark, printers, row * stringsPerPrinter + pathOfPrinter, defaultField);
    return mark != 0;
}

// The row of the set-up's printer; where nobody has chosen one that of the default one; -1 for neither.
int32_t rowToSelect(const StringList* printers) {
    if (const int32_t row = rowOfPrinter(printers, mclibpsd->printerName); row >= 0) return row;
    if (!isNobodysPrinter(mclibpsd->printerName)) return -1;
    for (int32_t row = 0, rows = mdlStringList_size(printers) / stringsPerPrinter; row < rows; ++row)
        if (isDefault(printers, row)) return row;
    return -1;
}

void fillPrinters(GlobalData& data, MdlItem* item) {
    data.printerRow = -1;
    StringList* printers = mclibWin32_findWindowsPrinterNames();
    if (!printers) return;
    mdlDialog_comboBoxSetStrListP(item, printers, stringsPerPrinter);
    data.printerRow = rowToSelect(printers);
    mdlDialog_comboBoxSelectRow(item, data.printerRow);
}

// The printer of the row that is selected, if any, becomes the set-up's.
void takePrinter(const GlobalData& data, const MdlItem* item) {
    const StringList* printers = mdlDialog_comboBoxGetStrListP(item);
    if (const std::string_view path = pathOfRow(printers, data.printerRow); !path.empty())
        copyText(mclibpsd->printerName, path);
}

void leavePrinters(const GlobalData& data, MdlItem* item) {
    takePrinter(data, item);
    StringList* printers = mdlDialog_comboBoxGetStrListP(item);
    mdlDialog_comboBoxSetStrListP(item, nullptr, stringsPerPrinter);
    mdlStringList_destroy(printers);
}

void printerList(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && mclibpsd;
    if (!message->handled) return;
    switch (message->type) {
        case ITEM_CREATE: fillPrinters(*data, message->item); break;
        case ITEM_DESTROY: leavePrinters(*data, message->item); break;
        case ITEM_STATE_CHANGED:
            takePrinter(*data, message->item);
            mdlDialog_itemSynch(printerTextOf(message->dialog));
            break;
        default: message->handled = 0;
    }
}

// What was typed is the printer, so the list shows it or none.
void printerText(DialogMessage* message) {
    GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && mclibpsd && message->type == ITEM_STATE_CHANGED;
    if (!message->handled) return;
    MdlItem* const list = itemOf(message->dialog, items::printers);
    data->printerRow = rowOfPrinter(mdlDialog_comboBoxGetStrListP(list), mclibpsd->printerName);
    mdlDialog_comboBoxSelectRow(list, data->printerRow);
}

}  // namespace

const DialogHook setupHooks[] = {
    {ids::hooks::choosePlotter, plotterFileButton}, {ids::hooks::chooseDevice, deviceButton},
    {ids::hooks::printerSetup, setupDialog},        {ids::hooks::fileOnly, fileOnlyToggle},
    {ids::hooks::choosePageSize, pageSizeButton},   {ids::hooks::printerList, printerList},
    {ids::hooks::printerText, printerText},         endOfHooks,
};

int32_t rowOfPrinter(const StringList* printers, std::string_view path) {
    for (int32_t row = 0, rows = mdlStringList_size(printers) / stringsPerPrinter; row < rows; ++row)
        if (pathOfRow(printers, row) == path) return row;
    return -1;
}

MdlItem* printerTextOf(MdlDialog* dialog) {
    return itemOf(dialog, items::printer);
}

void applyFileOnly(MdlDialog* dialog) {
    const bool fileOnly = mclibpsd->fileOnly != 0;
    mdlDialog_itemEnable(itemOf(dialog, items::printers), !fileOnly);
    mdlDialog_itemEnable(printerTextOf(dialog), !fileOnly);
    mdlDialog_itemEnable(itemOf(dialog, items::file), fileOnly);
}

}  // namespace mc::print

using namespace mc;

int mclibPrintSet_dialogOpen(void) {
    int32_t reply = MDL_REPLY_SECOND;
    mdlDialog_openModal(&reply, 0, ids::printerSetup::id);
    if (reply == MDL_REPLY_FIRST) print::storeSetup();
    return reply;
}
