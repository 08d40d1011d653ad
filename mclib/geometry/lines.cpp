#include "mclib/geometry/lines.h"

#include <algorithm>
#include <optional>

#include "mchost/mdl/transform.h"
#include "mclib/geometry/clothoid.h"
#include "mclib/geometry/plane.h"

namespace mc {

namespace {

int checkRange(double g, double g1, double g2) {
    if (g1 == g2) return MCLIB_SUCCESS;
    if (g < std::min(g1, g2)) return GEO_BELOW;
    if (g > std::max(g1, g2)) return GEO_ABOVE;
    return MCLIB_SUCCESS;
}

// Half the angle of the shorter arc of a radius over a chord, signed as the radius is; a half circle's when the chord
// is longer than the diameter by rounding alone, nothing when it is too long for it.
std::optional<double> halfSweep(double chord, double R, double slack) {
    if (!(chord <= 2 * std::fabs(R) + slack)) return {};
    return std::asin(std::clamp(chord / (2 * R), -1.0, 1.0));
}

// How far the circle lies from its centre in one direction, at a distance in the other: signed as the radius is.
std::optional<double> halfChord(double R, double distance, double slack) {
    const double beyond = std::fabs(distance) - std::fabs(R);
    if (!(beyond <= slack)) return {};
    return std::copysign(std::sqrt(std::max(R * R - distance * distance, 0.0)), R);
}

}  // namespace

}  // namespace mc

using namespace mc;

// ---- elements ----

int mclibGeo_getElementType(double R1, double R2, double A) {
    if (A == 0) return R1 == 0 ? GEO_LINE : GEO_CIRCLE;
    return R1 == R2 ? GEO_LINE : GEO_CLOTHOID;
}

int mclibGeo_getElementCoord(double* xP, double* yP, double* angleP, double x1, double y1, double x2, double y2,
                             double R1, double R2, double A, double s) {
    switch (mclibGeo_getElementType(R1, R2, A)) {
        case GEO_LINE: return mclibGeo_getLineCoord(xP, yP, angleP, x1, y1, x2, y2, s);
        case GEO_CIRCLE: return mclibGeo_getCircleCoord(xP, yP, angleP, x1, y1, x2, y2, R1, s);
        case GEO_CLOTHOID: return mclibGeo_getKlotCoord(xP, yP, angleP, x1, y1, x2, y2, R1, R2, A, s);
        default: return MCLIB_ERROR;
    }
}

int mclibGeo_getLineCoord(double* xP, double* yP, double* angleP, double x1, double y1, double x2, double y2,
                          double s) {
    *xP = *yP = 0;
    const Point2d d = {x2 - x1, y2 - y1};
    const double length = lengthOf(d);
    if (length == 0 || !std::isfinite(length)) return MCLIB_ERROR;
    const std::optional<double> station = stationWithin(s, 0, length, slackOf(length, {x1, y1, x2, y2}));
    if (!station) return MCLIB_ERROR;
    *xP = x1 + d.x * *station / length;
    *yP = y1 + d.y * *station / length;
    *angleP = bearingOf(d);
    return MCLIB_SUCCESS;
}

int mclibGeo_getCircleCoord(double* xP, double* yP, double* angleP, double x1, double y1, double x2, double y2,
                            double R, double s) {
    if (R == 0) return MCLIB_ERROR;
    *xP = *yP = 0;
    Point2d center;
    if (mclibGeo_getCircleCenter(&center.x, &center.y, x1, y1, x2, y2, R) != MCLIB_SUCCESS) return MCLIB_ERROR;
    double t1 = bearingOf(Point2d{x1, y1} - center) + (R > 0 ? pi / 2 : -pi / 2);
    if (t1 > 2 * pi)
        t1 -= 2 * pi;
    else if (t1 < 0)
        t1 += 2 * pi;
    // From the chord, not from the centre, whose digits are lost far from the origin and for large radii. The last
    // station may be that of the longest chord that rounding allows: near a half circle it grows much faster.
    const Point2d chord = {x2 - x1, y2 - y1};
    const double length = lengthOf(chord), slack = slackOf(length, {x1, y1, x2, y2});
    const double half = *halfSweep(length, R, slack),
                 longest = *halfSweep(std::min(length + slack, 2 * std::fabs(R)), R, 0);
    const double arcLength = 2 * R * half;
    const std::optional<double> station = stationWithin(s, 0, arcLength, 2 * R * longest - arcLength + slack);
    if (!station) return MCLIB_ERROR;
    const double turn = *station / R;
    const Point2d along = alongBearing(bearingOf(chord) - half + turn / 2, 2 * R * std::sin(turn / 2));
    *xP = x1 + along.x;
    *yP = y1 + along.y;
    *angleP = t1 + turn;
    return MCLIB_SUCCESS;
}

// ---- circles and bearings ----

int mclibGeo_getCircleCenter(double* xcP, double* ycP, double x1, double y1, double x2, double y2, double R) {
    if (R == 0) return MCLIB_ERROR;
    if (x1 == x2 && y1 == y2) {
        *xcP = *ycP = 0;
        return MCLIB_ERROR;
    }
    const Point2d chord = {x2 - x1, y2 - y1};
    const double length = lengthOf(chord);
    const std::optional<double> half = halfSweep(length, R, slackOf(length, {x1, y1, x2, y2}));
    if (!half) return MCLIB_ERROR;
    const double tangent = bearingOf(chord) - *half;
    const Point2d center = {x1 - R * std::sin(tangent), y1 + R * std::cos(tangent)};
    if (!std::isfinite(center.x) || !std::isfinite(center.y)) return MCLIB_ERROR;
    *xcP = center.x;
    *ycP = center.y;
    return MCLIB_SUCCESS;
}

