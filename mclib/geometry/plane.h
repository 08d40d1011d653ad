// Points and bearings of the plane, shared by the geometry files.
#pragma once

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <numbers>
#include <optional>

#include "mclib/geometry/lines.h"

namespace mc {

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

// How far rounding moves a length between points with such coordinates: each is off by half its last digit, and so is
// what is worked out from them in a few steps.
inline double slackOf(double length, std::initializer_list<double> coordinates) {
    constexpr double ofLength = 1e-12, digits = 4 * std::numeric_limits<double>::epsilon();
    double greatest = 0;
    for (const double c : coordinates) greatest = std::max(greatest, std::fabs(c));
    return ofLength * std::fabs(length) + digits * greatest;
}

// The station on an element that covers the stations from `first` to `last`, for one that rounding may have put a
// little beyond an end; nothing for one that lies outside, or below 0.
inline std::optional<double> stationWithin(double s, double first, double last, double slack) {
    if (!(s >= 0 && s >= first - slack && s <= last + slack)) return {};
    return std::clamp(s, first, last);
}

}  // namespace mc
