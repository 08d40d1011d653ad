// Views for whoever shows them.
#pragma once

#include "mchost/picture/canvas.h"
#include "mchost/space/view.h"

namespace host {

// What the view shows on so many pixels, in its own axes.
Range3d rangeOn(int32_t view, const ViewSize& size);

// Draws what the view shows in the range, which is in its own axes: the models with their clips, and over them what
// commands show. False when a model can't be read.
bool drawView(int32_t view, const Range3d& range, Canvas& canvas);
// The same without what commands show.
bool drawModels(int32_t view, const Range3d& range, Canvas& canvas);

}  // namespace host
