// The drawing of a road on its sheet.
#pragma once

#include <memory>

#include "host/mdl/elmdscr.h"
#include "road.h"
#include "sheet.h"

namespace alignment {

struct FreeDescr {
    void operator()(ElementDescr* ed) const { mdlElmdscr_freeAll(&ed); }
};
using Page = std::unique_ptr<ElementDescr, FreeDescr>;

// Everything on the sheet, in the coordinates of the active model; the frame, which is the sheet's extent, comes first.
// Null, after a message, when an element can't be made.
Page drawRoad(const Road& road, const Sheet& sheet);
// Turns a page about the sheet's centre so that the sheet's lower edge runs along x.
void turnUpright(ElementDescr* page, const Sheet& sheet);
// The frame of an upright page, in UOR.
Range3d uprightFrame(const Sheet& sheet);

}  // namespace alignment
