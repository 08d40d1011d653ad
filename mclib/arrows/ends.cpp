// Where leaders end at a frame that was read back.
#include <algorithm>
#include <iterator>
#include <span>

#include "mclib/arrows/drafting.h"
#include "mclib/arrows/leader.h"

namespace mc::arrows {

namespace {

// The first of the nearest ones.
size_t nearestIndex(std::span<const Point3d> candidates, const Point3d& to) {
    const auto nearest = std::ranges::min_element(
        candidates, {}, [&](const Point3d& candidate) { return mdlVec_distance(&candidate, &to); });
    return static_cast<size_t>(std::distance(candidates.begin(), nearest));
}

Point3d nearestOwnPoint(std::span<const Point3d> points, const Point3d& previous) {
    return points[nearestIndex(points, previous)];
}

// Of the sides as they lie in the view.
Point3d nearestMiddle(const std::array<Point3d, 4>& corners, const Point3d& previous) {
    std::array<Point3d, 4> c;
    std::ranges::transform(corners, c.begin(), toLocal);
    const double x = (c[0].x + c[1].x) / 2, y = (c[1].y + c[2].y) / 2;
    const Point3d middles[] = {{x, c[0].y, c[0].z}, {c[1].x, y, c[1].z}, {x, c[2].y, c[2].z}, {c[3].x, y, c[3].z}};
    return toWorld(middles[nearestIndex(middles, toLocal(previous))]);
}

Point3d onCircle(const Point3d& centre, double radius, const Point3d& previous) {
    Point3d direction;
    mdlVec_computeNormal(&direction, &centre, &previous);
    return {centre.x + radius * direction.x, centre.y + radius * direction.y, centre.z + radius * direction.z};
}

}  // namespace

Point3d fittedToFrame(const FoundFrame& frame, const Point3d& previous, const Point3d& end) {
    switch (frame.kind) {
        case ARROW_FRAME_NONE: return nearestOwnPoint(frame.beside, previous);
        case ARROW_FRAME_UNDERLINE_FIRST:
        case ARROW_FRAME_UNDERLINE_LAST: return nearestOwnPoint(frame.line, previous);
        case ARROW_FRAME_BOX_SIDE:
        case ARROW_FRAME_DIAMOND: return nearestMiddle(frame.corners, previous);
        case ARROW_FRAME_BOX_CORNER: return nearestOwnPoint(frame.corners, previous);
        case ARROW_FRAME_CIRCLE: return onCircle(frame.centre, frame.radius, previous);
        case ARROW_FRAME_HEXAGON: {
            const Point3d points[] = {frame.corners[3], frame.corners[0]};  // the fourth when both are as near
            return nearestOwnPoint(points, previous);
        }
        default: return end;
    }
}

Point3d sum(const Point3d& a, const Point3d& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

FoundFrame movedFrame(FoundFrame frame, const Point3d& offset) {
    const auto move = [&](std::span<Point3d> points) {
        for (Point3d& p : points) p = sum(p, offset);
    };
    move(frame.line);
    move(frame.corners);
    move({&frame.centre, 1});
    move(frame.beside);
    return frame;
}

}  // namespace mc::arrows
