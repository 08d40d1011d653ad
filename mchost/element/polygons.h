// Areas that lie in two others.
#pragma once

#include "mchost/element/clip.h"

namespace host {

// Inside is what an odd number of turns goes round, in both. Outer rings turn counter-clockwise, holes clockwise.
Rings intersectPolygons(const Rings& a, const Rings& b);
// The same without holes: the ring around one goes to it and back.
Rings intersectToOutlines(const Rings& a, const Rings& b);

}  // namespace host
