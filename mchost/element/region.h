// The areas of closed elements.
#pragma once

#include "mchost/element/chain.h"
#include "mchost/element/clip.h"
#include "mchost/space/vector.h"

namespace host {

constexpr Point2 flat(const Transform& toPlane, const Point3d& p) {
    const Point3d q = applyToPoint(toPlane, p);
    return {q.x, q.y};
}

// Adds the area of a closed element that lies in the rings, as it is seen behind `toPlane`, as shapes in the plane of
// the element which look like it. 0, also when nothing lies in both, or what mdlElmdscr_intersectShapes fails with.
int addIntersection(NewChain& to, const ElementDescr* closed, const Rings& with, const Transform& toPlane,
                    double tolerance);

}  // namespace host
