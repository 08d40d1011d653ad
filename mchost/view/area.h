// Where views look, and what is done with that. Views are numbers of views; what changes one is false, and changes
// nothing, when the view can't show what it would have to (isViewArea).
#pragma once

#include <optional>

#include "mchost/space/view.h"
#include "mchost/space/view_map.h"

namespace host {

// The view with the area that it shows: at the first look it is fitted.
const View& lookAt(int32_t view);
// From UOR to pixels of whoever shows it.
ViewMap viewMap(int32_t view);
double viewPixelSize(int32_t view);  // UOR

// What a view of this area shows, in the axes of the view.
Range3d shownRange(const View& view);
// Room around a drawing for its pens, and a second dimension for a drawing that has only one.
Range3d withMargin(Range3d range);

bool setViewArea(int32_t view, const Point3d& origin, const Point3d& extent);
bool setViewWindow(int32_t view, const Point3d& corner, const Point3d& opposite);
bool fitView(int32_t view);
bool zoomView(int32_t view, double factor, const std::optional<Point3d>& about);
bool panView(int32_t view, double right, double up);
bool centerView(int32_t view, const Point3d& center);
bool turnView(int32_t view, const RotMatrix& rotation);  // about the middle of what it shows

}  // namespace host
