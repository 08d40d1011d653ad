// B-spline curves: evaluation and strokes.
#pragma once

#include <span>
#include <vector>

#include "mchost/element/layout.h"
#include "mchost/space/vector.h"

namespace host {

constexpr int mostOrder = 15;

struct Spline {
    int order;                    // degree + 1
    std::vector<Point3d> poles;   // at least `order`
    std::vector<double> knots;    // poles + order, never falling
    std::vector<double> weights;  // above 0; empty when not rational

    bool isSound() const;
    Point3d at(double knot) const;  // within the first and last knot
    double begin() const { return knots[static_cast<size_t>(order) - 1]; }
    double end() const { return knots[poles.size()]; }
};

Spline readSpline(const CurveView& curve);

// The basis functions of the span that holds `knot`: order values; the result is the first pole that they belong to.
size_t basisAt(std::span<const double> knots, size_t poles, int order, double knot, double* values);

// Appends points along the curve, both ends included and no point farther than `tolerance` from the chords.
void strokeSpline(std::vector<Point3d>& points, const Spline& spline, double tolerance);

}  // namespace host
