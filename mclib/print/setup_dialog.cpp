// The dialog of the printer set-up: which items can be used for which device, and the list of printers.
#include <array>
#include <cstring>
#include <string_view>

#include "mchost/mdl/lists.h"
#include "mclib/frame/errors.h"
#include "mclib/frame/main.h"
#include "mclib/frame/resource_files.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/delivery.h"
#include "mclib/print/print.h"
#include "mclib/print/setup.h"
#include "mclib/print/setup_store.h"
#include "mclib/print/shared.h"

namespace print {

namespace {

enum { SETUP_DIALOG = 20006 };
enum { PAGE_SIZES = 20003 };                                                                // option button
enum { FILE_DEVICES = 20001, PLOTTERS = 20002 };                                            // group boxes
enum { PRINTERS = 20006 };                                                                  // combo box
enum { PAGE_WIDTH = 20009, PAGE_HEIGHT = 20010, FILE_NAME = 20013, PLOTTER_FILE = 20014 };  // texts
enum { PRINTER_TEXT = 20016 };
enum { REPLY_OK = 3, REPLY_CANCEL = 4 };
enum { TEXT_PLOTTER_TITLE = 51 };
enum { TYPED_SIZE = 0, PAGE_A4 = 9 };  // page codes
constexpr int32_t plotterDefaults = -20006;
constexpr int32_t stringsPerPrinter = 2, pathOfPrinter = 1, defaultField = 1;

MdlItem* textItem(MdlDialog* dialog, int32_t id) {
    return mdlDialog_itemGetByTypeAndId(dialog, ITEM_TEXT, id);
}

std::string_view pathOfRow(const StringList* printers, int32_t row) {
    const char* path = "";
    if (printers && row >= 0)
        mdlStringList_getMember(&path, nullptr, printers, row * stringsPerPrinter + pathOfPrinter);
    return path;
}

// ---- what the values ask of the items ----

void applyPageSize(MdlDialog* dialog) {
    const bool typed = mclibpsd->pageSize == TYPED_SIZE;
    if (!typed) mclibPrint_getPageSize(&mclibpsd->pageWidth, &mclibpsd->pageHeight, mclibpsd->pageSize);
    for (const int32_t id : {PAGE_WIDTH, PAGE_HEIGHT}) {
        MdlItem* item = textItem(dialog, id);
        mdlDialog_itemEnable(item, typed);
        mdlDialog_itemSynch(item);
    }
}

void applyDevice(MdlDialog* dialog) {
    const int32_t device = mclibpsd->deviceType;
    MdlItem* sizes = mdlDialog_itemGetByTypeAndId(dialog, ITEM_OPTION_BUTTON, PAGE_SIZES);
    for (int32_t row = 0, value = 0; row < mdlDialog_optionButtonCount(sizes); ++row)
        if (mdlDialog_optionButtonGet(sizes, row, nullptr, &value) == MDL_SUCCESS && value == TYPED_SIZE)
            mdlDialog_optionButtonEnableRow(sizes, row, device != PRINT_HOST_PLOTTER);
    if (mclibpsd->pageSize == TYPED_SIZE) {
        mclibpsd->pageSize = PAGE_A4;
        mdlDialog_itemSynch(sizes);
        applyPageSize(dialog);
    }
    const auto show = [&](int32_t group, bool shown) {
        mdlDialog_itemShow(mdlDialog_itemGetByTypeAndId(dialog, ITEM_GROUP_BOX, group), shown);
    };
    const bool toPrinter = device != PRINT_HOST_PLOTTER && device != PRINT_ASCII;
    show(FILE_DEVICES, toPrinter);
    mdlDialog_itemShow(printerTextOf(dialog), toPrinter);
    show(PLOTTERS, device == PRINT_HOST_PLOTTER);
}

// ---- hooks ----

void setupDialog(DialogMessage* message) {
    message->handled = message->type == DIALOG_CREATE || message->type == DIALOG_INIT;
    if (message->type == DIALOG_CREATE) {
        mclibMain_updateBeforeDialogOpen(SETUP_DIALOG);
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
    if (mclibUpf_defFileOpen(chosen, nullptr, "*.plt", "MS_PLTR", mclibUtil_getLanguageText(TEXT_PLOTTER_TITLE),
                             plotterDefaults) != MDL_SUCCESS)
        return;
    copyText(mclibpsd->plotterFile, chosen);
    mdlDialog_itemSynch(textItem(message->dialog, PLOTTER_FILE));
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
    MdlItem* const list = mdlDialog_itemGetByTypeAndId(message->dialog, ITEM_COMBO_BOX, PRINTERS);
    data->printerRow = rowOfPrinter(mdlDialog_comboBoxGetStrListP(list), mclibpsd->printerName);
    mdlDialog_comboBoxSelectRow(list, data->printerRow);
}

constexpr auto setupHooks = std::to_array<DialogHook>({
    {20018, plotterFileButton},
    {20019, deviceButton},
    {20020, setupDialog},
    {20021, fileOnlyToggle},
    {20022, pageSizeButton},
    {20101, printerList},
    {20150, printerText},
});

}  // namespace

int32_t rowOfPrinter(const StringList* printers, std::string_view path) {
    for (int32_t row = 0, rows = mdlStringList_size(printers) / stringsPerPrinter; row < rows; ++row)
        if (pathOfRow(printers, row) == path) return row;
    return -1;
}

MdlItem* printerTextOf(MdlDialog* dialog) {
    return textItem(dialog, PRINTER_TEXT);
}

void applyFileOnly(MdlDialog* dialog) {
    const bool fileOnly = mclibpsd->fileOnly != 0;
    mdlDialog_itemEnable(mdlDialog_itemGetByTypeAndId(dialog, ITEM_COMBO_BOX, PRINTERS), !fileOnly);
    mdlDialog_itemEnable(printerTextOf(dialog), !fileOnly);
    mdlDialog_itemEnable(textItem(dialog, FILE_NAME), fileOnly);
}

void publishSetupHooks() {
    mdlDialog_hookPublish(static_cast<int32_t>(setupHooks.size()), setupHooks.data());
}

}  // namespace print

int mclibPrintSet_dialogOpen(void) {
    int32_t reply = print::REPLY_CANCEL;
    mdlDialog_openModal(&reply, 0, print::SETUP_DIALOG);
    if (reply == print::REPLY_OK) print::storeSetup();
    return reply;
}
