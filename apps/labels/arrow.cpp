#include "arrow.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <utility>

#include <mchost/mdl/element.h>
#include <mchost/mdl/modify.h>
#include <mchost/mdl/system.h>
#include <mchost/mdl/text.h>
#include <mchost/mdl/view.h>
#include <mclib/mclib.h>
#include <mchost/mdl/owned.hpp>

namespace labels {

namespace {

bool isLeader(const MSElementBuffer* element) {
    return mdlElement_getType(element) == MDL_LINE_STRING;
}

bool appendHead(ElementDescr* label, const Point3d& tip, double angle, const LeaderLook& look, int view) {
    ElementDescr* head = nullptr;
    mclibArrow_createArrowHead(&head, &tip, view, angle, look.head, look.divisor, look.headAttribute, look.headSize);
    if (!head) return look.head == ARROW_HEAD_NONE;
    if (mdlElmdscr_appendDscr(label, head) == MDL_SUCCESS) return true;
    mdlElmdscr_freeAll(&head);
    return false;
}

}  // namespace

// ---- elements ----

std::vector<Point3d> pointsOf(const MSElementBuffer* element) {
    constexpr double tolerance = 10;
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    if (mdlElement_getType(element) == MDL_TEXT) {
        std::vector<Point3d> box(5);
        mdlText_extractShape(box.data(), nullptr, element, 0, 0);
        return box;
    }
    Point3d* points = nullptr;
    int32_t count = 0;
    if (mdlElement_stroke(&points, &count, element, tolerance) != MDL_SUCCESS) return {};
    const mdl::HostPtr<Point3d> owner(points);
    return {points, points + count};
}

double bearing(const Point3d& from, const Point3d& to, int view) {
    RotMatrix axes;
    mdlRMatrix_fromView(&axes, view);
    Point3d way = {to.x - from.x, to.y - from.y, to.z - from.z};
    mdlRMatrix_rotatePoint(&way, &axes);
    return std::atan2(way.y, way.x);
}

std::string cellName(const MSElementBuffer* cell) {
    wchar_t wide[512] = L"";
    mdlCell_extractName(wide, static_cast<int32_t>(std::size(wide)), cell);
    return mclibUtil_convertToMultibyteText(wide);
}

bool appendCopies(ElementDescr* label, const ElementDescr* first, const ElementDescr* end) {
    for (; first != end; first = first->next)
        if (mdlElmdscr_appendElement(label, first->element) != MDL_SUCCESS) return false;
    return true;
}

// ---- labels ----

ElementDescr* firstLeader(const ElementDescr* label) {
    if (mdlElement_getType(label->element) != MDL_CELL_HEADER) return nullptr;
    ElementDescr* part = label->firstChild;
    while (part && !isLeader(part->element)) part = part->next;
    return part;
}

ElementDescr* endOfText(const ElementDescr* label) {
    const auto isText = [](const ElementDescr* part) { return mdlElement_getType(part->element) == MDL_TEXT; };
    ElementDescr* part = label->firstChild;
    if (part && !isText(part)) part = part->next;
    while (part && isText(part)) part = part->next;
    return part;
}

bool endOfLeader(Point3d& end, const ElementDescr* label) {
    const ElementDescr* const leader = firstLeader(label);
    const std::vector<Point3d> vertices = leader ? pointsOf(leader->element) : std::vector<Point3d>();
    if (vertices.empty()) return false;
    end = vertices.back();
    return true;
}

void removeLeaders(ElementDescr* label) {
    for (ElementDescr* part = firstLeader(label); part;) mdlElmdscr_removeElement(std::exchange(part, part->next));
}

Point3d Extent::middle() const {
    RotMatrix axes;
    mdlRMatrix_fromView(&axes, view);
    Point3d point = {(left + right) / 2, (bottom + top) / 2, 0};
    mdlRMatrix_unrotatePoint(&point, &axes);
    return point;
}

bool Extent::has(const Point3d& point) const {
    RotMatrix axes;
    mdlRMatrix_fromView(&axes, view);
    Point3d seen = point;
    mdlRMatrix_rotatePoint(&seen, &axes);
    return left <= seen.x && seen.x <= right && bottom <= seen.y && seen.y <= top;
}

std::optional<Extent> extentOf(const ElementDescr* first, const ElementDescr* end, int view) {
    RotMatrix axes;
    mdlRMatrix_fromView(&axes, view);
    Extent extent = {HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL, view};
    for (const ElementDescr* part = first; part != end; part = part->next) {
        for (Point3d point : pointsOf(part->element)) {
            mdlRMatrix_rotatePoint(&point, &axes);
            extent.left = std::min(extent.left, point.x);
            extent.right = std::max(extent.right, point.x);
            extent.bottom = std::min(extent.bottom, point.y);
            extent.top = std::max(extent.top, point.y);
        }
    }
    if (!(extent.left <= extent.right)) return {};
    return extent;
}

std::optional<Extent> textExtent(const ElementDescr* label, int view) {
    return extentOf(label->firstChild, firstLeader(label), view);
}

// ---- moving ----

namespace {

// What becomes of the components of a label in turn.
struct Mover {
    Point3d way;
    bool inLeaders = false, whole = true;
    Point3d tip = {};  // of the leader in hand, and by how much its first leg turns
    double turn = 0;
};

bool hasVertexAt(const MSElementBuffer* element, const Point3d& tip) {
    const std::vector<Point3d> points = pointsOf(element);
    return std::ranges::any_of(points, [&](const Point3d& p) { return mdlVec_distance(&p, &tip) < 1; });
}

// Heads that lie along their leader have a corner at its tip, or are arcs; the others don't turn.
bool turnsWithLeader(const MSElementBuffer* element, const Point3d& tip) {
    return mdlElement_getType(element) == MDL_ARC || hasVertexAt(element, tip);
}

bool moveLeader(MSElementBuffer* element, Mover& mover) {
    std::vector<Point3d> points = pointsOf(element);
    if (points.size() < 2) return false;
    const auto angle = [&] { return std::atan2(points[1].y - points[0].y, points[1].x - points[0].x); };
    const double before = angle();
    points.back().x += mover.way.x;
    points.back().y += mover.way.y;
    mover.tip = points[0];
    mover.turn = angle() - before;
    const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
    return mdlLineString_create(dgnBufP, element, points.data(), static_cast<int32_t>(points.size())) == MDL_SUCCESS;
}

bool turnHead(MSElementBuffer* element, const Mover& mover) {
    const double c = std::cos(mover.turn), s = std::sin(mover.turn);
    const Point3d& t = mover.tip;
    const Transform about = {{{c, -s, 0, t.x - c * t.x + s * t.y}, {s, c, 0, t.y - s * t.x - c * t.y}, {0, 0, 1, 0}}};
    return mdlElement_transform(dgnBufP, element, &about) == MDL_SUCCESS;
}

int moveOne(MSElementBuffer* element, void* userArg, ModelRef*, ElementDescr*, ElementDescr**) {
    Mover& mover = *static_cast<Mover*>(userArg);
    bool done = false;
    if (isLeader(element)) {
        mover.inLeaders = true;
        done = moveLeader(element, mover);
    } else if (mover.inLeaders) {
        if (mover.turn == 0 || !turnsWithLeader(element, mover.tip)) return MDL_MODIFY_NONE;
        done = turnHead(element, mover);
    } else {
        Transform move;
        mdlTMatrix_getIdentity(&move);
        mdlTMatrix_translate(&move, &move, mover.way.x, mover.way.y, mover.way.z);
        done = mdlElement_transform(dgnBufP, element, &move) == MDL_SUCCESS;
    }
    mover.whole = mover.whole && done;
    if (!done) return MDL_MODIFY_NONE;
    std::memcpy(element, dgnBufP, mdlElement_bytes(dgnBufP));
    return MDL_MODIFY_CHANGED;
}

}  // namespace

bool moveText(ElementDescr*& label, const Point3d& way) {
    Mover mover = {.way = way};
    mdlModify_elementDescr2(&label, nullptr, MDL_MODIFY_NO_HEADERS, moveOne, &mover, 0);
    mdlCell_setRange(label, nullptr);
    return mover.whole;
}

// ---- leaders ----

bool appendLeader(ElementDescr* label, std::vector<Point3d> points, const LeaderLook& look, int view) {
    Point3d end = {};
    if (points.empty() || !endOfLeader(end, label)) return false;
    points.push_back(end);
    {
        const mdl::CurrTransScope uor(mdl::CurrTransScope::Begin::uor);
        if (mclibElement_createLineString(points.data(), static_cast<int>(points.size()), look.lineAttribute, label) !=
            MCLIB_SUCCESS)
            return false;
    }
    if (!appendHead(label, points[0], bearing(points[0], points[1], view), look, view)) return false;
    int32_t group = 0;
    mdlParams_getActive(&group, MDL_PARAM_GRAPHIC_GROUP);
    const auto graphicGroup = static_cast<uint32_t>(group);
    return mdlElmdscr_setProperties(label, nullptr, &graphicGroup) == MDL_SUCCESS;
}

}  // namespace labels
