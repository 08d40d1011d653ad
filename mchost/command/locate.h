// Locating for the command that runs.
#pragma once

#include <cstdint>

#include "mchost/mdl/types.h"

namespace host {

// A command that starts has no rules.
void forgetLocateRules();
// Nothing is located any more.
void forgetLocated();
bool isLocated();  // and still there
// Whether points that are to locate an element are snapped.
bool snapsToLocate();

// Makes what the point means the located element. False when there is none: why has been told. The post-locate function
// may start another command or close the design file: false then, too.
bool locateAt(const Point3d& point, int32_t view);

}  // namespace host
