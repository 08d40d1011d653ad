// The current transform, for those who build and read elements.
#pragma once

#include "mchost/mdl/transform.h"
#include "mchost/space/vector.h"

namespace host {

const Transform& currentToWorld();    // from the current system to UOR
const Transform& currentFromWorld();  // and back

// False when the transform has no finite inverse; `inverse` is without meaning then.
bool invert(const Transform& t, Transform& inverse);

}  // namespace host
