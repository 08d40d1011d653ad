// Elements as points along them.
#include <numbers>

#include "mchost/base/guard.h"
#include "mchost/element/geometry.h"
#include "mchost/element/points.h"
#include "mchost/element/spline.h"
#include "mchost/mdl/system.h"
#include "mchost/space/current.h"

namespace host {
namespace {

constexpr double widestStep = std::numbers::pi / 4;
constexpr double mostSegments = 100000;

// Segments over the sweep so that no chord is farther than the tolerance from the arc. The ellipse is the affine
// picture of a unit circle, so a chord over the angle a strays by at most the longer half diameter times 1 - cos(a /
// 2).
int segmentsFor(const ArcBody& arc, double tolerance) {
    const EllipseBody& e = arc.ellipse;
    const double uu = dot(e.axis0, e.axis0), vv = dot(e.axis90, e.axis90), uv = dot(e.axis0, e.axis90);
    const double longest = std::sqrt(0.5 * (uu + vv + std::hypot(uu - vv, 2 * uv)));
    // 1 - cos(a / 2) = 2 sin(a / 4)^2, which keeps its digits for small steps
    const double step = tolerance < longest ? 4 * std::asin(std::sqrt(0.5 * tolerance / longest)) : widestStep;
    const double wanted = std::ceil(std::fabs(arc.sweep) / std::min(step, widestStep));
    return static_cast<int>(std::clamp(wanted, 1.0, mostSegments));
}

void strokeArc(std::vector<Point3d>& points, const ArcBody& arc, double tolerance, bool closed) {
    const EllipseBody& e = arc.ellipse;
    const int segments = segmentsFor(arc, tolerance);
    const size_t first = points.size();
    for (int i = 0; i <= segments; ++i) {
        const double angle = i == segments ? arc.start + arc.sweep : arc.start + arc.sweep * i / segments;
        points.push_back(e.center + e.axis0 * std::cos(angle) + e.axis90 * std::sin(angle));
    }
    if (closed) points.back() = points[first];
}

bool strokeUnchecked(std::vector<Point3d>& points, const MSElementBuffer* element, double tolerance,
                     const Transform& t) {
    if (const auto vertices = verticesOf(element)) {
        for (uint32_t i = 0; i < vertices->size(); ++i) points.push_back(applyToPoint(t, (*vertices)[i]));
        return true;
    }
    if (auto arc = arcOf(element)) {
        EllipseBody& e = arc->ellipse;
        e = {applyToPoint(t, e.center), applyToVector(t, e.axis0), applyToVector(t, e.axis90)};
        if (!isFinite(e.center) || !isFinite(e.axis0) || !isFinite(e.axis90)) return false;
        strokeArc(points, *arc, tolerance, headOf(element).type == MDL_ELLIPSE);
        return true;
    }
    if (const auto curve = curveOf(element)) {
        Spline spline = readSpline(*curve);
        for (Point3d& pole : spline.poles) pole = applyToPoint(t, pole);
        if (!spline.isSound()) return false;
        strokeSpline(points, spline, tolerance);
        return true;
    }
    return false;
}

}  // namespace

bool strokeElement(std::vector<Point3d>& points, const MSElementBuffer* element, double tolerance,
                   const Transform& transform) {
    const size_t before = points.size();
    double taints = 0;
    bool stroked = tolerance > 0 && strokeUnchecked(points, element, tolerance, transform);
    for (size_t i = before; i < points.size(); ++i) taints += taint(points[i]);
    stroked = stroked && taints == 0 && points.size() > before;
    if (!stroked) points.resize(before);
    return stroked;
}

int givePoints(Point3d** pointsP, int32_t* countP, std::span<const Point3d> points) {
    auto* copy = static_cast<Point3d*>(dlmSystem_mdlMalloc(points.size_bytes()));
    if (!copy) return MDL_ERROR;
    std::ranges::copy(points, copy);
    *pointsP = copy;
    *countP = static_cast<int32_t>(points.size());
    return MDL_SUCCESS;
}

}  // namespace host

using namespace host;

int mdlElement_stroke(Point3d** pointsP, int32_t* countP, const MSElementBuffer* element, double tolerance) noexcept {
    if (!pointsP || !countP || !element) return MDL_ERROR;
    // A page has many elements with few points each: the room for them is kept from call to call.
    static thread_local std::vector<Point3d> points;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        constexpr size_t keptRoom = 10000;
        points.clear();
        const bool stroked = strokeElement(points, element, tolerance, currentFromWorld());
        const int status = stroked ? givePoints(pointsP, countP, points) : MDL_ERROR;
        if (points.capacity() > keptRoom) points = {};
        return status;
    });
}
