// The current transform, for those who build and read elements.
#pragma once

#include "host/mdl/transform.h"
#include "host/space/vector.h"

namespace host {

const Transform& currentToWorld();    // from the current system to UOR
const Transform& currentFromWorld();  // and back

}  // namespace host
