// The elements of a model for a pen.
#pragma once

#include <functional>

#include "mchost/model/walk.h"

namespace host {

// Visits the elements of a place (null: the active model) that meet `range` as seen from above behind `intoView`, in
// order of the file. False when the model can't be read.
bool forEachInView(ModelRef* place, const Transform& intoView, const Range3d& range,
                   const std::function<void(FilePos)>& visit);

// Walks over the elements of the active model that meet `range`, whose axes are those of the view; `pen` gets them in
// these axes. False when the model can't be read.
bool drawModel(const Range3d& range, const RotMatrix& view, MdlPen pen);

Transform transformOf(const RotMatrix& rotation);
// For a pen: null when it changes nothing.
const Transform* unlessIdentity(const Transform& transform);

}  // namespace host
