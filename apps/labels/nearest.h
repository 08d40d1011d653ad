// The element that lies nearest to a point, and what is known of it.
#pragma once

#include <optional>
#include <string>

#include <mchost/mdl/elmdscr.h>

namespace labels {

struct Nearest {
    FilePos position;
    Point3d point;  // of the element
    double distance;
};
// Among the elements that are neither labels nor texts, or among labels alone. Nothing when none lies nearer than
// `reach` (UOR).
std::optional<Nearest> nearestElement(const Point3d& point, double reach);
// A point among its texts lies on a label.
std::optional<Nearest> nearestLabel(const Point3d& point, double reach, int view);

// A tag string over an element: LEVEL, TYPE, LENGTH (master units), CELL, DATA (a text that was attached to it).
// Nothing, with the reason in `why`, for one that can't be worked out.
std::optional<std::string> textOver(FilePos element, const std::string& tagString, std::string& why);

}  // namespace labels
