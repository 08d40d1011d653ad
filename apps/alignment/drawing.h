// The drawing of a road on its sheet.
#pragma once

#include <memory>

#include <mchost/mdl/transform.h>
#include <mchost/mdl/owned.hpp>
#include "road.h"
#include "sheet.h"

namespace alignment {

using Page = mdl::DescrPtr;

// Justification codes of the host.
enum Just { leftTop = 0, leftCentre = 1, leftBase = 2, centreCentre = 7, centreBase = 8, rightCentre = 13 };

// Everything on the sheet, in the coordinates of the active model; the frame, which is the sheet's extent, comes first.
// Null, after a message, when an element can't be made.
Page drawRoad(const Road& road, const Sheet& sheet);
// Turns a page about the sheet's centre so that the sheet's lower edge runs along x.
bool turnUpright(ElementDescr* page, const Sheet& sheet);
// The frame of an upright page, in UOR.
Range3d uprightFrame(const Sheet& sheet);

}  // namespace alignment
