// The dialog that starts a print job or a plot: where the output goes, and which pages.
#include <algorithm>
#include <array>
#include <string>

#include "mchost/mdl/files.h"
#include "mchost/mdl/plot.h"
#include "mclib/frame/letters.h"
#include "mclib/frame/main.h"
#include "mclib/frame/named_messages.hpp"
#include "mclib/frame/room.h"
#include "mclib/frame/text_buffer.h"
#include "mclib/print/plot_name.h"
#include "mclib/print/print.h"
#include "mclib/print/setup_store.h"
#include "mclib/print/shared.h"
#include "resources/ids.h"

namespace mc::print {

namespace {

enum { PRINTER_CHOSEN = 2 };         // answer of the system's print dialog
constexpr int shownNameLength = 45;  // of a plot file's name
constexpr int32_t itemGap = 8;       // pixels

void synchAndDraw(MdlItem* item) {
    mdlDialog_itemSynch(item);
    mdlDialog_itemDraw(item);
}

// ---- where a plot goes ----

MdlPlotter* plotterOf(const GlobalData& data) {
    return data.plotDescr ? mdlPlotDesc_getPlotter(plotOf(data)) : nullptr;
}

// The name of a plot's file with "<page>" for the page, short enough to be shown.
void nameOfPlotFiles(char (&name)[sizeof mclibpsd->printerName], const std::string& extension) {
    const std::string page = std::string("<") + mc::languageText(ids::texts::page) + ">";
    copyText(name, lowered(plotFileName(page, extension)));
    mdlFile_abbreviateName(name, shownNameLength);
}

void takeSystemPrinter(const GlobalData& data) {
    char text[MDL_PLOT_TEXT_BYTES] = "";
    mdlPlotDesc_getSysPrinter(text, plotOf(data));
    copyText(mclibpsd->printerName, text);
    mdlPlotDesc_getPaperSize(text, plotOf(data));
    copyText(mclibpsd->fileName, text);
}

void takePlotFile(const MdlPlotter* plotter) {
    const std::string file = plotterFile(plotter);
    if (!file.empty())
        copyText(mclibpsd->printerName, file);
    else
        nameOfPlotFiles(mclibpsd->printerName, plotterExtension(plotter));
}

// ---- the target's items ----
// The text is one of a row of six: what serves the other devices, a text and a list, stands in front of it, the toggle
// of the file, the file's name or the paper's, and the button of the system's print dialog behind it.

struct TargetItems {
    MdlItem *printerText, *printers, *target, *fileOnly, *file, *systemDialog;
};

TargetItems targetItemsOf(MdlDialog* dialog) {
    MdlItem* target = mdl::itemOf(dialog, ids::print::target);
    const auto at = [&](int32_t steps) { return mdlDialog_itemNeighbour(target, steps); };
    return {at(-2), at(-1), target, at(1), at(2), at(3)};
}

// Makes room for the button behind the item.
void narrowUpTo(MdlItem* item, const MdlItem* button) {
    DialogRect own, next;
    mdlDialog_itemRect(&own, item);
    mdlDialog_itemRect(&next, button);
    const int32_t height = own.bottom - own.top;
    if (next.left - itemGap > own.left) mdlDialog_itemSetExtent(item, next.left - itemGap - own.left, height);
}

// The plot descriptor knows where the plot goes; what would be typed here wouldn't count.
void showPlotTarget(const GlobalData& data, const TargetItems& items) {
    const MdlPlotter* plotter = plotterOf(data);
    const bool toSystem = plotsToSystem(plotter);
    if (toSystem) {
        takeSystemPrinter(data);
    } else {
        takePlotFile(plotter);
        mdlDialog_itemSetLabel(items.target, mc::languageText(ids::texts::plotFile));
    }
    mdlDialog_itemShow(items.printers, 0);
    mdlDialog_itemShow(items.printerText, 0);
    mdlDialog_itemEnable(items.target, 0);
    mdlDialog_itemEnable(items.file, 0);
    mdlDialog_itemSynch(items.target);
    mdlDialog_itemShow(items.fileOnly, 0);
    mdlDialog_itemShow(items.file, toSystem);
    mdlDialog_itemShow(items.systemDialog, toSystem);
    if (!toSystem) return;
    mdlDialog_itemSynch(items.file);
    narrowUpTo(items.file, items.systemDialog);
    mdlDialog_itemSetLabel(items.file, mc::languageText(ids::texts::paperSize));
}

void showTarget(const GlobalData& data, MdlDialog* dialog) {
    const TargetItems items = targetItemsOf(dialog);
    if (setupDeviceIs(PRINT_DEVICE_BY_HOST)) return showPlotTarget(data, items);
    mdlDialog_itemShow(items.target, 0);
    mdlDialog_itemShow(items.printers, 1);
    mdlDialog_itemShow(items.systemDialog, 0);
    applyFileOnly(dialog);
}

void printDialog(DialogMessage* message) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && mclibpsd && (message->type == DIALOG_CREATE || message->type == DIALOG_INIT);
    if (!message->handled) return;
    if (message->type == DIALOG_INIT) return showTarget(*data, message->dialog);
    mclibMain_updateBeforeDialogOpen(ids::print::id);
    loadSetup();
}

void systemDialogButton(DialogMessage* message) {
    const GlobalData* data = mclibMain_getGlobalDataP();
    message->handled = data && message->type == ITEM_BUTTON;
    if (!message->handled || message->state != 1 || !setupDeviceIs(PRINT_DEVICE_BY_HOST)) return;
    MdlPlotter* plotter = plotterOf(*data);
    int32_t answer = 0;
    if (!plotter || mdlPlotter_showSystemPrintdlg(&answer, plotter, 4, 1) != MDL_SUCCESS || answer != PRINTER_CHOSEN)
        return;
    mdlPlotDesc_setPlotter(plotOf(*data), plotter);
    takeSystemPrinter(*data);
    const TargetItems items = targetItemsOf(message->dialog);
    synchAndDraw(items.target);
    synchAndDraw(items.file);
}

// ---- the range of pages ----

// Of each dialog that asks for pages; that of the last page is behind it.
static_assert(ids::print::firstPage == ids::placePages::firstPage &&
              ids::print::firstPage == ids::spreadsheet::firstPage);
MdlItem* firstPageButton(MdlDialog* dialog) {
    return mdl::itemOf(dialog, ids::print::firstPage);
}

void enableRange(const GlobalData& data, MdlDialog* dialog) {
    MdlItem* first = firstPageButton(dialog);
    const bool enabled = data.fileDialogP->printRange == printPagesFromTo;
    mdlDialog_itemEnable(first, enabled);
    mdlDialog_itemEnable(mdlDialog_itemNeighbour(first, 1), enabled);
}

void keepBehindFirst(const GlobalData& data, MdlItem* lastPage) {
    for (int32_t row = 0, page = 0; row < mdlDialog_optionButtonCount(lastPage); ++row)
        if (mdlDialog_optionButtonGet(lastPage, row, nullptr, &page) == MDL_SUCCESS)
            mdlDialog_optionButtonEnableRow(lastPage, row, page >= data.fileDialogP->firstPage);
}

// The application's block when the hook takes a message of that type.
GlobalData* takes(DialogMessage* message, bool known) {
    GlobalData* data = known ? mclibMain_getGlobalDataP() : nullptr;
    message->handled = data != nullptr;
    return data;
}

void rangeButton(DialogMessage* message) {
    if (const GlobalData* data = takes(message, message->type == ITEM_STATE_CHANGED))
        enableRange(*data, message->dialog);
}

void firstPage(DialogMessage* message) {
    GlobalData* data = takes(message, message->type == ITEM_FILL || message->type == ITEM_STATE_CHANGED);
    if (!data) return;
    FileDialogBlock& block = *data->fileDialogP;
    if (message->type == ITEM_FILL) {
        fillWithPages(*data, message->item);
        block.firstPage = block.pageChoice;
        return;
    }
    MdlItem* lastPage = mdlDialog_itemNeighbour(message->item, 1);
    block.lastPage = std::max(block.lastPage, block.firstPage);
    keepBehindFirst(*data, lastPage);
    synchAndDraw(lastPage);
}

// The list may be another one than the last time that a range was asked for.
void lastPage(DialogMessage* message) {
    GlobalData* data = takes(message, message->type == ITEM_FILL);
    if (!data) return;
    FileDialogBlock& block = *data->fileDialogP;
    const int32_t last = std::max(fillWithPages(*data, message->item) - 1, 0);
    if (block.lastPage == 0 || block.lastPage > last) block.lastPage = last;
    block.lastPage = std::max(block.lastPage, block.firstPage);
    keepBehindFirst(*data, message->item);
    enableRange(*data, message->dialog);
}

}  // namespace

const DialogHook printDialogHooks[] = {
    {ids::hooks::print, printDialog},
    {ids::hooks::pageRange, rangeButton},
    {ids::hooks::firstPage, firstPage},
    {ids::hooks::lastPage, lastPage},
    {ids::hooks::systemPrintDialog, systemDialogButton},
    endOfHooks,
};

int32_t fillWithPages(const GlobalData& data, MdlItem* optionButton) {
    mdlDialog_optionButtonDeleteAll(optionButton);
    int32_t page = 0;
    for (; data.pageNames && data.pageNames[page]; ++page)
        mdlDialog_optionButtonInsert(optionButton, data.pageNames[page], page);
    return page;
}

}  // namespace mc::print
