// The least-squares fit of a B-spline curve to points.
#include <algorithm>
#include <array>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/element/bspline.h"

namespace host {
namespace {

// Parameters from 0 to 1 in proportion to the chords; empty when neighbours coincide.
std::vector<double> chordParameters(std::span<const Point3d> points) {
    std::vector<double> t(points.size());
    for (size_t i = 1; i < points.size(); ++i) {
        const double chord = distance(points[i - 1], points[i]);
        if (!(chord > 0)) return {};
        t[i] = t[i - 1] + chord;
    }
    for (double& value : t) value /= t.back();
    return t;
}

bool isRising(std::span<const double> t) {
    return t.front() == 0 && t.back() == 1 && std::ranges::adjacent_find(t, std::greater_equal{}) == t.end();
}

// Clamped knots that leave each pole parameters of its own: as many poles as points take the mean of each run of
// degree parameters, fewer poles an even share of them.
std::vector<double> averagedKnots(std::span<const double> t, size_t poles, size_t order) {
    const size_t degree = order - 1;
    std::vector<double> knots(poles + order);
    std::fill(knots.end() - static_cast<ptrdiff_t>(order), knots.end(), 1.0);
    const double share = static_cast<double>(t.size()) / static_cast<double>(poles - degree);
    for (size_t j = 1; j + degree < poles; ++j) {
        double& knot = knots[degree + j];
        if (poles == t.size()) {
            for (size_t i = j; i < j + degree; ++i) knot += t[i] / static_cast<double>(degree);
        } else {
            const double place = share * static_cast<double>(j);
            const auto i = static_cast<size_t>(place);
            const double part = place - static_cast<double>(i);
            knot = (1 - part) * t[i - 1] + part * t[i];
        }
    }
    return knots;
}

// Least squares with rows of at most `order` neighbouring values, brought to triangular form row by row with Givens
// rotations: stable, and linear in the number of rows.
class BandedLeastSquares {
  public:
    BandedLeastSquares(size_t unknowns, size_t order) : order_(order), rows_(unknowns * order), right_(unknowns) {}

    // Adds the equation sum of values[i] * x[first + i] = right.
    void add(size_t first, std::array<double, mostOrder> values, Point3d right) {
        for (size_t row = first; row < right_.size(); ++row) {
            if (values[0] != 0) rotateInto(row, values, right);
            std::shift_left(values.begin(), values.begin() + static_cast<ptrdiff_t>(order_), 1);
            values[order_ - 1] = 0;
            if (std::all_of(values.begin(), values.begin() + static_cast<ptrdiff_t>(order_),
                            [](double v) { return v == 0; }))
                return;
        }
    }

    // False when the equations leave an unknown open.
    bool solve(std::vector<Point3d>& x) const {
        const size_t n = right_.size();
        x.assign(n, {});
        for (size_t row = n; row-- > 0;) {
            const double* r = &rows_[row * order_];
            if (!(std::fabs(r[0]) > 1e-13)) return false;
            Point3d sum = right_[row];
            for (size_t i = 1; i < order_ && row + i < n; ++i) sum = sum - x[row + i] * r[i];
            x[row] = sum * (1 / r[0]);
        }
        return true;
    }

  private:
    void rotateInto(size_t row, std::array<double, mostOrder>& values, Point3d& right) {
        double* r = &rows_[row * order_];
        const double l = std::hypot(r[0], values[0]), c = r[0] / l, s = values[0] / l;
        for (size_t i = 0; i < order_; ++i) {
            const double kept = c * r[i] + s * values[i];
            values[i] = c * values[i] - s * r[i];
            r[i] = kept;
        }
        const Point3d kept = right_[row] * c + right * s;
        right = right * c - right_[row] * s;
        right_[row] = kept;
    }

