// The set-up in the user's preference file, and what its dialogs share. Internal to this folder and to start-up.
#pragma once

#include <string_view>

#include "mchost/mdl/dialog.h"
#include "mclib/frame/global_data.h"

namespace mc::print {

// Reads the set-up into mclibpsd; takes the defaults when none is stored, or when the file can't be opened, which the
// user is told.
void loadSetup();
// The same without a word; what isn't stored, or can't be read, leaves mclibpsd as it is.
void readStoredSetup();
// Writes mclibpsd; what fails is told.
void storeSetup();

// ---- what both dialogs have ----

// The file's name can be edited when the output stays in the file, the printer be chosen or typed when it doesn't.
void applyFileOnly(MdlDialog* dialog);
// The item that takes any kind of printer.
MdlItem* printerTextOf(MdlDialog* dialog);
// Fills an option button with the page names, row for row; how many there are.
int32_t fillWithPages(const GlobalData& data, MdlItem* optionButton);

// ---- printers ----

// The row of a list of printers (mclib/print/delivery.h) with that path; -1 for none, and for no list.
int32_t rowOfPrinter(const StringList* printers, std::string_view path);
// Whether the text is what stands in a set-up that nobody has chosen a printer in.
bool isNobodysPrinter(std::string_view printer);
// Whether the set-up's printer is one that somebody chose, or one that there is.
bool printerIsChosen();

// ---- hooks ----

extern const DialogHook setupHooks[], printDialogHooks[];

}  // namespace mc::print
