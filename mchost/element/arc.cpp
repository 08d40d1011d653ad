// Arcs and ellipses.
#include <numbers>

#include "mchost/element/build.h"

using namespace host;

namespace {

constexpr double pi = std::numbers::pi;

bool isUsable(const EllipseBody& e) {
    return isFinite(e.center) && isFinite(e.axis0) && isFinite(e.axis90) && dot(e.axis0, e.axis0) > 0 &&
           dot(e.axis90, e.axis90) > 0;
}

EllipseBody makeEllipse(const Point3d& center, double axis1, double axis2, const RotMatrix* rotation) {
    const RotMatrix& m = rotation ? *rotation : identityMatrix;
    const Transform& toWorld = currentToWorld();
    return {applyToPoint(toWorld, center), applyToVector(toWorld, column(m, 0) * axis1),
            applyToVector(toWorld, column(m, 1) * axis2)};
}

int finishArc(MSElementBuffer* out, const MSElementBuffer* templateP, const ArcBody& arc) {
    if (!isArcSweep(arc.start, arc.sweep) || !isUsable(arc.ellipse)) return MDL_ERROR;
    return finish(NewElement(out, templateP, MDL_ARC), arc);
}

// Turns conjugate half diameters, any two of an ellipse, into its main axes. The points keep their order; their angles
// go down by `start`'s change.
void straighten(ArcBody& arc) {
    Point3d &u = arc.ellipse.axis0, &v = arc.ellipse.axis90;
    const double uu = dot(u, u), vv = dot(v, v), uv = dot(u, v);
    if (std::fabs(uv) <= 1e-12 * std::sqrt(uu * vv)) return;
    const double turn = 0.5 * std::atan2(2 * uv, uu - vv), c = std::cos(turn), s = std::sin(turn);
    const Point3d main = u * c + v * s;
    v = v * c - u * s;
    u = main;
    arc.start -= turn;
}

// An arc that lies parallel to the xy plane and is seen from below becomes the same arc seen from above.
void turnUp(ArcBody& arc) {
    Point3d &u = arc.ellipse.axis0, &v = arc.ellipse.axis90;
    const Point3d n = cross(u, v);
    if (!(n.z < 0 && std::hypot(n.x, n.y) <= -1e-12 * n.z)) return;
    v = -v;
    arc.start = -arc.start;
    arc.sweep = -arc.sweep;
}

RotMatrix axesOf(const EllipseBody& e) {
    const double l0 = length(e.axis0), l90 = length(e.axis90);
    const Point3d x = l0 > 0 ? e.axis0 * (1 / l0) : Point3d{1, 0, 0};
    const Point3d y = l90 > 0 ? e.axis90 * (1 / l90) : Point3d{-x.y, x.x, 0};
    return fromColumns(x, y, cross(x, y));
}

Point3d unit(const Point3d& v) {
    const double l = length(v);
    return l > 0 ? v * (1 / l) : Point3d{};
}

}  // namespace

int mdlArc_create(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* center, double axis1,
                  double axis2, const RotMatrix* rotation, double startAngle, double sweepAngle) noexcept {
    if (!out || !center || !(axis1 > 0 && axis2 > 0)) return MDL_ERROR;
    return finishArc(out, templateP, {makeEllipse(*center, axis1, axis2, rotation), startAngle, sweepAngle});
}

int mdlArc_createByCenter(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* start,
                          const Point3d* center, const Point3d* end, int32_t clockwise,
                          const Point3d* normal) noexcept {
    if (!out || !start || !center || !end) return MDL_ERROR;
    const Point3d axis = unit(normal ? *normal : Point3d{0, 0, 1});
    const Point3d radius = *start - *center, toEnd = *end - *center;
    const Point3d x = unit(radius - axis * dot(radius, axis)), y = cross(axis, x);
    const double dx = dot(toEnd, x), dy = dot(toEnd, y);
    if (!(dot(x, x) > 0 && dot(y, y) > 0) || (dx == 0 && dy == 0)) return MDL_ERROR;
    double sweep = std::atan2(dy, dx);
    if (clockwise ? sweep >= 0 : sweep <= 0) sweep += clockwise ? -2 * pi : 2 * pi;
    const double r = dot(radius, x);
    const RotMatrix rotation = fromColumns(x, y, axis);
    const Point3d centerInPlane = *start - x * r;
    return finishArc(out, templateP, {makeEllipse(centerInPlane, r, r, &rotation), 0, sweep});
}

int mdlEllipse_create(MSElementBuffer* out, const MSElementBuffer* templateP, const Point3d* center, double axis1,
                      double axis2, const RotMatrix* rotation, int32_t fillMode) noexcept {
    if (!out || !center || !(axis1 > 0 && axis2 > 0)) return MDL_ERROR;
    const EllipseBody ellipse = makeEllipse(*center, axis1, axis2, rotation);
    if (!isUsable(ellipse)) return MDL_ERROR;
    NewElement made(out, templateP, MDL_ELLIPSE);
    made.setFilled(fillMode != 0);
    return finish(std::move(made), ellipse);
}

int mdlArc_extract(Point3d* center, double* axis1, double* axis2, RotMatrix* rotation, double* startAngle,
                   double* sweepAngle, const MSElementBuffer* element) noexcept {
    auto arc = element ? arcOf(element) : std::nullopt;
    if (!arc) return MDL_ERROR;
    const Transform& fromWorld = currentFromWorld();
    EllipseBody& e = arc->ellipse;
    e = {applyToPoint(fromWorld, e.center), applyToVector(fromWorld, e.axis0), applyToVector(fromWorld, e.axis90)};
    straighten(*arc);
    turnUp(*arc);
    if (headOf(element).type == MDL_ELLIPSE) arc->start = 0, arc->sweep = 2 * pi;
    if (center) *center = e.center;
    if (axis1) *axis1 = length(e.axis0);
    if (axis2) *axis2 = length(e.axis90);
    if (rotation) *rotation = axesOf(e);
    if (startAngle) *startAngle = arc->start;
    if (sweepAngle) *sweepAngle = arc->sweep;
    return MDL_SUCCESS;
}
