// Handing points out to a caller.
#pragma once

#include <span>

#include "mchost/mdl/types.h"

namespace host {

// A copy in a block that the caller frees with dlmSystem_mdlFree. MDL_ERROR, with nothing stored, when out of memory.
int givePoints(Point3d** pointsP, int32_t* countP, std::span<const Point3d> points);

}  // namespace host
