#include "mchost/view/prism.h"

#include <algorithm>

#include "mchost/space/vector.h"

namespace host {
namespace {

// Calls visit(p, q) with the edges of the outline.
template <class Visit>
void forEachEdge(const std::vector<ClipPoint>& outline, Visit visit) {
    for (size_t i = 0, before = outline.size() - 1; i < outline.size(); before = i++)
        visit(outline[before], outline[i]);
}

bool isInsideOutline(const std::vector<ClipPoint>& outline, const Point3d& p) {
    bool inside = false;
    forEachEdge(outline, [&](const ClipPoint& a, const ClipPoint& b) {
        const bool crosses = (a.y > p.y) != (b.y > p.y);
        if (crosses && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
    });
    return inside;
}

// Where the segment crosses the outline, from 0 at a to 1 at b, both ends included.
std::vector<double> crossings(const std::vector<ClipPoint>& outline, const Point3d& a, const Point3d& b) {
    std::vector<double> all{0, 1};
    const Point3d along = b - a;
    forEachEdge(outline, [&](const ClipPoint& p, const ClipPoint& q) {
        const double ex = q.x - p.x, ey = q.y - p.y, across = along.x * ey - along.y * ex;
        if (across == 0) return;
        const double t = ((p.x - a.x) * ey - (p.y - a.y) * ex) / across;
        const double s = ((p.x - a.x) * along.y - (p.y - a.y) * along.x) / across;
        if (t > 0 && t < 1 && s >= 0 && s <= 1) all.push_back(t);
    });
    std::ranges::sort(all);
    return all;
}

}  // namespace

bool isInside(const Prism& prism, const Point3d& point) {
    return isInsideOutline(*prism.outline, applyToPoint(prism.intoModel, point));
}

std::vector<std::vector<Point3d>> piecesInside(const Prism& prism, std::span<const Point3d> line) {
    std::vector<std::vector<Point3d>> pieces;
    bool goesOn = false;  // the last piece ends where the segment begins
    for (size_t i = 0; i + 1 < line.size(); ++i) {
        const Point3d a = line[i], along = line[i + 1] - a;
        const Point3d from = applyToPoint(prism.intoModel, a), to = applyToPoint(prism.intoModel, line[i + 1]);
        const std::vector<double> at = crossings(*prism.outline, from, to);
        for (size_t part = 0; part + 1 < at.size(); ++part) {
            const double middle = (at[part] + at[part + 1]) / 2;
            const bool inside = isInsideOutline(*prism.outline, from + (to - from) * middle);
            if (inside && !goesOn) pieces.push_back({a + along * at[part]});
            if (inside) pieces.back().push_back(a + along * at[part + 1]);
            goesOn = inside;
        }
    }
    return pieces;
}

}  // namespace host
