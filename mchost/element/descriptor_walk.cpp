// Going through a descriptor: calls for each element, range, transform, strokes.
#include <vector>

#include "mchost/base/guard.h"
#include "mchost/element/descriptor.h"
#include "mchost/element/geometry.h"
#include "mchost/element/points.h"
#include "mchost/element/range.h"
#include "mchost/space/current.h"

namespace host {
namespace {

enum Order { visitComponents = 1, visitHeaders = 2, visitNestedHeaders = 8 };

struct Visit {
    MdlDescrFunction function;
    void* userArg;
    int32_t order;
};

int visitChain(const Visit& visit, ElementDescr* ed, int32_t depth) {
    for (ElementDescr* next; ed; ed = next) {
        next = ed->next;
        const bool header = ed->firstChild || isHeaderType(headOf(ed->element).type);
        const int32_t kind = !header ? visitComponents : depth == 0 ? visitHeaders : visitNestedHeaders;
        if (visit.order & kind)
            if (const int status = visit.function(ed->element, visit.userArg, kind, depth, ed)) return status;
        if (const int status = visitChain(visit, ed->firstChild, depth + 1)) return status;
    }
    return 0;
}

void addRange(RangeBuilder& all, const ElementDescr* ed, const Transform* t) {
    for (; ed; ed = ed->next) {
        Range3d range;
        if (t ? elementRange(ed->element, range, *t) : elementRange(ed->element, range)) all.add(range);
        addRange(all, ed->firstChild, t);
    }
}

bool canTransformChain(const ElementDescr* ed, const Transform& t) {
    for (; ed; ed = ed->next)
        if (!canTransform(ed->element, t) || !canTransformChain(ed->firstChild, t)) return false;
    return true;
}

void transformChain(ElementDescr* ed, const Transform& t) {
    for (; ed; ed = ed->next) {
        transformElement(ed->element, t);
        transformChain(ed->firstChild, t);
    }
}

void setPropertiesOf(ElementDescr* ed, const LevelId* level, const uint32_t* graphicGroup) {
    for (; ed; ed = ed->next) {
        mdlElement_setProperties(ed->element, level, graphicGroup, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr);
        setPropertiesOf(ed->firstChild, level, graphicGroup);
    }
}

size_t childCount(const ElementDescr* header) {
    size_t count = 0;
    for (const ElementDescr* child = header->firstChild; child; child = child->next) ++count;
    return count;
}

void setComplexCount(ElementDescr* header) {
    if (size_t{headOf(header->element).attributeOffset} * 2 < headBytes + sizeof(ComplexBody)) return;
    storeAt(header->element, headBytes, ComplexBody{static_cast<uint32_t>(childCount(header)), 0});
}

void setCellRange(ElementDescr* header, const Range3d& r) {
    const size_t body = size_t{headOf(header->element).attributeOffset} * 2 - headBytes;
    if (body >= sizeof(CellBody3d) && loadAt<uint32_t>(header->element, headBytes)) {
        storeAt(header->element, headBytes + offsetof(CellBody3d, low), r);
    } else if (body >= sizeof(CellBody2d)) {
        const double plane[] = {r.low.x, r.low.y, r.high.x, r.high.y};
        storeAt(header->element, headBytes + offsetof(CellBody2d, low), plane);
    }
}

void validateChain(ElementDescr* ed) {
    for (; ed; ed = ed->next) {
        validateChain(ed->firstChild);
        const int type = headOf(ed->element).type;
        if (type == MDL_COMPLEX_SHAPE || type == MDL_TEXT_NODE) setComplexCount(ed);
        if (type != MDL_CELL_HEADER) continue;
        RangeBuilder all;
        addRange(all, ed->firstChild, nullptr);
        if (all.any()) setCellRange(ed, all.range());
    }
}

// Whether two ends are the same point but for rounding.
bool isJoint(const Point3d& a, const Point3d& b, double tolerance) {
    return distance(a, b) <= tolerance * 1e-3;
}

// The components one after the other; a point that repeats the end of the component before it is left out.
bool strokeComponents(std::vector<Point3d>& points, const ElementDescr* header, double tolerance,
                      const Transform& transform) {
    for (const ElementDescr* child = header->firstChild; child; child = child->next) {
        const size_t before = points.size();
        const bool stroked = child->firstChild ? strokeComponents(points, child, tolerance, transform)
                                               : strokeElement(points, child->element, tolerance, transform);
        if (!stroked) return false;
        const auto joint = points.begin() + static_cast<ptrdiff_t>(before);
        if (before > 0 && isJoint(points[before - 1], points[before], tolerance)) points.erase(joint);
    }
    return !points.empty();
}

}  // namespace

bool strokeNode(std::vector<Point3d>& points, const ElementDescr* node, double tolerance, const Transform& transform) {
    if (headOf(node->element).type != MDL_COMPLEX_SHAPE)
        return strokeElement(points, node->element, tolerance, transform);
    std::vector<Point3d> outline;
    if (!(tolerance > 0) || !strokeComponents(outline, node, tolerance, transform)) return false;
    if (outline.size() > 2 && isJoint(outline.front(), outline.back(), tolerance)) outline.pop_back();
    outline.push_back(outline.front());
    points.insert(points.end(), outline.begin(), outline.end());
    return true;
}

}  // namespace host

using namespace host;

int mdlElmdscr_operation(ElementDescr* ed, MdlDescrFunction f, void* userArg, int32_t order) noexcept {
    return f ? visitChain({f, userArg, order}, ed, 0) : MDL_ERROR;
}

int mdlElmdscr_validate(ElementDescr* ed, ModelRef*) noexcept {
    if (!ed) return MDL_ERROR;
    validateChain(ed);
    return MDL_SUCCESS;
}

int mdlElmdscr_computeRange(Point3d* low, Point3d* high, const ElementDescr* ed, const Transform* transform) noexcept {
    RangeBuilder all;
    addRange(all, ed, transform);
    if (!all.any()) return MDL_ERROR;
    if (low) *low = all.range().low;
    if (high) *high = all.range().high;
    return MDL_SUCCESS;
}

int mdlElmdscr_transform(ElementDescr* ed, const Transform* transform) noexcept {
    if (!ed || !transform || !canTransformChain(ed, *transform)) return MDL_ERROR;
    transformChain(ed, *transform);
    return MDL_SUCCESS;
}

int mdlElmdscr_setProperties(ElementDescr* ed, const LevelId* level, const uint32_t* graphicGroup) noexcept {
    if (!ed) return MDL_ERROR;
    setPropertiesOf(ed, level, graphicGroup);
    return MDL_SUCCESS;
}

int mdlElmdscr_stroke(Point3d** pointsP, int32_t* countP, const ElementDescr* ed, double tolerance) noexcept {
    if (!pointsP || !countP || !ed) return MDL_ERROR;
    return guarded<int>(MDL_ERROR, [&]() -> int {
        std::vector<Point3d> points;
        if (!strokeNode(points, ed, tolerance, currentFromWorld())) return MDL_ERROR;
        return givePoints(pointsP, countP, points);
    });
}
