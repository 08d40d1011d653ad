// What lies near a point, and in an area, as a view shows it.
#pragma once

#include <span>
#include <vector>

#include "mchost/mdl/types.h"
#include "mchost/model/model_ref.h"
#include "mchost/view/places.h"

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
    ModelRef* place;
    FilePos position;
    uint32_t number;
    double distance;  // in the view

    const MSElementBuffer* element() const;
};
// Those that the view shows of a model where it is shown, the nearest first, and of those that are equally near the
// first in the file. Components stand for their headers. What clips take away isn't there.
std::vector<Hit> hitsAt(ModelRef& place, const Aim& aim, std::span<const ShownClip> clips = {});
// The same of the active model and of all that is attached to it and shown.
std::vector<Hit> hitsAnywhere(const Aim& aim);

// From the active model to what a view shows: x to the right, y up, z towards the user.
Transform seenFrom(int32_t view);
// The elements of a model that may lie in a box of what is seen, however deep; z of the box doesn't count.
std::vector<FilePos> elementsBehind(Model& model, const Transform& toSeen, const Range3d& seen);
// The points that tell where an element is seen: along it, within the tolerance, or for a text the corners of its box
// and the first again. False, with `points` empty, for one that isn't seen.
bool outlineOf(std::vector<Point3d>& points, const MSElementBuffer* element, double tolerance,
               const Transform& transform);

}  // namespace host
