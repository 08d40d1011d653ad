// The fence, for those who plot what lies in it.
#pragma once

#include <optional>
#include <vector>

#include "mchost/mdl/types.h"

namespace host {

struct Fence {
    std::vector<Point3d> corners;  // UOR
    int32_t view;
    uint64_t model;  // serial
};

// Nothing when there is no fence in the active model.
const Fence* activeFence();

}  // namespace host
