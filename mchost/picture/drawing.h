// The active model for a pen.
#pragma once

#include "mchost/model/walk.h"

namespace host {

// Walks over the elements of the active model that meet `range`, whose axes are those of the view; `pen` gets them in
// these axes. False when the model can't be read.
bool drawModel(const Range3d& range, const RotMatrix& view, MdlPen pen);

}  // namespace host
