// Lines, circles, rectangles and texts of a wanted size and look.
#include "mclib/design/base_element.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>

#include "mchost/mdl/compound.h"
#include "mchost/mdl/element.h"
#include "mchost/mdl/model.h"
#include "mchost/mdl/system.h"
#include "mchost/mdl/text.h"
#include "mchost/mdl/vector.h"

namespace mc::design {

namespace {

constexpr int32_t rectangleVertices = 5;  // the last one is the first one again

struct FlatBox {
    double left, right, bottom, top;

    double width() const { return right - left; }
    double height() const { return top - bottom; }
};

FlatBox boxOf(std::span<const Point3d> points) {
    const auto [left, right] = std::ranges::minmax(points, {}, &Point3d::x);
    const auto [bottom, top] = std::ranges::minmax(points, {}, &Point3d::y);
    return {left.x, right.x, bottom.y, top.y};
}

bool isDiagonal(const Point3d& from, const Point3d& to, const FlatBox& box) {
    constexpr double tolerance = 0.01;
    const auto spans = [](double extent, double whole) {
        return std::fabs(std::fabs(extent) - whole) <= tolerance * whole;
    };
    return spans(to.x - from.x, box.width()) && spans(to.y - from.y, box.height());
}

bool isClosed(const Point3d (&vertices)[rectangleVertices], const MSElementBuffer& element) {
    return mdlElement_getType(&element) != MDL_LINE_STRING ||
           mdlVec_pointEqual(&vertices[0], &vertices[rectangleVertices - 1]) != 0;
}

// The vertices of an element that has just so many.
template <int32_t count>
bool extractAll(Point3d (&vertices)[count], const MSElementBuffer& element) {
    int32_t its = 0;
    return mdlLinear_extract(vertices, &its, &element, count) == MDL_SUCCESS && its == count;
}

}  // namespace

BaseElements::BaseElements(const SearchElementSpec& spec, const PositionSet& done)
    : spec_(spec),
      filter_{spec.levelMask, spec.weight, spec.style, spec.color},
      sizesA_{spec.minSizeA, spec.maxSizeA},
      sizesB_{spec.minSizeB, spec.maxSizeB},
      pattern_({spec.pattern, strnlen(spec.pattern, sizeof spec.pattern)}, (spec.flags & SEARCH_CASE_SENSITIVE) != 0),
      arcs_(done) {}

std::optional<BaseElement> BaseElements::baseOf(const MSElementBuffer& element, FilePos position) {
    return mdlElement_getType(&element) == MDL_COMPOUND ? baseInCompound(element) : plainBaseOf(element, position);
}

std::optional<BaseElement> BaseElements::plainBaseOf(const MSElementBuffer& element, FilePos position) {
    if (!filter_.accepts(element)) return {};
    switch (static_cast<ElementGroup>(spec_.group)) {
        case ElementGroup::lines: return lineOf(element);
        case ElementGroup::circles: return circleOf(element, position);
        case ElementGroup::rectangles: return rectangleOf(element);
        case ElementGroup::texts: return textOf(element);
    }
    return {};
}

std::optional<BaseElement> BaseElements::lineOf(const MSElementBuffer& element) const {
    Point3d ends[2];
    if (!extractAll(ends, element) || !sizesA_.accept(mdlVec_distance(&ends[0], &ends[1]))) return {};
    const Point3d middle = {(ends[0].x + ends[1].x) / 2, (ends[0].y + ends[1].y) / 2, (ends[0].z + ends[1].z) / 2};
    return BaseElement{&element, middle, std::fabs(ends[1].x - ends[0].x)};
}

std::optional<BaseElement> BaseElements::circleOf(const MSElementBuffer& element, FilePos position) {
    const std::optional<Arc> arc = arcOf(element);
    if (!arc) return {};
    const bool isArc = mdlElement_getType(&element) == MDL_ARC;
    if (isArc && !arcs_.isCircle(*arc, position)) return {};
    return hasSize(*arc) ? ellipseOf(*arc, isArc ? nullptr : &arc->rotation, element) : std::nullopt;
}

std::optional<BaseElement> BaseElements::ellipseOf(const Arc& arc, const RotMatrix* rotation,
                                                   const MSElementBuffer& look) {
    if (!made_ || mdlEllipse_create(made_.get(), &look, &arc.center, arc.primary, arc.secondary, rotation,
                                    mdlElement_isFilled(&look)) != MDL_SUCCESS)
        return {};
    return BaseElement{made_.get(), arc.center, arc.primary};
}

std::optional<BaseElement> BaseElements::rectangleOf(const MSElementBuffer& element) const {
    Point3d vertices[rectangleVertices];
    if (!extractAll(vertices, element) || !isClosed(vertices, element)) return {};
    const FlatBox box = boxOf(vertices);
    if (!sizesA_.accept(box.width()) || !sizesB_.accept(box.height())) return {};
    if (!isDiagonal(vertices[0], vertices[2], box) || !isDiagonal(vertices[1], vertices[3], box)) return {};
    return BaseElement{&element, {box.left, box.bottom, vertices[0].z}, box.width()};
}

std::optional<BaseElement> BaseElements::textOf(const MSElementBuffer& element) const {
    char text[MCLIB_SEARCH_TEXT_SIZE];
    Point3d origin;
    double height = 0;
    if (mdlText_extract(nullptr, &origin, nullptr, nullptr, text, nullptr, nullptr, nullptr, &height, nullptr,
                        &element) != MDL_SUCCESS) {
        toolSubsystem_printf("Invalid element type in function verifyTextElm()\n");
        return {};
    }
    if (errorsOfText(text, pattern_, (spec_.flags & SEARCH_IGNORE_BLANKS) != 0, 0) != 0 || !sizesA_.accept(height))
        return {};
    return BaseElement{&element, origin, height};
}

// ---- compound elements ----

// What qualifies is a part.
std::optional<BaseElement> BaseElements::baseInCompound(const MSElementBuffer& element) {
    mdl::Descr parts;
    if (mdlElmdscr_fromCompoundElement(parts.out(), &element, mdlModelRef_getActive()) != MDL_SUCCESS) return {};
    PartVisit visit = {*this, {}, 0, {}};
    mdlElmdscr_operation(parts.get(), visitPart, &visit, MDL_DESCR_ELEMENTS);
    return visit.found;
}

int BaseElements::visitPart(MSElementBuffer* part, void* visitP, int32_t, int32_t, ElementDescr*) {
    auto& visit = *static_cast<PartVisit*>(visitP);
    const bool isCircles = visit.bases.spec_.group == SEARCH_GROUP_CIRCLE;
    visit.found = isCircles ? visit.bases.circlePart(*part, visit) : visit.bases.basePart(*part);
    return visit.found ? 1 : 0;
}

std::optional<BaseElement> BaseElements::basePart(const MSElementBuffer& part) {
    const int type = mdlElement_getType(&part);
    const bool fits = spec_.group == SEARCH_GROUP_LINE        ? type == MDL_LINE || type == MDL_LINE_STRING
                      : spec_.group == SEARCH_GROUP_RECTANGLE ? type == MDL_LINE_STRING || type == MDL_SHAPE
                                                              : false;
    std::optional<BaseElement> base = fits ? plainBaseOf(part, 0) : std::nullopt;
    if (!base || !made_) return {};
    mdlElement_memcpy(made_.get(), &part);
    base->element = made_.get();
    return base;
}

// The part with which arcs that belong together have gone round.
std::optional<BaseElement> BaseElements::circlePart(const MSElementBuffer& part, PartVisit& visit) {
    const std::optional<Arc> arc = arcOf(part);
    if (!arc || !filter_.accepts(part)) return {};
    if (!visit.first) visit.first = arc;
    if (!arc->belongsTo(*visit.first)) return {};
    visit.turn += std::fabs(arc->sweep);
    if (visit.turn <= leastTurn || visit.turn >= mostTurn) return {};
    Arc circle = *visit.first;
    circle.secondary = circle.primary;
    return hasSize(circle) ? ellipseOf(circle, nullptr, part) : std::nullopt;
}

}  // namespace mc::design
