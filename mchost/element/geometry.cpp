#include "mchost/element/geometry.h"

#include <numbers>

#include "mchost/element/range.h"
#include "mchost/element/text.h"

namespace host {
namespace {

Point3d pointOf(const EllipseBody& e, double angle) {
    return e.center + e.axis0 * std::cos(angle) + e.axis90 * std::sin(angle);
}

EllipseBody applyTo(const Transform& t, const EllipseBody& e) {
    return {applyToPoint(t, e.center), applyToVector(t, e.axis0), applyToVector(t, e.axis90)};
}

bool isOnArc(const ArcBody& arc, double angle) {
    constexpr double turn = 2 * std::numbers::pi;
    const double from = arc.sweep < 0 ? arc.start + arc.sweep : arc.start;
    double past = std::fmod(angle - from, turn);
    if (past < 0) past += turn;
    return past <= std::fabs(arc.sweep);
}

// The ends, and for each axis the two places where the ellipse runs across it.
void addArc(RangeBuilder& range, const ArcBody& arc) {
    const EllipseBody& e = arc.ellipse;
    range.add(pointOf(e, arc.start));
    range.add(pointOf(e, arc.start + arc.sweep));
    const double turns[] = {std::atan2(e.axis90.x, e.axis0.x), std::atan2(e.axis90.y, e.axis0.y),
                            std::atan2(e.axis90.z, e.axis0.z)};
    for (double angle : turns)
        for (double extreme : {angle, angle + std::numbers::pi})
            if (isOnArc(arc, extreme)) range.add(pointOf(e, extreme));
}

void addTextBox(RangeBuilder& range, const TextBox& box, const Transform* t) {
    for (const Point3d& corner :
         {box.lowerLeft, box.lowerLeft + box.along, box.lowerLeft + box.along + box.up, box.lowerLeft + box.up})
        range.add(t ? applyToPoint(*t, corner) : corner);
}

void addPoints(RangeBuilder& range, const PointsView& points, const Transform* t) {
    for (uint32_t i = 0; i < points.size(); ++i) range.add(t ? applyToPoint(*t, points[i]) : points[i]);
}

bool rangeOf(const MSElementBuffer* element, Range3d& range, const Transform* t);

void addParts(RangeBuilder& range, const PartsView& parts, const Transform* t) {
    for (const MSElementBuffer* part : parts) {
        Range3d own;
        if (rangeOf(part, own, t)) range.add(own);
    }
}

bool rangeOf(const MSElementBuffer* element, Range3d& range, const Transform* t) {
    RangeBuilder found;
    switch (headOf(element).type) {
        case MDL_LINE:
        case MDL_LINE_STRING:
        case MDL_SHAPE:
            if (const auto vertices = verticesOf(element)) addPoints(found, *vertices, t);
            break;
        case MDL_ELLIPSE:
        case MDL_ARC:
            if (auto arc = arcOf(element)) {
                if (t) arc->ellipse = applyTo(*t, arc->ellipse);
                addArc(found, *arc);
            }
            break;
        case MDL_TEXT:
        case MDL_TAG:
            if (const auto text = shownTextOf(element)) addTextBox(found, textBox(*text), t);
            break;
        case MDL_DIMENSION:
        case MDL_COMPOUND:
        case MDL_MULTILINE:
            if (const auto parts = partsOf(element)) addParts(found, *parts, t);
            break;
        case MDL_BSPLINE:
            if (const auto curve = curveOf(element)) addPoints(found, curve->poles, t);
            break;
        default: break;
    }
    if (!found.any()) return false;
    range = found.range();
    return true;
}

Point3d transformed(const Transform& t, const PointRun& run, const Point3d& p) {
    return run.vectors ? applyToVector(t, p) : applyToPoint(t, p);
}

bool staysFinite(const MSElementBuffer* element, const PointRuns& all, const Transform& t) {
    double taints = 0;
    for (uint32_t r = 0; r < all.count; ++r) {
        const PointsView points(element->bytes + all.runs[r].offset, all.runs[r].count);
        for (uint32_t i = 0; i < points.size(); ++i) taints += taint(transformed(t, all.runs[r], points[i]));
    }
    return taints == 0;
}

// A 2D cell header has its own short form of origin and matrix.
std::optional<CellBody2d> cell2dOf(const MSElementBuffer* element) {
    const ElementHead head = headOf(element);
    if (head.type != MDL_CELL_HEADER || size_t{head.attributeOffset} * 2 < headBytes + sizeof(CellBody2d)) return {};
    const auto body = loadAt<CellBody2d>(element, headBytes);
    if (body.is3d) return {};
    return body;
}

void setPlane(double (&to)[2], const Point3d& p) {
    to[0] = p.x, to[1] = p.y;
}

CellBody2d transformed(const Transform& t, const CellBody2d& cell) {
    CellBody2d result = cell;
    setPlane(result.origin, applyToPoint(t, {cell.origin[0], cell.origin[1], 0}));
    for (int i = 0; i < 2; ++i) setPlane(result.axes[i], applyToVector(t, {cell.axes[i][0], cell.axes[i][1], 0}));
    return result;
}

bool isFinite(const CellBody2d& cell) {
    return (cell.origin[0] + cell.origin[1] + cell.axes[0][0] + cell.axes[0][1] + cell.axes[1][0] + cell.axes[1][1]) *
               0 ==
           0;
}

void transformPoints(MSElementBuffer* element, const Transform& transform) {
    const PointRuns all = pointRunsOf(element);
    for (uint32_t r = 0; r < all.count; ++r)
        for (uint32_t i = 0; i < all.runs[r].count; ++i) {
            const size_t at = all.runs[r].offset + i * sizeof(Point3d);
            storeAt(element, at, transformed(transform, all.runs[r], loadAt<Point3d>(element, at)));
        }
}

}  // namespace

bool elementRange(const MSElementBuffer* element, Range3d& range) {
    return rangeOf(element, range, nullptr);
}

bool elementRange(const MSElementBuffer* element, Range3d& range, const Transform& transform) {
    return rangeOf(element, range, &transform);
}

bool canTransform(const MSElementBuffer* element, const Transform& transform) {
    if (const auto cell = cell2dOf(element)) return isFinite(transformed(transform, *cell));
    if (const auto parts = partsOf(element))
        return std::ranges::all_of(*parts, [&](const MSElementBuffer* part) { return canTransform(part, transform); });
    return staysFinite(element, pointRunsOf(element), transform);
}

bool transformElement(MSElementBuffer* element, const Transform& transform) {
    if (!canTransform(element, transform)) return false;
    if (const auto cell = cell2dOf(element)) {
        storeAt(element, headBytes, transformed(transform, *cell));
        return true;
    }
    if (const auto parts = partsOf(element)) {
        for (const MSElementBuffer* part : *parts) transformPoints(const_cast<MSElementBuffer*>(part), transform);
    } else {
        transformPoints(element, transform);
    }
    return true;
}

}  // namespace host
