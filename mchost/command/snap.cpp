#include "mchost/command/snap.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/base/words.h"
#include "mchost/command/hits.h"
#include "mchost/element/layout.h"
#include "mchost/session/owned_state.h"
#include "mchost/space/vector.h"
#include "mchost/space/view.h"
#include "mchost/view/shown_part.h"

namespace host {
namespace {

struct SnapModes {
    uint32_t on = 0;
};

// Where the point is seen.
struct SeenPoint {
    Transform toSeen;
    Point3d at;
    double reach;

    Point3d flat(const Point3d& p) const {
        const Point3d seen = applyToPoint(toSeen, p);
        return {seen.x, seen.y, 0};
    }
    double distanceTo(const Point3d& p) const { return distance(at, flat(p)); }
    double tolerance() const { return 1e-3 * reach; }  // for points that lie on a line
};

// An element as what it is snapped to, in UOR of the active model.
struct Line {
    const MSElementBuffer* element;
    Transform toActive;
    std::vector<Point3d> points;           // its vertices, or points along a curve
    std::optional<LinePieces> shown = {};  // what clips leave of these; nothing: all

    bool isText() const { return shownTextOf(element).has_value(); }
    bool hasVertices() const { return verticesOf(element).has_value(); }
    bool isClosed() const { return points.front() == points.back(); }
    bool shows(const Point3d& p, double tolerance) const;
};

bool Line::shows(const Point3d& p, double tolerance) const {
    const auto goesThrough = [&](const std::vector<Point3d>& piece) {
        for (size_t i = 1; i < piece.size(); ++i) {
            if (distance(p, nearestOnSegment(p, piece[i - 1], piece[i])) <= tolerance) return true;
        }
        return false;
    };
    return !shown || isText() || std::ranges::any_of(*shown, goesThrough);
}

using Found = std::optional<Point3d>;

Found nearestOf(std::span<const Point3d> points, const SeenPoint& seen) {
    const auto nearest = std::ranges::min_element(points, {}, [&](const Point3d& p) { return seen.distanceTo(p); });
    return nearest != points.end() ? Found(*nearest) : std::nullopt;
}

Point3d middleOf(const Point3d& a, const Point3d& b) {
    return a + (b - a) * 0.5;
}

// A point of a line, when it is shown.
Found ifShown(const Line& line, const Point3d& p, const SeenPoint& seen) {
    return line.shows(p, seen.tolerance()) ? Found(p) : std::nullopt;
}

Found nearestShown(const Line& line, std::span<const Point3d> points, const SeenPoint& seen) {
    if (!line.shown) return nearestOf(points, seen);
    std::vector<Point3d> left;
    std::ranges::copy_if(points, std::back_inserter(left),
                         [&](const Point3d& p) { return line.shows(p, seen.tolerance()); });
    return nearestOf(left, seen);
}

// A place along the points: in the segment that ends with the point of that number.
struct Along {
    size_t end;
    Point3d point;
};

Along nearestAlong(std::span<const Point3d> points, const SeenPoint& seen) {
    Along nearest{1, points.front()};
    double least = HUGE_VAL;
    for (size_t i = 1; i < points.size(); ++i) {
        const Point3d &a = points[i - 1], &b = points[i];
        const Point3d from = seen.flat(a), to = seen.flat(b), on = nearestOnSegment(seen.at, from, to);
        const double far = distance(seen.at, on), whole = distance(from, to);
        if (far >= least) continue;
        least = far;
        nearest = {i, whole > 0 ? a + (b - a) * (distance(from, on) / whole) : a};
    }
    return nearest;
}

// ---- the modes, each for one element ----

Found endOf(const Line& line, const SeenPoint& seen) {
    if (line.isText() || line.isClosed()) return std::nullopt;
    const Point3d ends[] = {line.points.front(), line.points.back()};
    return nearestShown(line, ends, seen);
}

Found vertexOf(const Line& line, const SeenPoint& seen) {
    if (const auto text = shownTextOf(line.element)) return applyToPoint(line.toActive, text->body.origin);
    return line.hasVertices() ? nearestShown(line, line.points, seen) : endOf(line, seen);
}

Found middleOfLine(const Line& line, const SeenPoint& seen) {
    if (line.isText()) return std::nullopt;
    if (line.hasVertices()) {
        const size_t end = nearestAlong(line.points, seen).end;
        return ifShown(line, middleOf(line.points[end - 1], line.points[end]), seen);
    }
    if (line.isClosed()) return std::nullopt;
    if (const auto arc = arcOf(line.element)) {
        const auto& [center, x, y] = arc->ellipse;
        const double angle = arc->start + arc->sweep / 2;
        return ifShown(line, applyToPoint(line.toActive, center + x * std::cos(angle) + y * std::sin(angle)), seen);
    }
    return ifShown(line, line.points[line.points.size() / 2], seen);
}

Found centreOf(const Line& line, const SeenPoint&) {
    if (const auto arc = arcOf(line.element)) return applyToPoint(line.toActive, arc->ellipse.center);
    if (!line.isClosed()) return std::nullopt;
    RangeBuilder all;
    for (const Point3d& p : line.points) all.add(p);
    return middleOf(all.range().low, all.range().high);
}

Found nearestOfLine(const Line& line, const SeenPoint& seen) {
    if (line.isText()) return std::nullopt;
    if (!line.shown) return nearestAlong(line.points, seen).point;
    std::vector<Point3d> found;
    for (const std::vector<Point3d>& piece : *line.shown) found.push_back(nearestAlong(piece, seen).point);
    return nearestOf(found, seen);
}

// ---- crossings ----

struct Segment {
    Point3d from, to;
};

std::vector<Segment> segmentsNear(const Line& line, const SeenPoint& seen) {
    std::vector<Segment> near;
    for (size_t i = 1; i < line.points.size(); ++i) {
        const Segment segment{line.points[i - 1], line.points[i]};
        const Point3d on = nearestOnSegment(seen.at, seen.flat(segment.from), seen.flat(segment.to));
        if (distance(seen.at, on) <= seen.reach) near.push_back(segment);
    }
    return near;
}

// Where the first is crossed in the view, on it.
Found crossing(const Segment& a, const Segment& b, const SeenPoint& seen) {
    constexpr double slack = 1e-9;  // ends that touch cross
    const Point3d from = seen.flat(a.from), along = seen.flat(a.to) - from;
    const Point3d other = seen.flat(b.from), across = seen.flat(b.to) - other;
    const double turn = cross(along, across).z;
    if (turn == 0) return std::nullopt;
    const double t = cross(other - from, across).z / turn, u = cross(other - from, along).z / turn;
    const bool within = t >= -slack && t <= 1 + slack && u >= -slack && u <= 1 + slack;
    return within ? Found(a.from + (a.to - a.from) * t) : std::nullopt;
}

Found crossingOf(const Line& line, const Line& other, const SeenPoint& seen) {
    if (line.isText() || other.isText()) return std::nullopt;
    std::vector<Point3d> crossings;
    const std::vector<Segment> across = segmentsNear(other, seen);
    for (const Segment& a : segmentsNear(line, seen)) {
        for (const Segment& b : across) {
            if (const Found found = crossing(a, b, seen)) crossings.push_back(*found);
        }
    }
    std::erase_if(crossings, [&](const Point3d& p) {
        return !line.shows(p, seen.tolerance()) || !other.shows(p, seen.tolerance());
    });
    return nearestOf(crossings, seen);
}

Found firstCrossing(std::span<const Line> lines, const SeenPoint& seen) {
    constexpr size_t mostLines = 32;  // that are looked at: a point in a thicket is no place to snap to
    lines = lines.first(std::min(lines.size(), mostLines));
    for (size_t i = 0; i + 1 < lines.size(); ++i) {
        for (const Line& other : lines.subspan(i + 1)) {
            if (const Found found = crossingOf(lines[i], other, seen)) return found;
        }
    }
    return std::nullopt;
}

// ---- all of them ----

struct Mode {
    int32_t number;
    std::string_view name;
    Found (*find)(const Line& line, const SeenPoint& seen);  // null: it takes two elements
};
constexpr Mode modes[] = {
    {MDL_SNAP_VERTEX, "vertex", vertexOf},
    {MDL_SNAP_END, "end", endOf},
    {MDL_SNAP_MIDDLE, "middle", middleOfLine},
    {MDL_SNAP_CENTRE, "centre", centreOf},
    {MDL_SNAP_INTERSECTION, "intersection", nullptr},
    {MDL_SNAP_NEAREST, "nearest", nearestOfLine},
};
constexpr uint32_t allModes = [] {
    uint32_t all = 0;
    for (const Mode& mode : modes) all |= 1u << mode.number;
    return all;
}();

Found find(const Mode& mode, std::span<const Line> lines, const SeenPoint& seen) {
    if (!mode.find) return firstCrossing(lines, seen);
    for (const Line& line : lines) {
        if (const Found found = mode.find(line, seen)) return found;
    }
    return std::nullopt;
}

std::vector<Line> linesAt(const Aim& aim) {
    constexpr double fine = 1e-4;
    std::vector<Line> lines;
    for (const Hit& hit : hitsAnywhere(aim)) {
        const ShownPart left(clipsAround(*hit.place), identityTransform);
        forEachPart(hit.element(), [&](const MSElementBuffer* part) {
            Line line{part, toMaster(*hit.place), {}};
            if (!outlineOf(line.points, part, fine * aim.reach, line.toActive)) return;
            if (!left.isWhole()) line.shown = left.piecesOf(line.points);
            lines.push_back(std::move(line));
        });
    }
    return lines;
}

Found snappedBy(uint32_t on, const Point3d& point, int32_t view) {
    const Aim aim = aimAt(point, view);
    SeenPoint seen{seenFrom(view), {}, aim.reach};
    seen.at = seen.flat(point);
    const std::vector<Line> lines = linesAt(aim);
    std::vector<Point3d> found;
    for (const Mode& mode : modes) {
        if ((on & 1u << mode.number) == 0) continue;
        if (const Found its = find(mode, lines, seen)) found.push_back(*its);
    }
    return nearestOf(found, seen);
}

}  // namespace

std::optional<Point3d> snappedIn(int32_t mode, const Point3d& point, int32_t view) {
    return snappedBy(1u << mode, point, view);
}

Point3d snapped(const Point3d& point, int32_t view) {
    const uint32_t on = sessionState<SnapModes>().on;
    return on != 0 ? snappedBy(on, point, view).value_or(point) : point;
}

int32_t snapModeNamed(std::string_view word) {
    const auto named = [&](const Mode& mode) { return mode.name == word || std::to_string(mode.number) == word; };
    const auto mode = std::ranges::find_if(modes, named);
    return mode != std::end(modes) ? mode->number : 0;
}

}  // namespace host

using namespace host;

int mdlSnap_toElement(Point3d* point, int32_t view, int32_t mode) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        const bool known = std::ranges::find(modes, mode, &Mode::number) != std::end(modes);
        if (!point || !known || !isView(view) || !isFinite(*point)) return MDL_ERROR;
        const Found found = snappedIn(mode, *point, view);
        if (!found) return MDL_ERROR;
        *point = *found;
        return MDL_SUCCESS;
    });
}

int mdlSnap_setModes(uint32_t on) noexcept {
    return guarded<int>(MDL_ERROR, [&]() -> int {
        if ((on & ~allModes) != 0) return MDL_ERROR;
        sessionState<SnapModes>().on = on;
        return MDL_SUCCESS;
    });
}

uint32_t mdlSnap_getModes(void) noexcept {
    return guarded<uint32_t>(0, [] { return sessionState<SnapModes>().on; });
}
