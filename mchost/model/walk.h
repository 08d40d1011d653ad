// The walk of mchost/mdl/walk.h for pens of the host, which may throw.
#pragma once

#include "mchost/mdl/walk.h"
#include "mchost/space/vector.h"

namespace host {

// Points are given as `current` takes them from UOR.
void walkDescriptor(const ElementDescr* ed, const MdlPen& pen, const Transform& current = identityTransform);

}  // namespace host
