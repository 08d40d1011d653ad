// Heads of leaders: the table of their types, and one small function for each shape.
#include "mclib/arrows/heads.h"

#include <array>
#include <cmath>
#include <numbers>
#include <span>

#include "mchost/mdl/elmdscr.h"
#include "mchost/mdl/owned.hpp"
#include "mclib/arrows/drafting.h"
#include "mclib/arrows/state.h"
#include "mclib/geometry/builders.h"

namespace mc::arrows {

namespace {

// A head on its way: in master units about its tip, x along the leader.
struct HeadDraft {
    ElementDescr*& head;
    Point3d tip;
    double length, halfWidth;
    int fill;
    int attrId;

    Point3d at(double x, double y) const { return {tip.x + x, tip.y + y, tip.z}; }
};

bool drawShape(const HeadDraft& draft, std::span<const Point3d> points) {
    emptyBuffer();
    mclibElement_createShape(points.data(), static_cast<int>(points.size()), draft.fill, draft.attrId, nullptr);
    return startDescr(draft.head);
}

// The first line starts the descriptor, the second is appended.
bool drawTwoLines(const HeadDraft& draft, const Point3d (&first)[2], const Point3d (&second)[2]) {
    emptyBuffer();
    mclibElement_createLine(first, draft.attrId, nullptr);
    return startDescr(draft.head) && mclibElement_createLine(second, draft.attrId, draft.head) == MCLIB_SUCCESS;
}

bool nothing(const HeadDraft&) {
    return true;
}

bool openArrow(const HeadDraft& draft) {
    return drawTwoLines(draft, {draft.tip, draft.at(draft.length, draft.halfWidth)},
                        {draft.tip, draft.at(draft.length, -draft.halfWidth)});
}

bool closedArrow(const HeadDraft& draft) {
    const Point3d corners[] = {draft.tip, draft.at(draft.length, -draft.halfWidth),
                               draft.at(draft.length, draft.halfWidth), draft.tip};
    return drawShape(draft, corners);
}

bool circle(const HeadDraft& draft) {
    emptyBuffer();
    mclibElement_createEllipseExtended(&draft.tip, draft.length / 2, draft.fill, draft.attrId, nullptr);
    return startDescr(draft.head);
}

bool cross(const HeadDraft& draft) {
    const double h = draft.length / 2;
    return drawTwoLines(draft, {draft.at(-h, -h), draft.at(h, h)}, {draft.at(-h, h), draft.at(h, -h)});
}

bool slash(const HeadDraft& draft) {
    const double h = draft.length / 2;
    const Point3d ends[] = {draft.at(-h, -h), draft.at(h, h)};
    emptyBuffer();
    mclibElement_createLine(ends, draft.attrId, nullptr);
    return startDescr(draft.head);
}

bool square(const HeadDraft& draft) {
    const double h = draft.length / 2;
    const Point3d corners[] = {draft.at(-h, -h), draft.at(h, -h), draft.at(h, h), draft.at(-h, h), draft.at(-h, -h)};
    return drawShape(draft, corners);
}

bool triangle(const HeadDraft& draft) {
    const double h = draft.length / 2;
    const Point3d corners[] = {draft.at(-h, -h), draft.at(h, -h), draft.at(0, h), draft.at(-h, -h)};
    return drawShape(draft, corners);
}

// An S-shaped stroke through the tip.
bool twoArcs(const HeadDraft& draft) {
    constexpr double pi = std::numbers::pi, sweep = pi / 2;
    const double radius = 0.35 * draft.length, q = draft.length / 4;
    const Point3d upper = draft.at(-q, q), lower = draft.at(q, -q);
    emptyBuffer();
    mclibElement_createArc(&upper, radius, -pi / 4, sweep, draft.attrId, nullptr);
    return startDescr(draft.head) &&
           mclibElement_createArc(&lower, radius, 3 * pi / 4, sweep, draft.attrId, draft.head) == MCLIB_SUCCESS;
}

struct HeadType {
    bool (*draw)(const HeadDraft& draft);
    double halfWidth;  // in lengths; givenWidth: as the arrow says
    int fill;
    bool turns;  // with the leader; the others lie square to the view
};
constexpr double givenWidth = -1.0;

constexpr std::array<HeadType, ARROW_HEAD_LAST + 1> headTypes = {{
    {nothing, 0.0, 0, true},             // 0
    {openArrow, 0.5, 0, true},           // 1
    {closedArrow, 0.5, 0, true},         // 2
    {closedArrow, 0.5, 1, true},         // 3
    {openArrow, 0.25, 0, true},          // 4
    {closedArrow, 0.25, 0, true},        // 5
    {closedArrow, 0.25, 1, true},        // 6
    {openArrow, givenWidth, 0, true},    // 7
    {closedArrow, givenWidth, 0, true},  // 8
    {closedArrow, givenWidth, 1, true},  // 9
    {circle, 0.0, 0, false},             // 10
    {cross, 0.0, 0, false},              // 11
    {slash, 0.0, 0, false},              // 12
    {square, 0.0, -1, false},            // 13
    {triangle, 0.0, -1, false},          // 14
    {circle, 0.0, 1, false},             // 15
    {twoArcs, 0.0, 0, true},             // 16
    {openArrow, 1.0, 0, true},           // 17
    {closedArrow, 1.0, 0, true},         // 18
    {closedArrow, 1.0, 1, true},         // 19
}};

bool isHeadType(int type) {
    return type >= 0 && type <= ARROW_HEAD_LAST;
}

}  // namespace

bool makeHead(ElementDescr*& head, const HeadRequest& request) {
    head = nullptr;
    if (!isHeadType(request.type)) return true;
    const HeadType& type = headTypes[static_cast<size_t>(request.type)];
    const double length = request.size / request.scale;
    const LocalSystem system(request.tip, request.view, type.turns ? request.angle : 0.0);
    if (!system) return false;
    HeadDraft draft{.head = head,
                    .tip = {},
                    .length = length,
                    .halfWidth = type.halfWidth == givenWidth ? request.width : type.halfWidth * length,
                    .fill = type.fill,
                    .attrId = request.attrId};
    mdlCurrTrans_invtransPointArray(&draft.tip, &request.tip, 1);
    if (type.draw(draft)) return true;
    mdlElmdscr_freeAll(&head);
    return false;
}

}  // namespace mc::arrows

using namespace mc::arrows;

void mclibArrow_createArrowHead(ElementDescr** head, const Point3d* point, int view, double angle, int type,
                                double scale, int attrId, double size) {
    if (!head) return;
    *head = nullptr;
    if (!point) return;
    makeHead(*head, {.tip = *point,
                     .view = view,
                     .angle = angle,
                     .type = type,
                     .scale = scale,
                     .size = size,
                     .width = placeState->looks.width,
                     .attrId = attrId});
}
