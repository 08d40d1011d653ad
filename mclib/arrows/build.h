// One arrow built from what is being placed.
#pragma once

#include "mchost/mdl/types.h"

namespace mc::arrows {

// Builds the arrow with the point as its last vertex and shows it in the draw mode; MDL_DRAW also writes it, or hands
// it to the application. MCLIB_ERROR when nothing could be built or written; for MDL_DRAW the user has been told.
int build(const Point3d& point, int view, int drawMode);

}  // namespace mc::arrows
