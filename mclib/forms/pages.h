// The pages of the preview: their names, how one is made, and which of them a print job, a plot or a placing takes. For
// the files of this room. All of it works on the current application's block.
#pragma once

#include "mchost/mdl/owned.hpp"
#include "mclib/forms/preview.h"
#include "mclib/frame/global_data.h"

enum PrintRange { printCurrentPage = 0, printAllPages = 1, printPagesFromTo = 2 };

// A page of a plot, while it lies in the design file.
struct PlotPage {
    Point3d low, high;  // the page's printable area in the design file: lower left and upper right corner
    FilePos filePos;    // of its temporary element; 0: none
    int32_t view;       // of the data point; the first record's counts
    char name[256];
};

namespace forms {

using Page = mdl::Descr;  // null for no page

// ---- names ----

int32_t pageCount(const GlobalData& data);
// The name of a page; empty for a number outside the list.
const char* pageName(const GlobalData& data, int32_t page);
// Replaces the names by copies. False, with the names as they were and the user told, when out of memory, and when
// different names are the same as far as page records keep them (mclib/project/store.h).
bool setPageNames(GlobalData& data, int32_t count, char* const* names);

// ---- making ----

// Has the application's page function make the page, after its name was copied to currentPageName. *result is null
// when there is no page function or it gives no page. The caller frees it.
void makePage(GlobalData& data, int32_t page, bool inDrawing, ElementDescr** result);
bool canMakePages();

// The pages that printRange asks for, first and last included, held to those that there are. Empty, with last below
// first, also for the page on show of a preview that was closed in the meantime.
struct PageSpan {
    int32_t first, last;
};
PageSpan pagesToPrint(const GlobalData& data);

// The application's functions. The user print function is null unless one was set since the preview was opened.
void setFunctions(McPageFunction page, McPageListFunction pageList);
void setUserPrintFunction(McUserPrintFunction function);
McPageListFunction pageListFunction();
McUserPrintFunction userPrintFunction();

// ---- on the sheet ----

// Whether a page has to be turned by a quarter to fit the sheet of the printer set-up better; a null page isn't.
bool isTurned(const ElementDescr* page);

// ---- the dialog ----

void publishPreviewHooks();
// Makes the page on show anew, and draws it where the dialog is open.
void showPage(GlobalData& data);
// Fills an option button with the page names, row for row, and shows the one that its access string names.
void fillWithPageNames(const GlobalData& data, MdlItem* optionButton);

// ---- placing and plotting ----

// Starts the command that places the pages of printRange at the user's data point: in the drawing, or, with forPlot,
// for the plot that plotPages prepared.
void startPlacing(GlobalData& data, bool forPlot);
// Plots the pages through the host: asks in the print dialog, and starts the placing.
void plotPages(GlobalData& data);

}  // namespace forms
