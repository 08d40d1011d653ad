// Snapping, for those who take points of the user.
#pragma once

#include <optional>
#include <string_view>

#include "mchost/mdl/snap.h"

namespace host {

// Where a mode snaps the point to, as the view shows it; nothing when no element that is near has such a point.
std::optional<Point3d> snappedIn(int32_t mode, const Point3d& point, int32_t view);
// By the modes that are on; the point itself when they find nothing.
Point3d snapped(const Point3d& point, int32_t view);

// A mode by its name ("end") or number; 0 for none.
int32_t snapModeNamed(std::string_view word);

}  // namespace host
