// Arithmetic on points, vectors and transforms.
#pragma once

#include <algorithm>
#include <cmath>

#include "mchost/mdl/types.h"

namespace host {

constexpr Point3d operator+(const Point3d& a, const Point3d& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr Point3d operator-(const Point3d& a, const Point3d& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr Point3d operator-(const Point3d& a) {
    return {-a.x, -a.y, -a.z};
}
constexpr Point3d operator*(const Point3d& a, double f) {
    return {a.x * f, a.y * f, a.z * f};
}
constexpr bool operator==(const Point3d& a, const Point3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

constexpr double dot(const Point3d& a, const Point3d& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr Point3d cross(const Point3d& a, const Point3d& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double length(const Point3d& a) {
    return std::sqrt(dot(a, a));
}
inline double distance(const Point3d& a, const Point3d& b) {
    return length(b - a);
}

// The point between a and b that lies nearest to p.
constexpr Point3d nearestOnSegment(const Point3d& p, const Point3d& a, const Point3d& b) {
    const Point3d along = b - a;
    const double squared = dot(along, along);
    if (!(squared > 0)) return a;
    const double t = dot(p - a, along) / squared;
    if (t <= 0) return a;
    if (t >= 1) return b;
    return a + along * t;
}

// 0 for finite values, else not a number: sums of it tell of many values at once.
constexpr double taint(const Point3d& p) {
    return p.x * 0 + p.y * 0 + p.z * 0;
}
constexpr bool isFinite(const Point3d& p) {
    return taint(p) == 0;
}

constexpr Transform identityTransform{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
constexpr RotMatrix identityMatrix{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

constexpr Point3d applyToVector(const Transform& t, const Point3d& v) {
    const auto& f = t.form;
    return {f[0][0] * v.x + f[0][1] * v.y + f[0][2] * v.z, f[1][0] * v.x + f[1][1] * v.y + f[1][2] * v.z,
            f[2][0] * v.x + f[2][1] * v.y + f[2][2] * v.z};
}
constexpr Point3d applyToPoint(const Transform& t, const Point3d& p) {
    return applyToVector(t, p) + Point3d{t.form[0][3], t.form[1][3], t.form[2][3]};
}
// b, and a behind it.
constexpr Transform operator*(const Transform& a, const Transform& b) {
    Transform product = {};
    for (int column = 0; column < 4; ++column) {
        const Point3d of{b.form[0][column], b.form[1][column], b.form[2][column]};
        const Point3d to = column == 3 ? applyToPoint(a, of) : applyToVector(a, of);
        product.form[0][column] = to.x;
        product.form[1][column] = to.y;
        product.form[2][column] = to.z;
    }
    return product;
}
constexpr Point3d rotate(const RotMatrix& m, const Point3d& p) {
    const auto& f = m.form;
    return {f[0][0] * p.x + f[0][1] * p.y + f[0][2] * p.z, f[1][0] * p.x + f[1][1] * p.y + f[1][2] * p.z,
            f[2][0] * p.x + f[2][1] * p.y + f[2][2] * p.z};
}
constexpr Point3d unrotate(const RotMatrix& m, const Point3d& p) {
    const auto& f = m.form;
    return {f[0][0] * p.x + f[1][0] * p.y + f[2][0] * p.z, f[0][1] * p.x + f[1][1] * p.y + f[2][1] * p.z,
            f[0][2] * p.x + f[1][2] * p.y + f[2][2] * p.z};
}
constexpr Point3d column(const RotMatrix& m, int i) {
    return {m.form[0][i], m.form[1][i], m.form[2][i]};
}
constexpr RotMatrix fromColumns(const Point3d& x, const Point3d& y, const Point3d& z) {
    return {{{x.x, y.x, z.x}, {x.y, y.y, z.y}, {x.z, y.z, z.z}}};
}
constexpr RotMatrix transposed(const RotMatrix& m) {
    return fromColumns({m.form[0][0], m.form[0][1], m.form[0][2]}, {m.form[1][0], m.form[1][1], m.form[1][2]},
                       {m.form[2][0], m.form[2][1], m.form[2][2]});
}
// b, and a behind it.
constexpr RotMatrix operator*(const RotMatrix& a, const RotMatrix& b) {
    return fromColumns(rotate(a, column(b, 0)), rotate(a, column(b, 1)), rotate(a, column(b, 2)));
}

// The range of the transformed box.
inline Range3d rangeThrough(const Transform& t, const Range3d& box) {
    const Point3d middle = applyToPoint(t, (box.low + box.high) * 0.5), half = (box.high - box.low) * 0.5;
    const auto reach = [&](int row) {
        const auto& f = t.form[row];
        return std::fabs(f[0]) * half.x + std::fabs(f[1]) * half.y + std::fabs(f[2]) * half.z;
    };
    const Point3d reached{reach(0), reach(1), reach(2)};
    return {middle - reached, middle + reached};
}

// The range of points added one by one. A point that isn't finite spoils it.
class RangeBuilder {
  public:
    void add(const Point3d& p) {
        low_ = {std::min(low_.x, p.x), std::min(low_.y, p.y), std::min(low_.z, p.z)};
        high_ = {std::max(high_.x, p.x), std::max(high_.y, p.y), std::max(high_.z, p.z)};
        taint_ += taint(p);
    }
    void add(const Range3d& r) { add(r.low), add(r.high); }
    bool any() const { return low_.x <= high_.x && taint_ == 0; }
    Range3d range() const { return {low_, high_}; }

  private:
    Point3d low_{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high_{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    double taint_ = 0;
};

}  // namespace host
