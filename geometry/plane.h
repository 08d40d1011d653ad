// Points and bearings of the plane, shared by the geometry files.
#pragma once

#include <cmath>
#include <numbers>

#include "geometry/lines.h"

constexpr double pi = std::numbers::pi;

struct Point2d {
    double x, y;
    friend Point2d operator+(Point2d a, Point2d b) { return {a.x + b.x, a.y + b.y}; }
    friend Point2d operator-(Point2d a, Point2d b) { return {a.x - b.x, a.y - b.y}; }
};

inline double lengthOf(Point2d d) {
    return std::sqrt(d.x * d.x + d.y * d.y);
}

inline Point2d alongBearing(double angle, double length) {
    return {length * std::cos(angle), length * std::sin(angle)};
}

inline double bearingOf(Point2d d) {
    double angle;
    mclibGeo_getCircleQuadrant(&angle, d.x, d.y);
    return angle;
}

inline Point2d turned(Point2d p, double angle) {
    Point2d out;
    mclibGeo_coordLocalToGlobal(&out.x, &out.y, p.x, p.y, angle);
    return out;
}
