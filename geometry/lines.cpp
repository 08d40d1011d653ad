#include "geometry/lines.h"

#include <algorithm>
#include <optional>

#include "geometry/clothoid.h"
#include "geometry/plane.h"
#include "host/mdl/transform.h"

namespace {

// Rounding that ends of an element may bring with them, relative to the length it is compared with.
constexpr double rounding = 1e-12;

// The square root of a number that rounding may have left a little below 0; nothing for one that is below 0 by itself.
std::optional<double> rootOf(double square, double scale) {
    if (!(square >= -rounding * scale)) return {};
    return std::sqrt(std::max(square, 0.0));
}

int checkRange(double g, double g1, double g2) {
    if (g1 == g2) return MCLIB_SUCCESS;
    if (g < std::min(g1, g2)) return GEO_BELOW;
    if (g > std::max(g1, g2)) return GEO_ABOVE;
    return MCLIB_SUCCESS;
}

// Half the angle of the shorter arc of a radius over a chord, signed as the radius is; nothing when the chord is too
// long for it.
std::optional<double> halfSweep(Point2d chord, double R) {
    const double sine = lengthOf(chord) / (2 * R);
    if (!(std::fabs(sine) <= 1 + rounding)) return {};
    return std::asin(std::clamp(sine, -1.0, 1.0));
}

// How far the circle lies from its centre in one direction, at a distance in the other: signed as the radius is.
std::optional<double> halfChord(double R, double distance) {
    const std::optional<double> root = rootOf(R * R - distance * distance, R * R);
    if (!root) return {};
    return R > 0 ? *root : -*root;
}

}  // namespace

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
    if (!(s >= 0 && s <= length) || length == 0) return MCLIB_ERROR;
    *xP = x1 + d.x * s / length;
    *yP = y1 + d.y * s / length;
    *angleP = bearingOf(d);
    return MCLIB_SUCCESS;
}

int mclibGeo_getCircleCoord(double* xP, double* yP, double* angleP, double x1, double y1, double x2, double y2,
                            double R, double s) {
    if (R == 0) return MCLIB_ERROR;
    *xP = *yP = 0;
    Point2d center;
    if (mclibGeo_getCircleCenter(&center.x, &center.y, x1, y1, x2, y2, R) != MCLIB_SUCCESS) return MCLIB_ERROR;
    const double b1 = bearingOf(Point2d{x1, y1} - center);
    double t1 = b1 + (R > 0 ? pi / 2 : -pi / 2);
    if (t1 > 2 * pi)
        t1 -= 2 * pi;
    else if (t1 < 0)
        t1 += 2 * pi;
    // Taken from the chord: the centre's rounding, far from the origin, would cut the last station off.
    const double arcLength = 2 * R * *halfSweep({x2 - x1, y2 - y1}, R);
    if (!(s >= 0 && s <= arcLength * (1 + rounding))) return MCLIB_ERROR;
    const double turn = s / R;
    const Point2d p = center + alongBearing(b1 + turn, std::fabs(R));
    *xP = p.x;
    *yP = p.y;
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
    const std::optional<double> half = halfSweep(chord, R);
    if (!half) return MCLIB_ERROR;
    const double tangent = bearingOf(chord) - *half;
    *xcP = x1 - R * std::sin(tangent);
    *ycP = y1 + R * std::cos(tangent);
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

// ---- equations ----

int mclibGeo_getCircleX(double* xP, double x1, double y1, double x2, double y2, double R, double y) {
    Point2d center;
    if (mclibGeo_getCircleCenter(&center.x, &center.y, x1, y1, x2, y2, R) != MCLIB_SUCCESS) return MCLIB_ERROR;
    const std::optional<double> half = halfChord(R, y - center.y);
    if (!half) return MCLIB_ERROR;
    *xP = center.x + *half;
    return checkRange(y, y1, y2);
}

int mclibGeo_getCircleY(double* yP, double x1, double y1, double x2, double y2, double R, double x) {
    Point2d center;
    if (mclibGeo_getCircleCenter(&center.x, &center.y, x1, y1, x2, y2, R) != MCLIB_SUCCESS) return MCLIB_ERROR;
    const std::optional<double> half = halfChord(R, x - center.x);
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
    *xP = (y - b) / a;
    return checkRange(y, y1, y2);
}

int mclibGeo_getLinearY(double* yP, double x1, double y1, double x2, double y2, double x) {
    double a, b;
    if (mclibGeo_getLinearAB(&a, &b, x1, y1, x2, y2) != MCLIB_SUCCESS) return MCLIB_ERROR;
    *yP = a * x + b;
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
