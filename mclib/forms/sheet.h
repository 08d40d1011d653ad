// The sheet of the printer set-up that pages are printed and placed on.
#pragma once

#include "mclib/print/shared.h"

namespace mc::forms {

// mclibPrinterSetupData::orientation
enum Orientation { orientationTurned = 0, orientationUpright = 1, orientationByShape = 2 };

struct PrintableArea {
    double width, height;  // mm
    bool isEmpty() const { return !(width > 0 && height > 0); }
};
// What the margins leave.
PrintableArea printableArea();

// Whether a page has to be turned by a quarter to fit the sheet better; a null page isn't.
bool isTurned(const ElementDescr* page);

}  // namespace mc::forms