    size_t order_;
    std::vector<double> rows_;
    std::vector<Point3d> right_;
};

// The poles between the two ends, which are the first and the last point.
bool fitPoles(Spline& s, std::span<const Point3d> points, std::span<const double> t) {
    const size_t count = s.poles.size(), order = static_cast<size_t>(s.order), unknowns = count - 2;
    const Point3d base = points.front(), end = points.back() - base;
    BandedLeastSquares system(unknowns, order);
    for (size_t i = 1; i + 1 < points.size(); ++i) {
        std::array<double, mostOrder> basis{}, row{};
        const size_t first = basisAt(s.knots, count, s.order, t[i], basis.data());
        Point3d right = points[i] - base;
        if (first + order == count) right = right - end * basis[order - 1], basis[order - 1] = 0;
        const size_t skipped = first == 0 ? 1 : 0;  // the first pole is the base
        for (size_t j = skipped; j < order; ++j) row[j - skipped] = basis[j];
        system.add(first + skipped - 1, row, right);
    }
    std::vector<Point3d> inner;
    if (unknowns > 0 && !system.solve(inner)) return false;
    s.poles.front() = base;
    s.poles.back() = points.back();
    for (size_t i = 0; i < unknowns; ++i) s.poles[i + 1] = inner[i] + base;
    return true;
}

// Distance of a point from the curve near a parameter: a few Newton steps along the curve's own slope.
double distanceNear(const Spline& s, const Point3d& p, double t) {
    double best = distance(p, s.at(t));
    for (int step = 0; step < 4 && best > 0; ++step) {
        constexpr double h = 1e-6;
        const double from = std::max(t - h, 0.0), to = std::min(t + h, 1.0);
        const Point3d here = s.at(t), slope = (s.at(to) - s.at(from)) * (1 / (to - from));
        const double squared = dot(slope, slope);
        if (!(squared > 0)) break;
        t = std::clamp(t + dot(p - here, slope) / squared, 0.0, 1.0);
        const double d = distance(p, s.at(t));
        if (!(d < best)) break;
        best = d;
    }
    return best;
}

void reportErrors(const Spline& s, std::span<const Point3d> points, std::span<const double> t, double* mean,
                  double* greatest) {
    double sum = 0, most = 0;
    for (size_t i = 0; i < points.size(); ++i) {
        const double d = distanceNear(s, points[i], t[i]);
        sum += d;
        most = std::max(most, d);
    }
    if (mean) *mean = sum / static_cast<double>(points.size());
    if (greatest) *greatest = most;
}

constexpr size_t mostFitPoints = 1'000'000;

}  // namespace
}  // namespace host

using namespace host;

int mdlBspline_leastSquaresToCurve(BsplineCurve* curve, double* meanError, double* maxError, const Point3d* points,
                                   const double* params, int32_t count) noexcept {
    if (!curve) return MDL_ERROR;
    curve->poles = nullptr;
    curve->knots = curve->weights = nullptr;
    if (!points || count < 2 || static_cast<size_t>(count) > mostFitPoints) return MDL_ERROR;
    if (curve->order < 2 || curve->order > mostOrder || curve->numPoles < 2) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const std::span given(points, static_cast<size_t>(count));
        if (!std::ranges::all_of(given, [](const Point3d& p) { return isFinite(p); })) return MDL_ERROR;
        const auto chords = chordParameters(given);
        if (chords.empty()) return MDL_ERROR;
        const std::span t = params ? std::span(params, given.size()) : std::span(chords);
        if (!isRising(t)) return MDL_ERROR;
        const size_t poles = std::min(static_cast<size_t>(curve->numPoles), given.size());
        const size_t order = std::min(static_cast<size_t>(curve->order), poles);
        Spline s{static_cast<int>(order), std::vector<Point3d>(poles), averagedKnots(t, poles, order), {}};
        if (!fitPoles(s, given, t) || !s.isSound()) return MDL_ERROR;
        giveArrays(*curve, s);
        reportErrors(s, given, t, meanError, maxError);
        return MDL_SUCCESS;
    });
}
