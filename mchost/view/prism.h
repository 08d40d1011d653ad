// What a clip leaves of lines that are looked at from aside.
#pragma once

#include <span>
#include <vector>

#include "mchost/model/model.h"

namespace host {

// The inside of an outline, however high or low: `intoModel` brings points to the coordinates of the outline.
struct Prism {
    Transform intoModel;
    const std::vector<ClipPoint>* outline;
};

bool isInside(const Prism& prism, const Point3d& point);
// The pieces of a line that lie inside, in order.
std::vector<std::vector<Point3d>> piecesInside(const Prism& prism, std::span<const Point3d> line);

}  // namespace host
