#include "mchost/element/polygons.h"

#include <algorithm>
#include <clipper.hpp>
#include <cmath>

namespace host {
namespace {

namespace cl = ClipperLib;

// Brings coordinates to whole numbers as large as Clipper takes, about the middle of all: what comes back differs from
// what went in by less than a double of its size can tell.
class Grid {
  public:
    Grid(const Rings& a, const Rings& b) {
        Point2 low{HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL};
        for (const Rings* rings : {&a, &b})
            for (const Ring& ring : *rings)
                for (const Point2& p : ring) {
                    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
                    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
                }
        middle_ = {(low.x + high.x) / 2, (low.y + high.y) / 2};
        const double reach = std::max(high.x - low.x, high.y - low.y) / 2;
        int exponent = 0;
        std::frexp(reach, &exponent);
        scale_ = reach > 0 && std::isfinite(reach) ? std::ldexp(1, bits - exponent) : 0;
    }

    explicit operator bool() const { return scale_ > 0; }

    cl::Path from(const Ring& ring) const {
        cl::Path path;
        for (const Point2& p : ring)
            path.emplace_back(std::llround((p.x - middle_.x) * scale_), std::llround((p.y - middle_.y) * scale_));
        return path;
    }
    Ring to(const cl::Path& path) const {
        Ring ring;
        for (const cl::IntPoint& p : path)
            ring.push_back(
                {middle_.x + static_cast<double>(p.X) / scale_, middle_.y + static_cast<double>(p.Y) / scale_});
        return ring;
    }

  private:
    static constexpr int bits = 53;  // Clipper takes 62

    Point2 middle_{};
    double scale_ = 0;  // a power of 2
};

bool intersect(cl::PolyTree& found, const Grid& grid, const Rings& a, const Rings& b) {
    cl::Clipper clipper;
    for (const Ring& ring : a) clipper.AddPath(grid.from(ring), cl::ptSubject, true);
    for (const Ring& ring : b) clipper.AddPath(grid.from(ring), cl::ptClip, true);
    return clipper.Execute(cl::ctIntersection, found, cl::pftEvenOdd, cl::pftEvenOdd);
}

// Goes from the outline to the hole, round it, and back: what is passed twice encloses nothing.
void bridge(Ring& outline, const Ring& hole) {
    const Point2 from = hole.front();
    const auto nearest =
        std::ranges::min_element(outline, {}, [&](const Point2& p) { return dot(p - from, p - from); });
    Ring detour{*nearest};
    detour.insert(detour.end(), hole.begin(), hole.end());
    detour.push_back(from);
    outline.insert(nearest, detour.begin(), detour.end());
}

}  // namespace

Rings intersectPolygons(const Rings& a, const Rings& b) {
    const Grid grid(a, b);
    cl::PolyTree found;
    if (!grid || !intersect(found, grid, a, b)) return {};
    Rings rings;
    for (const cl::PolyNode* node = found.GetFirst(); node; node = node->GetNext())
        rings.push_back(grid.to(node->Contour));
    return rings;
}

Rings intersectToOutlines(const Rings& a, const Rings& b) {
    const Grid grid(a, b);
    cl::PolyTree found;
    if (!grid || !intersect(found, grid, a, b)) return {};
    Rings rings;
    for (const cl::PolyNode* node = found.GetFirst(); node; node = node->GetNext()) {
        if (node->IsHole()) continue;
        Ring outline = grid.to(node->Contour);
        for (const cl::PolyNode* hole : node->Childs) bridge(outline, grid.to(hole->Contour));
        rings.push_back(std::move(outline));
    }
    return rings;
}

}  // namespace host
