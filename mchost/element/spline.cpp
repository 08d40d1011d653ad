#include "mchost/element/spline.h"

#include <algorithm>
#include <array>

namespace host {
namespace {

constexpr int mostSegments = 20000;  // of one span
constexpr int mostHalvings = 16;

size_t spanOf(std::span<const double> knots, size_t poles, int order, double knot) {
    const auto first = static_cast<size_t>(order) - 1;
    const auto begin = knots.begin() + static_cast<ptrdiff_t>(first) + 1;
    const auto end = knots.begin() + static_cast<ptrdiff_t>(poles);
    return static_cast<size_t>(std::upper_bound(begin, end, knot) - knots.begin()) - 1;
}

// The greatest second derivative in the span behind knot `span`: that of the poles of the second derivative, in whose
// hull it runs.
double greatestSecondDerivative(const Spline& s, size_t span) {
    const auto degree = static_cast<size_t>(s.order) - 1;
    std::array<Point3d, mostOrder> first;
    double greatest = 0;
    for (size_t j = span - degree; j < span; ++j)
        first[j + degree - span] =
            (s.poles[j + 1] - s.poles[j]) * (static_cast<double>(degree) / (s.knots[j + degree + 1] - s.knots[j + 1]));
    for (size_t j = span - degree; j + 1 < span; ++j) {
        const Point3d second = (first[j + 1 + degree - span] - first[j + degree - span]) *
                               (static_cast<double>(degree - 1) / (s.knots[j + degree + 1] - s.knots[j + 2]));
        greatest = std::max(greatest, length(second));
    }
    return greatest;
}

// A chord over a step h strays from the curve by at most h * h / 8 times the greatest second derivative.
void strokeEvenly(std::vector<Point3d>& points, const Spline& s, size_t span, double tolerance) {
    const double from = s.knots[span], step = s.knots[span + 1] - from;
    const double wanted = step * std::sqrt(greatestSecondDerivative(s, span) / (8 * tolerance));
    const int segments = wanted < mostSegments ? std::max(1, static_cast<int>(std::ceil(wanted))) : mostSegments;
    for (int i = 1; i < segments; ++i) points.push_back(s.at(from + step * i / segments));
    points.push_back(s.at(s.knots[span + 1]));
}

double distanceToChord(const Point3d& p, const Point3d& a, const Point3d& b) {
    const Point3d along = b - a;
    const double squared = dot(along, along);
    const double t = squared > 0 ? std::clamp(dot(p - a, along) / squared, 0.0, 1.0) : 0;
    return distance(p, a + along * t);
}

// A rational curve has no such simple bound: steps are halved until three points within lie at the chord.
void strokeByHalves(std::vector<Point3d>& points, const Spline& s, double from, double to, double tolerance,
                    int halvings) {
    const double middle = 0.5 * (from + to);
    const Point3d a = points.back(), b = s.at(to), m = s.at(middle);
    const bool near = distanceToChord(m, a, b) <= tolerance &&
                      distanceToChord(s.at(0.5 * (from + middle)), a, b) <= tolerance &&
                      distanceToChord(s.at(0.5 * (middle + to)), a, b) <= tolerance;
    if (near || halvings == 0) {
        points.push_back(b);
        return;
    }
    strokeByHalves(points, s, from, middle, tolerance, halvings - 1);
    strokeByHalves(points, s, middle, to, tolerance, halvings - 1);
}

void strokeRationalSpan(std::vector<Point3d>& points, const Spline& s, size_t span, double tolerance) {
    const double from = s.knots[span], step = s.knots[span + 1] - from;
    const int pieces = s.order - 1;
    for (int i = 0; i < pieces; ++i) {
        const double to = i + 1 == pieces ? s.knots[span + 1] : from + step * (i + 1) / pieces;
        strokeByHalves(points, s, from + step * i / pieces, to, tolerance, mostHalvings);
    }
}

}  // namespace

bool Spline::isSound() const {
    if (order < 2 || order > mostOrder || poles.size() < static_cast<size_t>(order)) return false;
    if (knots.size() != poles.size() + static_cast<size_t>(order)) return false;
    if (!weights.empty() && weights.size() != poles.size()) return false;
    const bool finite = std::ranges::all_of(poles, [](const Point3d& p) { return isFinite(p); }) &&
                        std::ranges::all_of(knots, [](double k) { return std::isfinite(k); }) &&
                        std::ranges::all_of(weights, [](double w) { return w > 0 && std::isfinite(w); });
    return finite && std::ranges::is_sorted(knots) && begin() < end();
}

Point3d Spline::at(double knot) const {
    std::array<double, mostOrder> basis;
    const double inside = std::clamp(knot, begin(), end());
    const size_t first = basisAt(knots, poles.size(), order, inside, basis.data());
    Point3d sum{};
    double total = 0;
    for (int i = 0; i < order; ++i) {
        const size_t pole = first + static_cast<size_t>(i);
        const double share = basis[static_cast<size_t>(i)] * (weights.empty() ? 1 : weights[pole]);
        sum = sum + poles[pole] * share;
        total += share;
    }
    return weights.empty() ? sum : sum * (1 / total);
}

Spline readSpline(const CurveView& curve) {
    const auto count = static_cast<size_t>(curve.body.poleCount), order = static_cast<size_t>(curve.body.order);
    Spline s{curve.body.order, std::vector<Point3d>(count), std::vector<double>(count + order), {}};
    for (uint32_t i = 0; i < count; ++i) s.poles[i] = curve.poles[i];
    std::memcpy(s.knots.data(), curve.knots, s.knots.size() * sizeof(double));
    if (curve.weights) {
        s.weights.resize(count);
        std::memcpy(s.weights.data(), curve.weights, count * sizeof(double));
    }
    return s;
}

size_t basisAt(std::span<const double> knots, size_t poles, int order, double knot, double* values) {
    const size_t span = spanOf(knots, poles, order, knot);
    std::array<double, mostOrder> left, right;
    values[0] = 1;
    for (size_t j = 1; j < static_cast<size_t>(order); ++j) {
        left[j] = knot - knots[span + 1 - j];
        right[j] = knots[span + j] - knot;
        double carried = 0;
        for (size_t r = 0; r < j; ++r) {
            const double share = values[r] / (right[r + 1] + left[j - r]);
            values[r] = carried + right[r + 1] * share;
            carried = left[j - r] * share;
        }
        values[j] = carried;
    }
    return span + 1 - static_cast<size_t>(order);
}

void strokeSpline(std::vector<Point3d>& points, const Spline& spline, double tolerance) {
    points.push_back(spline.at(spline.begin()));
    for (size_t span = static_cast<size_t>(spline.order) - 1; span < spline.poles.size(); ++span) {
        if (!(spline.knots[span] < spline.knots[span + 1])) continue;
        if (spline.weights.empty())
            strokeEvenly(points, spline, span, tolerance);
        else
            strokeRationalSpan(points, spline, span, tolerance);
    }
}

}  // namespace host
