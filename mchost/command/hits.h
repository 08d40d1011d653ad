// What lies near a point, as a view shows it.
#pragma once

#include <vector>

#include "mchost/mdl/types.h"
#include "mchost/model/model_ref.h"

namespace host {

// A point as the view shows it, and how far around it is looked, in UOR of the active model.
struct Aim {
    Point3d point;
    int32_t view;
    double reach;
};
// As far as a click goes: 10 pixels of the view.
Aim aimAt(const Point3d& point, int32_t view);

// An element that lies there, or with `number` a component of one.
struct Hit {
    FilePos position;
    uint32_t number;
    double distance;  // in the view
};
// Those that the view shows of a model where it is shown, the nearest first, and of those that are equally near the
// first in the file. Components stand for their headers.
std::vector<Hit> hitsAt(ModelRef& place, const Aim& aim);

}  // namespace host