int mclibGeo_getCircleQuadrant(double* angleP, double dx, double dy) {
    const int quadrant = dx >= 0 ? (dy >= 0 ? 1 : 4) : (dy >= 0 ? 2 : 3);
    double angle;
    if (dx == 0)
        angle = dy == 0 ? 0 : dy > 0 ? pi / 2 : -pi / 2;
    else
        angle = std::atan(dy / dx);
    if (quadrant == 4) angle += 2 * pi;
    if (quadrant == 2 || quadrant == 3) angle += pi;
    *angleP = angle;
    return quadrant;
}

// ---- equations: from a point of the line, as b loses the digits of coordinates far from the origin ----

int mclibGeo_getCircleX(double* xP, double x1, double y1, double x2, double y2, double R, double y) {
    Point2d center;
    if (mclibGeo_getCircleCenter(&center.x, &center.y, x1, y1, x2, y2, R) != MCLIB_SUCCESS) return MCLIB_ERROR;
    const std::optional<double> half = halfChord(R, y - center.y, slackOf(R, {x1, y1, x2, y2, y}));
    if (!half) return MCLIB_ERROR;
    *xP = center.x + *half;
    return checkRange(y, y1, y2);
}

int mclibGeo_getCircleY(double* yP, double x1, double y1, double x2, double y2, double R, double x) {
    Point2d center;
    if (mclibGeo_getCircleCenter(&center.x, &center.y, x1, y1, x2, y2, R) != MCLIB_SUCCESS) return MCLIB_ERROR;
    const std::optional<double> half = halfChord(R, x - center.x, slackOf(R, {x1, y1, x2, y2, x}));
    if (!half) return MCLIB_ERROR;
    *yP = center.y + *half;
    return checkRange(x, x1, x2);
}

int mclibGeo_getLinearAB(double* aP, double* bP, double x1, double y1, double x2, double y2) {
    *aP = *bP = 0;
    if (x1 == x2 && y1 == y2) return MCLIB_ERROR;
    const double a = x1 == x2 ? 1.0 : (y2 - y1) / (x2 - x1);
    *aP = a;
    *bP = y1 - x1 * a;
    return MCLIB_SUCCESS;
}

int mclibGeo_getLinearX(double* xP, double x1, double y1, double x2, double y2, double y) {
    double a, b;
    if (mclibGeo_getLinearAB(&a, &b, x1, y1, x2, y2) != MCLIB_SUCCESS || a == 0) return MCLIB_ERROR;
    *xP = x1 + (y - y1) / a;
    return checkRange(y, y1, y2);
}

int mclibGeo_getLinearY(double* yP, double x1, double y1, double x2, double y2, double x) {
    double a, b;
    if (mclibGeo_getLinearAB(&a, &b, x1, y1, x2, y2) != MCLIB_SUCCESS) return MCLIB_ERROR;
    *yP = y1 + (x - x1) * a;
    return checkRange(x, x1, x2);
}

// ---- frames, corners and ends ----

void mclibGeo_coordGlobalToLocal(double* xlP, double* ylP, double xg, double yg, double angle) {
    const double c = std::cos(angle), n = std::sin(angle);
    *xlP = c * xg + n * yg;
    *ylP = c * yg - n * xg;
}

void mclibGeo_coordLocalToGlobal(double* xgP, double* ygP, double xl, double yl, double angle) {
    const double c = std::cos(angle), n = std::sin(angle);
    *xgP = c * xl - n * yl;
    *ygP = n * xl + c * yl;
}

void mclibGeo_createFillet(Point3d* pointsP, double radius) {
    const auto bearing = [&](int from, int to) {
        return std::atan2(pointsP[to].y - pointsP[from].y, pointsP[to].x - pointsP[from].x);
    };
    const auto put = [&](int i, Point2d p) { pointsP[i].x = p.x, pointsP[i].y = p.y; };
    const auto at = [&](int i) { return Point2d{pointsP[i].x, pointsP[i].y}; };

    const double bearing1 = bearing(0, 1), bearing2 = bearing(2, 3);
    const double turn = bearing2 - bearing1;
    const double tangent = std::fabs(radius * std::tan(turn / 2));
    const bool left = (0 < turn && turn < pi) || turn < -pi;
    put(1, at(1) - alongBearing(bearing1, tangent));
    put(2, at(2) + alongBearing(bearing2, tangent));
    put(4, at(1) + alongBearing(bearing1 + (left ? pi / 2 : -pi / 2), radius));
}

void mclibGeo_trimVector(Point3d* pointsP, double distance1, double distance2) {
    Point3d forward, backward;
    mdlVec_computeNormal(&forward, &pointsP[0], &pointsP[1]);
    mdlVec_computeNormal(&backward, &pointsP[1], &pointsP[0]);
    const auto move = [](Point3d& p, const Point3d& direction, double distance) {
        p.x += distance * direction.x;
        p.y += distance * direction.y;
        p.z += distance * direction.z;
    };
    move(pointsP[0], forward, distance1);
    move(pointsP[1], backward, distance2);
}
